/// \file
/// The register against the classes: what an entry says of formats, ranges and defaults is what the class
/// does.
#include "catalogue/catalogue.h"
#include "catalogue/names.h"
#include <vfil/host/picture.h>
#include <vfil/host/picturefactory.h>

#include <vfil/pixel.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <numeric>
#include <string>

namespace {

using namespace vfil;
using catalogue::Entry;
using catalogue::FormatPair;
using catalogue::Parameter;
using catalogue::ParameterType;
using catalogue::Value;

// Formats that an entry takes.
FormatPair UsualPair(const Entry& entry)
{
    return entry.conversions.empty() ? FormatPair{entry.formats.front(), entry.formats.front()}
                                     : entry.conversions.front();
}

// Different numbers, which as corners go once around.
catalogue::Table Numbers(const Parameter& parameter)
{
    const std::vector<double> numbers = {0, 0, 2, 0, 3, 2, 1, 1, 1};
    const long count = parameter.list.count;
    return {{numbers.begin(), numbers.begin() + count}, count};
}

std::shared_ptr<const catalogue::VectorField> SomeVectors()
{
    static const auto field = std::make_shared<const catalogue::VectorField>(
        catalogue::VectorField{4, 2, std::vector<double>(8, 0.5), std::vector<double>(8, -1), "flow.flo"});
    return field;
}

Value OtherThanDefault(const Parameter& parameter)
{
    const double usual = parameter.fallback.value_or(Value{}).x;
    switch (parameter.type) {
    case ParameterType::Point:
        return {3, -2};
    case ParameterType::Pair:
        return {2, 3};
    case ParameterType::Colour:
        return {0.125, 0.25, 0.5, 0.75};
    case ParameterType::Number:
        return {0.25};
    case ParameterType::Table:
        return {.table = {{1, 0, 1}, 3}};
    case ParameterType::Curve:
        return {.table = catalogue::ConstantCurve(7)};
    case ParameterType::Box:
        return {1, 0, 2, 1};
    case ParameterType::Numbers:
        return {.table = Numbers(parameter)};
    case ParameterType::Size:
        return {2, 3};
    case ParameterType::Vectors:
        return {.vectors = SomeVectors()};
    case ParameterType::Stops:
        return {.table = {{0, 1, 0, 0, 1, 99, 0, 0.5, 1, 0.25}, catalogue::kStopColumns}};
    case ParameterType::Lut:
        return {.table = {std::vector<double>(1024, 9), catalogue::kLutColumns, "lut.txt"}};
    case ParameterType::Flag:
        return {usual == 0 ? 1.0 : 0.0};
    case ParameterType::Choice:
    case ParameterType::Set:
        return {(usual == parameter.choices[1].value ? parameter.choices[0] : parameter.choices[1]).value};
    case ParameterType::Integer:
        break;
    }
    return {1};
}

// Some operators look for the host's pictures when they are constructed.
std::unique_ptr<catalogue::Operator> Make(const Entry& entry)
{
    host::RegisterPictureClass();
    return entry.make(true);
}

// An operator with pictures at all its inputs and outputs, and a mask where it needs one.
struct Bench {
    explicit Bench(const Entry& entry) : Bench(entry, UsualPair(entry).from, UsualPair(entry).to) {}

    Bench(const Entry& entry, const GUID& from, const GUID& to) : op(Make(entry))
    {
        for (std::size_t i = 0; i < entry.inputs.size(); ++i) {
            inputs.push_back(host::Picture::Create(from, 4, 2));
            op->SetInput(i, inputs.back().Get());
        }
        for (std::size_t i = 0; i < entry.outputs.size(); ++i) {
            outputs.push_back(host::Picture::Create(to, 4, 2));
            op->SetOutput(i, outputs.back().Get());
        }
        op->Processor().SetProcessingMode(entry.channels);
        for (const Parameter& parameter : entry.parameters)
            if (parameter.required) parameter.apply(op->Processor(), OtherThanDefault(parameter));
        if (entry.mask != catalogue::MaskUse::Required) return;
        const bool deep = vfILFindFormat(from)->sampleBytes == 2;
        mask = host::Picture::Create(deep ? PXFormat_Mono16 : PXFormat_Mono8, 4, 2);
        op->Frame()->SetMask(0, 0, 4, 2, mask.Get(), PXImageChannel_MONO);
    }

    bool Verifies() const { return op->Processor().Verify() == VFIL_SUCCESS; }
    unsigned long Code() const { return op->Processor().GetLastError().GetErrorCode(); }

    std::vector<host::PicturePtr> inputs;
    std::vector<host::PicturePtr> outputs;
    host::PicturePtr mask;
    std::unique_ptr<catalogue::Operator> op;
};

std::vector<GUID> AllFormats()
{
    std::vector<GUID> formats;
    for (std::size_t i = 0; const vfILFormatInfo* info = vfILFormatAt(i); ++i)
        formats.push_back(info->id);
    return formats;
}

long RowSum(const host::Picture& picture, long y)
{
    return std::accumulate(picture.Row(y), picture.Row(y) + picture.RowBytes(), 0L);
}

TEST(Names, FollowTheLibrary)
{
    EXPECT_EQ(catalogue::ParameterName("SetImgAPremultiplied"), "img-a-premultiplied");
    EXPECT_EQ(catalogue::ParameterName("SetReverseFlag"), "reverse");
    EXPECT_EQ(catalogue::CommandName("vfILYCCA2BGRA"), "ycca2bgra");
    EXPECT_EQ(catalogue::CommandName("vfIL16to8"), "16to8");
    EXPECT_EQ(catalogue::CommandName("vfIL2TapIIR"), "2tap-iir");
    EXPECT_EQ(catalogue::CommandName("vfILInvNonAddImage"), "inv-non-add");
    EXPECT_EQ(catalogue::CommandName("vfILMorphologicalEdge"), "morphological-edge");
    EXPECT_EQ(catalogue::FormatName(PXFormat_YUV422_709_SplitOdd), "yuv422-709-splitodd");
    for (std::size_t i = 0; const vfILFormatInfo* info = vfILFormatAt(i); ++i) {
        EXPECT_EQ(catalogue::FindFormat(catalogue::FormatName(info->id)), info);
    }
    EXPECT_EQ(catalogue::FindFormat("RGBA32"), nullptr);
}

// Which class is missing tells `./run check names`.
TEST(Catalogue, HasEveryNameOnce)
{
    for (const Entry& entry : catalogue::Entries()) {
        EXPECT_EQ(catalogue::Find(entry.name), &entry);
        const std::string rule = catalogue::CommandName(entry.className);
        EXPECT_EQ(entry.alias.empty() ? entry.name : entry.alias, rule);
        EXPECT_EQ(catalogue::Find(rule), &entry);
    }
}

TEST(Operator, PlainArithmeticIsAFlagOfItsProcessor)
{
    struct Probe : vfILInvertImg {
        int SimdFlag() const { return m_simdAvailable; }
    };
    catalogue::OperatorOf<Probe> plain(false);
    catalogue::OperatorOf<Probe> usual(true);
    EXPECT_EQ(static_cast<Probe&>(plain.Processor()).SimdFlag(), 0);
    EXPECT_EQ(static_cast<Probe&>(usual.Processor()).SimdFlag(), 1);
}

// Programs look for roles, people for names.
TEST(EachEntry, RolesAreThoseOfTheNames)
{
    using catalogue::ParameterRole;
    for (const Entry& entry : catalogue::Entries()) {
        for (const Parameter& parameter : entry.parameters) {
            const auto is = [&](const char* word) { return parameter.name.find(word) != std::string::npos; };
            const ParameterRole role = is("premultipl")     ? ParameterRole::Premultiplication
                                       : is("radius")       ? ParameterRole::Radius
                                       : is("dominant")     ? ParameterRole::DominantInput
                                       : is("input-offset") ? ParameterRole::InputOffset
                                       : is("do-filtering") ? ParameterRole::ChromaFilter
                                       : is("do-dithering") ? ParameterRole::Dither
                                       : is("key-color")    ? ParameterRole::KeyColour
                                       : is("color-model") && !parameter.fallback ? ParameterRole::ColourModel
                                       : is("type") && entry.fields == catalogue::FieldUse::Splits
                                           ? ParameterRole::MissingRows
                                           : ParameterRole::None;
            EXPECT_EQ(parameter.role, role) << entry.name << " " << parameter.name;
        }
        EXPECT_EQ(entry.copies, entry.name == "copy");
    }
}

TEST(EachEntry, FormatsAreThoseOfVerify)
{
    for (const Entry& entry : catalogue::Entries()) {
        for (const GUID& from : AllFormats()) {
            const auto pairs = [&](const FormatPair& pair) { return pair.from == from; };
            const bool listed = std::count(entry.formats.begin(), entry.formats.end(), from) != 0;
            EXPECT_TRUE(entry.conversions.empty() ||
                        std::any_of(entry.conversions.begin(), entry.conversions.end(), pairs) == listed);
            for (const GUID& to : AllFormats()) {
                if (catalogue::IsGenerator(entry) && from != to) continue;
                EXPECT_EQ(Bench(entry, from, to).Verifies(), Takes(entry, from, to))
                    << entry.name << " " << vfILFindFormat(from)->name << " " << vfILFindFormat(to)->name;
            }
        }
    }
}

// A picture that is darker at its bottom stays so, but for the pairs that say otherwise.
TEST(EachEntry, ConversionsTurnThePictureOverWhereTheySaySo)
{
    for (const Entry& entry : catalogue::Entries()) {
        for (const FormatPair& pair : entry.conversions) {
            const Bench bench(entry, pair.from, pair.to);
            for (const host::PicturePtr& input : bench.inputs) {
                for (const long y : {0, 1}) {
                    std::memset(input->Row(y), y == 0 ? 40 : 200, input->RowBytes());
                    if (input->FormatInfo().alphaPlane) std::memset(input->AlphaRow(y), y == 0 ? 40 : 200, 4);
                }
            }
            ASSERT_EQ(bench.op->Processor().Execute(), VFIL_SUCCESS) << entry.name;
            for (const host::PicturePtr& output : bench.outputs)
                EXPECT_EQ(RowSum(*output, 0) > RowSum(*output, 1), pair.turnsOver) << entry.name;
        }
    }
}

TEST(EachEntry, WholePicturesAndNoMasksAreThoseOfVerify)
{
    for (const Entry& entry : catalogue::Entries()) {
        const Bench bench(entry);
        vfILImgProc* frame = bench.op->Frame();
        if (!frame) continue;
        frame->SetROI(vfILBbox2l(0, 0, 3, 2));
        EXPECT_EQ(bench.Verifies(), !entry.whole) << entry.name;
        frame->SetROI(vfILBbox2l(0, 0, 4, 2));
        const host::PicturePtr mask = host::Picture::Create(PXFormat_Mono8, 4, 2);
        frame->SetMask(0, 0, 4, 2, mask.Get(), PXImageChannel_MONO);
        const bool bytes = vfILFindFormat(UsualPair(entry).from)->sampleBytes == 1;
        EXPECT_EQ(bench.Verifies(), bytes && entry.mask != catalogue::MaskUse::None) << entry.name;
    }
}

// A number beyond a limit, so far that it stays beyond it as a float.
double Step(double limit, ParameterType type)
{
    const bool whole = type != ParameterType::Number && type != ParameterType::Pair;
    return whole ? 1 : std::max(1e-6, limit * 1e-6);
}

TEST(EachEntry, RangesAreThoseOfVerify)
{
    for (const Entry& entry : catalogue::Entries()) {
        for (const Parameter& parameter : entry.parameters) {
            if (parameter.refusal == 0 || parameter.required || parameter.type == ParameterType::Box)
                continue;
            const Bench bench(entry);
            const double low = parameter.minimum;
            const double high = parameter.maximum;
            for (const double value :
                 {low, low - Step(low, parameter.type), high, high + Step(high, parameter.type)}) {
                parameter.apply(bench.op->Processor(), {value, value});
                const bool inside = value >= low && value <= high;
                // What is inside may ask for more memory than there is.
                EXPECT_EQ(bench.Verifies() || bench.Code() == 0x10001, inside) << entry.name << " " << value;
                EXPECT_TRUE(inside || bench.Code() == parameter.refusal);
            }
        }
    }
}

// Where Verify takes anything, applying and reading must still meet: a swapped pair of accessors shows here.
TEST(EachEntry, ParametersReadBackAndHaveTheirDefaults)
{
    for (const Entry& entry : catalogue::Entries()) {
        for (const Parameter& changed : entry.parameters) {
            const Bench bench(entry);
            const Value usual = changed.fallback.value_or(Value{});
            EXPECT_TRUE(changed.required || changed.read(bench.op->Processor()) == usual)
                << entry.name << " " << changed.name;
            changed.apply(bench.op->Processor(), OtherThanDefault(changed));
            for (const Parameter& parameter : entry.parameters) {
                const bool same = parameter.name == changed.name;
                EXPECT_EQ(parameter.read(bench.op->Processor()), same || parameter.required
                                                                     ? OtherThanDefault(parameter)
                                                                     : parameter.fallback.value_or(Value{}))
                    << entry.name << " " << parameter.name << " after " << changed.name;
            }
        }
    }
}

// Whether the upper row of a result goes by the lower row of an input.
bool MixesRows(const Entry& entry, const Parameter* changed)
{
    const Bench bench(entry);
    if (changed) changed->apply(bench.op->Processor(), OtherThanDefault(*changed));
    std::vector<long> sums;
    for (const int value : {40, 200}) {
        for (const host::PicturePtr& input : bench.inputs) {
            std::memset(input->Row(1), 120, input->RowBytes());
            std::memset(input->Row(0), value, input->RowBytes());
        }
        if (bench.op->Processor().Execute() != VFIL_SUCCESS) return false;
        const bool over = !entry.conversions.empty() && entry.conversions.front().turnsOver;
        for (const host::PicturePtr& output : bench.outputs)
            sums.push_back(RowSum(*output, over ? 0 : 1));
    }
    const auto half = sums.begin() + static_cast<std::ptrdiff_t>(bench.outputs.size());
    return !std::equal(sums.begin(), half, half);
}

// Who forgets the flag lets people mix the fields of their clips without a word.
TEST(EachEntry, MixesRowsWhereItSaysSo)
{
    for (const Entry& entry : catalogue::Entries()) {
        bool mixes = MixesRows(entry, nullptr);
        for (const Parameter& parameter : entry.parameters)
            mixes = mixes || MixesRows(entry, &parameter);
        const bool onPurpose =
            entry.fields != catalogue::FieldUse::None && entry.fields != catalogue::FieldUse::Weaves;
        EXPECT_TRUE(!mixes || entry.movesRows || onPurpose) << entry.name;
        EXPECT_TRUE(!entry.movesRows || entry.spatialReach > 0 || entry.radiusReach > 0) << entry.name;
    }
}

// A fixed channel comes out the same when it is left out, or the class refuses to leave it out.
TEST(EachEntry, FixedChannelsCannotBeLeftOut)
{
    for (const Entry& entry : catalogue::Entries()) {
        const Bench bench(entry);
        for (const host::PicturePtr& input : bench.inputs) {
            std::memset(input->Pixels(), input.Get() == bench.inputs[0].Get() ? 190 : 80, input->Bytes());
        }
        if (bench.mask) std::memset(bench.mask->Pixels(), 255, bench.mask->Bytes());
        vfILProcessor& processor = bench.op->Processor();
        const std::uint8_t* pixels = bench.outputs[0]->Pixels();
        EXPECT_EQ(processor.Execute(), VFIL_SUCCESS) << entry.name;
        const std::vector<std::uint8_t> usual(pixels, pixels + 4);
        for (std::size_t c = 0; c < 4; ++c) {
            if ((entry.fixedChannels >> c & 1) == 0) continue;
            processor.SetProcessingMode(VFIL_MODE_RGBA & ~(1ul << c));
            EXPECT_TRUE(processor.Execute() != VFIL_SUCCESS || pixels[c] == usual[c])
                << entry.name << " channel " << c;
        }
    }
}

} // namespace
