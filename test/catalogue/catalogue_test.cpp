/// \file
/// The register against the classes: what an entry says of formats, ranges and defaults is what the class
/// does.
#include "catalogue/catalogue.h"
#include "catalogue/names.h"
#include "host/picture.h"

#include <vfil/pixel.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>

namespace {

using namespace vfil;
using catalogue::Entry;
using catalogue::Parameter;
using catalogue::ParameterType;
using catalogue::Value;

// An operator with pictures of one format at all its inputs, and a mask where it needs one.
struct Bench {
    Bench(const Entry& entry, const GUID& format)
        : output(host::Picture::Create(format, 4, 2)), op(entry.make(true))
    {
        for (std::size_t i = 0; i < entry.inputs.size(); ++i) {
            inputs.push_back(host::Picture::Create(format, 4, 2));
            op->SetInput(i, inputs.back().Get());
        }
        op->SetOutput(output.Get());
        op->Frame().SetProcessingMode(entry.channels);
        if (entry.mask != catalogue::MaskUse::Required) return;
        const bool deep = vfILFindFormat(format)->sampleBytes == 2;
        mask = host::Picture::Create(deep ? PXFormat_Mono16 : PXFormat_Mono8, 4, 2);
        op->Frame().SetMask(0, 0, 4, 2, mask.Get(), PXImageChannel_MONO);
    }

    std::vector<host::PicturePtr> inputs;
    host::PicturePtr output;
    host::PicturePtr mask;
    std::unique_ptr<catalogue::Operator> op;
};

TEST(Names, FollowTheClasses)
{
    const std::pair<const char*, const char*> commands[] = {
        {"vfILOverImage", "over"},
        {"vfILAddNoClipImage", "add-no-clip"},
        {"vfILInvNonAddImage", "inv-non-add"},
        {"vfILCompositeImg", "composite"},
        {"vfILGrayscaleImg", "grayscale"},
    };
    for (const auto& [className, name] : commands)
        EXPECT_EQ(catalogue::CommandName(className), name);
    EXPECT_EQ(catalogue::ParameterName("SetImgAPremultiplied"), "img-a-premultiplied");
    EXPECT_EQ(catalogue::ParameterName("NeverPremultiplyBackImage"), "never-premultiply-back-image");
    EXPECT_EQ(catalogue::FormatName(PXFormat_YCCA422_601), "ycca422-601");
    EXPECT_EQ(catalogue::FormatName(PXFormat_YUV422_709_SplitOdd), "yuv422-709-splitodd");
    ASSERT_NE(catalogue::FindFormat("ycc422-601"), nullptr);
    EXPECT_EQ(catalogue::FindFormat("ycc422-601")->id, PXFormat_YCC422_601);
    EXPECT_EQ(catalogue::FindFormat("RGBA32"), nullptr);
}

TEST(Catalogue, HasEveryOperatorOnce)
{
    const std::set<std::string> expected = {"over",      "in",          "out",  "atop",     "xor",
                                            "add",       "add-no-clip", "diff", "mult",     "lighter",
                                            "darker",    "lum",         "col",  "non-add",  "inv-non-add",
                                            "composite", "invert",      "copy", "grayscale"};
    std::set<std::string> names;
    for (const Entry& entry : catalogue::Entries()) {
        EXPECT_TRUE(names.insert(entry.name).second) << entry.name;
        EXPECT_EQ(catalogue::Find(entry.name), &entry);
    }
    EXPECT_EQ(names, expected);
    EXPECT_EQ(catalogue::Find("ovr"), nullptr);
}

TEST(Operator, PlainArithmeticIsAFlagOfItsProcessor)
{
    struct Probe : vfILInvertImg {
        int SimdFlag() const { return m_simdAvailable; }
    };
    catalogue::OperatorOf<Probe> plain(false);
    catalogue::OperatorOf<Probe> usual(true);
    EXPECT_EQ(static_cast<Probe&>(plain.Frame()).SimdFlag(), 0);
    EXPECT_EQ(static_cast<Probe&>(usual.Frame()).SimdFlag(), Probe().SimdFlag());
}

class EachEntry : public testing::TestWithParam<std::string> {
protected:
    const Entry& entry = *catalogue::Find(GetParam());
};

TEST_P(EachEntry, FormatsAreThoseOfVerify)
{
    for (std::size_t i = 0; const vfILFormatInfo* info = vfILFormatAt(i); ++i) {
        const Bench bench(entry, info->id);
        const bool listed =
            std::find(entry.formats.begin(), entry.formats.end(), info->id) != entry.formats.end();
        EXPECT_EQ(bench.op->Frame().Verify() == VFIL_SUCCESS, listed) << info->name;
    }
}

TEST_P(EachEntry, RangesAreThoseOfVerify)
{
    for (const Parameter& parameter : entry.parameters) {
        if (parameter.refusal == 0) continue;
        const Bench bench(entry, PXFormat_RGBA32);
        vfILImgProc& processor = bench.op->Frame();
        for (const double inside : {parameter.minimum, parameter.maximum}) {
            parameter.apply(processor, {inside});
            EXPECT_EQ(processor.Verify(), VFIL_SUCCESS) << parameter.name << " " << inside;
        }
        const double step = parameter.type == ParameterType::Number ? 1e-9 : 1;
        for (const double outside : {parameter.minimum - step, parameter.maximum + step}) {
            parameter.apply(processor, {outside});
            EXPECT_EQ(processor.Verify(), VFIL_FAILURE) << parameter.name << " " << outside;
            EXPECT_EQ(processor.GetLastError().GetErrorCode(), parameter.refusal) << parameter.name;
        }
    }
}

// Where Verify takes anything, applying and reading must still meet: a swapped pair of accessors shows here.
TEST_P(EachEntry, ParametersReadBackAndHaveTheirDefaults)
{
    for (const Parameter& parameter : entry.parameters) {
        const Bench bench(entry, PXFormat_RGBA32);
        vfILImgProc& processor = bench.op->Frame();
        EXPECT_EQ(parameter.read(processor), parameter.fallback.value_or(Value{0})) << parameter.name;
        const bool point = parameter.type == ParameterType::Point;
        const Value other = point ? Value{3, -2} : Value{parameter.type == ParameterType::Number ? 0.25 : 1};
        parameter.apply(processor, other);
        EXPECT_EQ(parameter.read(processor), other) << parameter.name;
        for (const Parameter& bystander : entry.parameters) {
            if (bystander.name == parameter.name) continue;
            EXPECT_EQ(bystander.read(processor), bystander.fallback.value_or(Value{0}))
                << parameter.name << " changed " << bystander.name;
        }
    }
}

// A fixed channel comes out the same when it is left out, or Verify refuses to leave it out.
TEST_P(EachEntry, FixedChannelsCannotBeLeftOut)
{
    const Bench bench(entry, PXFormat_RGBA32);
    const std::uint8_t values[] = {200, 100};
    for (std::size_t i = 0; i < bench.inputs.size(); ++i) {
        std::fill_n(bench.inputs[i]->Pixels(), bench.inputs[i]->Bytes(), values[i]);
    }
    if (bench.mask) std::fill_n(bench.mask->Pixels(), bench.mask->Bytes(), std::uint8_t{255});
    vfILImgProc& processor = bench.op->Frame();
    const auto run = [&](unsigned long mode) {
        processor.SetProcessingMode(mode);
        if (processor.Verify() != VFIL_SUCCESS) return std::string();
        EXPECT_EQ(processor.Execute(), VFIL_SUCCESS);
        return std::string(bench.output->Pixels(), bench.output->Pixels() + 4);
    };
    const std::string all = run(VFIL_MODE_RGBA);
    for (std::size_t c = 0; c < 4; ++c) {
        const std::string without = run(VFIL_MODE_RGBA & ~(1ul << c));
        if (!(entry.fixedChannels & (1ul << c))) continue;
        EXPECT_TRUE(without.empty() || without[c] == all[c]) << "channel " << c;
    }
}

std::vector<std::string> EntryNames()
{
    std::vector<std::string> names;
    for (const Entry& entry : catalogue::Entries())
        names.push_back(entry.name);
    return names;
}

std::string TestName(const testing::TestParamInfo<std::string>& info)
{
    std::string name = info.param;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
}

INSTANTIATE_TEST_SUITE_P(Catalogue, EachEntry, testing::ValuesIn(EntryNames()), TestName);

} // namespace
