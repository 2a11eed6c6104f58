/// \file
/// The register against the classes: what an entry says of formats, ranges and defaults is what the class
/// does.
#include "catalogue/catalogue.h"
#include "catalogue/names.h"
#include "host/picture.h"

#include <vfil/pixel.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
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

TEST(Names, FollowTheLibrary)
{
    EXPECT_EQ(catalogue::ParameterName("SetImgAPremultiplied"), "img-a-premultiplied");
    EXPECT_EQ(catalogue::FormatName(PXFormat_YUV422_709_SplitOdd), "yuv422-709-splitodd");
    for (std::size_t i = 0; const vfILFormatInfo* info = vfILFormatAt(i); ++i) {
        EXPECT_EQ(catalogue::FindFormat(catalogue::FormatName(info->id)), info);
    }
    EXPECT_EQ(catalogue::FindFormat("RGBA32"), nullptr);
}

TEST(Catalogue, HasEveryOperatorOnce)
{
    std::vector<std::string> names;
    for (const Entry& entry : catalogue::Entries()) {
        names.push_back(entry.name);
        EXPECT_EQ(catalogue::Find(entry.name), &entry);
    }
    const std::vector<std::string> expected = {"over",      "in",          "out",  "atop",     "xor",
                                               "add",       "add-no-clip", "diff", "mult",     "lighter",
                                               "darker",    "lum",         "col",  "non-add",  "inv-non-add",
                                               "composite", "invert",      "copy", "grayscale"};
    EXPECT_EQ(names, expected);
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

TEST(EachEntry, FormatsAreThoseOfVerify)
{
    for (const Entry& entry : catalogue::Entries()) {
        for (std::size_t i = 0; const vfILFormatInfo* info = vfILFormatAt(i); ++i) {
            const Bench bench(entry, info->id);
            const bool listed = std::count(entry.formats.begin(), entry.formats.end(), info->id) != 0;
            EXPECT_EQ(bench.op->Frame().Verify() == VFIL_SUCCESS, listed) << entry.name << " " << info->name;
        }
    }
}

TEST(EachEntry, RangesAreThoseOfVerify)
{
    for (const Entry& entry : catalogue::Entries()) {
        for (const Parameter& parameter : entry.parameters) {
            if (parameter.refusal == 0) continue;
            const Bench bench(entry, PXFormat_RGBA32);
            vfILImgProc& processor = bench.op->Frame();
            const double step = parameter.type == ParameterType::Number ? 1e-9 : 1;
            const double low = parameter.minimum;
            const double high = parameter.maximum;
            for (const double value : {low, low - step, high, high + step}) {
                parameter.apply(processor, {value});
                const bool inside = value >= low && value <= high;
                EXPECT_EQ(processor.Verify() == VFIL_SUCCESS, inside) << entry.name << " " << value;
                EXPECT_TRUE(inside || processor.GetLastError().GetErrorCode() == parameter.refusal);
            }
        }
    }
}

// Where Verify takes anything, applying and reading must still meet: a swapped pair of accessors shows here.
TEST(EachEntry, ParametersReadBackAndHaveTheirDefaults)
{
    for (const Entry& entry : catalogue::Entries()) {
        for (const Parameter& changed : entry.parameters) {
            const Bench bench(entry, PXFormat_RGBA32);
            const Value other = changed.type == ParameterType::Point    ? Value{3, -2}
                                : changed.type == ParameterType::Number ? Value{0.25}
                                                                        : Value{1};
            changed.apply(bench.op->Frame(), other);
            for (const Parameter& parameter : entry.parameters) {
                const bool same = parameter.name == changed.name;
                EXPECT_EQ(parameter.read(bench.op->Frame()),
                          same ? other : parameter.fallback.value_or(Value{}))
                    << entry.name << " " << parameter.name << " after " << changed.name;
            }
        }
    }
}

// A fixed channel comes out the same when it is left out, or the class refuses to leave it out.
TEST(EachEntry, FixedChannelsCannotBeLeftOut)
{
    for (const Entry& entry : catalogue::Entries()) {
        const Bench bench(entry, PXFormat_RGBA32);
        for (const host::PicturePtr& input : bench.inputs) {
            std::memset(input->Pixels(), input.Get() == bench.inputs[0].Get() ? 190 : 80, input->Bytes());
        }
        if (bench.mask) std::memset(bench.mask->Pixels(), 255, bench.mask->Bytes());
        vfILImgProc& processor = bench.op->Frame();
        EXPECT_EQ(processor.Execute(), VFIL_SUCCESS) << entry.name;
        const std::vector<std::uint8_t> usual(bench.output->Pixels(), bench.output->Pixels() + 4);
        for (std::size_t c = 0; c < 4; ++c) {
            if ((entry.fixedChannels >> c & 1) == 0) continue;
            processor.SetProcessingMode(VFIL_MODE_RGBA & ~(1ul << c));
            EXPECT_TRUE(processor.Execute() != VFIL_SUCCESS || bench.output->Pixels()[c] == usual[c])
                << entry.name << " channel " << c;
        }
    }
}

} // namespace
