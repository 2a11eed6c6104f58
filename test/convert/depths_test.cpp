#include "support/converters.h"
#include "support/framemodel.h"

#include <gtest/gtest.h>

using namespace vfil::test;

namespace {

/// A byte order or depth changed, pixel by pixel.
Bytes Repack(const Conversion& c, const Bytes& input)
{
    Bytes output;
    const bool swap = RedIndex(c.from) != RedIndex(c.to);
    for (long i = 0; i < c.width * c.height; ++i) {
        const long row = i / c.width;
        const long source = swap ? (c.height - 1 - row) * c.width + i % c.width : i;
        const std::uint8_t* in = input.data() + source * c.from.pixelBytes;
        for (int byte = 0; byte < c.to.pixelBytes; ++byte) {
            if (c.from.sampleBytes == 2)
                output.push_back(in[byte * 2 + 1]); // the high byte, not rounded
            else if (c.to.sampleBytes == 2)
                output.push_back(in[byte / 2]);
            else if (byte >= c.from.pixelBytes)
                output.push_back(255);
            else
                output.push_back(in[swap && byte != 1 && byte != 3 ? 2 - byte : byte]);
        }
    }
    return output;
}

TEST(Depths, EveryPairGivesTheBytesOfTheModel)
{
    for (const Converter& converter : std::vector(std::begin(kConverters) + 5, std::end(kConverters)))
        CompareWithModel(converter, 2, [](const Conversion& c, const Bytes& input, const Bytes&) {
            return c.from.model == c.to.model ? Repack(c, input) : ThroughColor(c.from, c.to, input);
        });
}

TEST(LumaToAlpha, ReplacesAlphaByTheMask)
{
    std::mt19937 random(12);
    const std::pair<GUID, GUID> formats[] = {{PXFormat_RGBA32, PXFormat_Mono8},
                                             {PXFormat_RGBA64, PXFormat_Mono16}};
    for (const auto& [format, maskFormat] : formats)
        for (int bits = 0; bits < 8; ++bits)
            for (const long width : {1, 2, 5, 16, 33, 67}) {
                const bool masked = bits & 1, inPlace = bits & 2, simd = bits & 4;
                GuardedImage in(format, width, 4), out(format, width, 4), mask(maskFormat, width, 4);
                in.Randomise(random);
                mask.Randomise(random);
                const int full = in.Format().Full();
                in.Set(0, 0, {full, full, full, 1});
                in.Set(0, 1, {full, 0, 0, 1});
                mask.Set(0, 0, {full});
                mask.Set(0, 1, {full});
                Snapshot expected(in);
                for (long y = 0; y < 4; ++y)
                    for (long x = 0; x < width; ++x) {
                        Pixel& p = expected.At(x, y);
                        const auto v = static_cast<int>((29LL * p[0] + 57LL * p[1] + 11LL * p[2]) / 97);
                        p[3] = masked ? Arithmetic{full}.Blend(v, p[3], mask.Get(x, y)[0]) : v;
                    }
                ASSERT_EQ(expected.At(0, 0)[3], full);
                ASSERT_EQ(expected.At(0, 1)[3], full == 255 ? 76 : 19592);
                Switched<vfILRGBA2Alpha> p(simd);
                Connect(p, &in, nullptr, inPlace ? &in : &out);
                if (masked) p.SetMask({0, 0, width, 4}, &mask, PXImageChannel_MONO);
                ASSERT_EQ(p.Verify(), VFIL_SUCCESS);
                ASSERT_EQ(p.Execute(), VFIL_SUCCESS);
                EXPECT_EQ(Difference(expected, inPlace ? in : out), "") << width << " bits " << bits;
            }
}

TEST(LumaToAlpha, TakesWholePicturesOfRgba)
{
    for (const FormatCase& format : kFormats)
        for (const bool whole : {true, false}) {
            GuardedImage in(format.id, 4, 3), out(format.id, 4, 3);
            vfILRGBA2Alpha p;
            Connect(p, &in, nullptr, &out);
            if (!whole) p.SetROI({1, 0, 2, 3});
            const bool rgba = IsAmong(format, {"RGBA32", "RGBA64"});
            if (!rgba && !whole) continue; // two faults
            EXPECT_EQ(p.Verify(), rgba && whole ? VFIL_SUCCESS : VFIL_FAILURE) << format.name;
            if (rgba == whole) continue;
            EXPECT_EQ(p.GetLastError().GetErrorCode(), rgba ? 0x20001U : kBadInput) << format.name;
        }
}

} // namespace
