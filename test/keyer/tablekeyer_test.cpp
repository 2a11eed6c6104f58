/// \file
/// Keys by tables and the colour beside a key, against their formulas over the library's tables.
#include "keyer/keyercheck.h"
#include "support/convertmodel.h"
#include "support/framemodel.h"

#include <vfil/tablekeyer.h>
#include <vfil/tables.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace vfil::test {
namespace {

using Lut = std::array<unsigned char, 256>;

Lut RandomLut(std::mt19937& random)
{
    Lut lut;
    std::generate(lut.begin(), lut.end(),
                  [&] { return static_cast<unsigned char>(RandomSample(random, 255)); });
    return lut;
}

struct Hls {
    int hue, lightness, saturation;
};

Hls ModelHls(const Pixel& p)
{
    const auto [least, most] = std::minmax({p[0], p[1], p[2]});
    const auto at = [](const vfILByteTable& table, int a, int b) {
        return int{table[static_cast<std::size_t>(a)][static_cast<std::size_t>(b)]};
    };
    const int d = most - least;
    const int l = (most + 1 + least) >> 1;
    const int s = l < 128 ? at(ilNormDiv, d, most + least) : at(ilNormDiv, d, 510 - (most + least));
    if (d < 1) return {0, l, s};
    const int third = p[0] == most ? 0 : p[1] == most ? 1 : 2;
    const int e = p[static_cast<std::size_t>((third + 1) % 3)] - p[static_cast<std::size_t>((third + 2) % 3)];
    const int turn = at(ilHueTable, std::abs(e), d);
    return {(85 * third + (e < 0 ? -turn : turn)) & 255, l, s};
}

// What a run is made of. Tables that are not used stay null.
struct KeySetup {
    bool simd;
    bool mask;
    int keep;
    unsigned long fields;
    std::array<Lut, 3> luts; ///< hue or luminance, lightness, saturation
    Lut matte;
    bool hasMatte;

    explicit KeySetup(std::mt19937& random)
        : simd(random() % 2), mask(random() % 2), keep(static_cast<int>(random() % 2)),
          fields(RandomFieldBits(random)), luts{RandomLut(random), RandomLut(random), RandomLut(random)},
          matte(RandomLut(random)), hasMatte(random() % 2)
    {}
    int Mapped(int alpha) const { return hasMatte ? matte[static_cast<std::size_t>(alpha)] : alpha; }
};

// Runs a processor over a picture of noise, partly in place; model(pixel) gives what a pixel that is treated
// becomes.
template <class Processor, class Model>
void CheckRun(Processor& processor, const KeySetup& setup, std::mt19937& random, Model model)
{
    GuardedImage in(PXFormat_RGBA32, RandomIn(random, 1, 150), RandomIn(random, 1, 4));
    GuardedImage out(PXFormat_RGBA32, in.Width(), in.Height());
    GuardedImage mask(PXFormat_Mono8, in.Width(), in.Height());
    in.Randomise(random);
    mask.Randomise(random);
    out.SetImageState(PXImageState_KEYED, 1);
    out.SetImageState(PXImageState_PREMULTIPLIED, 1);
    processor.SetInputImg(&in);
    processor.SetOutputImg(&out);
    processor.SetProcessingMode(setup.fields | random() % 16);
    if (setup.mask) processor.SetMask({0, 0, in.Width(), in.Height()}, &mask, PXImageChannel_MONO);
    ASSERT_EQ(processor.Verify(), VFIL_SUCCESS);
    ASSERT_EQ(processor.Execute(), VFIL_SUCCESS);
    for (long y = 0; y < in.Height(); ++y) {
        const unsigned long skipped = y % 2 == 0 ? VFIL_MODE_ODD_ROWS : VFIL_MODE_EVEN_ROWS;
        if ((setup.fields & skipped) != 0) continue;
        for (long x = 0; x < in.Width(); ++x) {
            const Pixel pixel = in.Get(x, y);
            const bool treated = !setup.mask || mask.Get(x, y)[0] != 0;
            ASSERT_EQ(out.Get(x, y), treated ? model(pixel) : pixel) << x << "," << y;
        }
    }
    EXPECT_TRUE(out.AreGuardsIntact());
    for (const PXImageState id : {PXImageState_KEYED, PXImageState_PREMULTIPLIED}) {
        long state = 0;
        out.GetImageState(id, &state);
        EXPECT_EQ(state, (std::is_base_of_v<vfILChromaKeyImg, Processor> ? 0 : 1));
    }
}

TEST(ChromaKeyImg, LooksHueLightnessAndSaturationUp)
{
    std::mt19937 random(1);
    for (int i = 0; i < 300; ++i) {
        KeySetup setup(random);
        Switched<vfILChromaKeyImg> key(setup.simd);
        key.SetHueMapLUT(setup.luts[0].data());
        key.SetLightnessMapLUT(setup.luts[1].data());
        key.SetSaturationMapLUT(setup.luts[2].data());
        if (setup.hasMatte) key.SetMatteMapLUT(setup.matte.data());
        key.KeepOriginalAlpha(setup.keep);
        key.SetConversionFactors(9, 9, 9);
        key.SetKeyType(4);
        key.SetFgSurValue(1);
        key.SetForegoundSurpress(1);
        key.InvertKey(1);
        CheckRun(key, setup, random, [&](Pixel p) {
            const Hls hls = ModelHls(p);
            const auto look = [&](std::size_t lut, int at) {
                return setup.luts[lut][static_cast<std::size_t>(at)];
            };
            const int a = look(0, hls.hue);
            const bool outside = look(1, hls.lightness) == 255 || a == 255 || look(2, hls.saturation) == 255;
            const int result = setup.Mapped(outside ? 255 : a);
            p[3] = setup.keep != 0 ? std::min(result, p[3]) : result;
            return p;
        });
    }
}

TEST(ChromaKeyImg, HuesBeginAtRedAndGreysHaveNone)
{
    Lut same;
    for (std::size_t i = 0; i < same.size(); ++i)
        same[i] = static_cast<unsigned char>(i);
    Lut none{};
    // Yellow is red's by the tie, cyan green's; 50 of 150 is a sixth of 85 of 255, rounded.
    const Pixel colours[] = {{255, 0, 0},   {255, 255, 0}, {0, 255, 0},    {0, 255, 255}, {0, 0, 255},
                             {255, 0, 255}, {77, 77, 77},  {200, 100, 50}, {200, 50, 100}};
    const int hues[] = {0, 43, 85, 128, 170, 213, 0, 14, 242};
    GuardedImage image(PXFormat_RGBA32, 9, 1);
    for (long i = 0; i < 9; ++i)
        image.Set(i, 0, colours[i]);
    vfILChromaKeyImg key;
    Connect(key, &image, nullptr, &image);
    key.SetHueMapLUT(same.data());
    key.SetLightnessMapLUT(none.data());
    key.SetSaturationMapLUT(none.data());
    ASSERT_EQ(key.Execute(), VFIL_SUCCESS);
    for (long i = 0; i < 9; ++i)
        EXPECT_EQ(image.Get(i, 0)[3], hues[i]) << i;
}

TEST(LumKeyImg, LooksTheMiddleOfTheEndsUp)
{
    std::mt19937 random(2);
    for (int i = 0; i < 200; ++i) {
        KeySetup setup(random);
        Switched<vfILLumKeyImg> key(setup.simd);
        key.SetLuminanceMapLUT(setup.luts[0].data());
        if (setup.hasMatte) key.SetMatteMapLUT(setup.matte.data());
        key.KeepOriginalAlpha(setup.keep);
        key.InvertKey(1);
        CheckRun(key, setup, random, [&](Pixel p) {
            const auto [least, most] = std::minmax({p[0], p[1], p[2]});
            const int result = setup.Mapped(setup.luts[0][static_cast<std::size_t>(most + least) / 2]);
            p[3] = setup.keep != 0 ? std::min(result, p[3]) : result;
            return p;
        });
    }
}

TEST(FGSurpress, LimitsOneChannelByTheOneBefore)
{
    std::mt19937 random(3);
    for (int i = 0; i < 100; ++i) {
        const KeySetup setup(random);
        Switched<vfILFGSurpress> surpress(setup.simd);
        const long type = i % 5 == 0 ? 2 : RandomIn(random, 2, 6);
        if (i % 5 != 0) surpress.SetKeyType(type);
        surpress.SetFgSurValue(std::numeric_limits<double>::quiet_NaN());
        CheckRun(surpress, setup, random, [&](Pixel p) {
            if (type == 4) p[2] = std::min(p[2], p[1]);
            if (type == 2) p[1] = std::min(p[1], p[0]);
            return p;
        });
    }
    for (const GUID& format : {PXFormat_RGBA64, PXFormat_Mono8}) {
        GuardedImage in(format, 3, 2);
        GuardedImage out(format, 3, 2);
        in.Randomise(random);
        const auto before = out.Bytes();
        vfILFGSurpress surpress;
        surpress.SetInputImg(&in);
        surpress.SetOutputImg(&out);
        const bool deep = format == PXFormat_RGBA64;
        EXPECT_EQ(surpress.Execute(), deep ? VFIL_SUCCESS : VFIL_FAILURE);
        EXPECT_EQ(surpress.GetLastError().GetErrorCode(), deep ? 0 : 0x1000D);
        EXPECT_EQ(out.Bytes(), before);
        EXPECT_EQ(std::string(surpress.GetLastErrorText()).find("16 bit") != std::string::npos, deep);
    }
}

// The replacement of one pixel; 16 bits of fraction in the gain.
Pixel ModelReplace(const Pixel& a, const Pixel& b, const vfILColor& key, bool is709, double offset,
                   double gain)
{
    const auto mix = [&](int from, double to) {
        const auto weight = static_cast<std::size_t>(a[3]);
        return ilNormMult[weight][static_cast<std::size_t>(from)] +
               ilNormMult[255 - weight][static_cast<std::size_t>(std::clamp(to, 0.0, 255.0))];
    };
    unsigned char keyYcc[4];
    key.GetColorAs32(keyYcc, is709 ? PXColorModel_YCC709 : PXColorModel_YCC);
    const Triple ycc = EncodePixel(is709, {a[0], a[1], a[2]});
    const double gained = std::floor(std::round(65536 * gain) * ycc[0] / 65536) + std::round(255 * offset);
    const Triple mixed{mix(ycc[0], gained), mix(ycc[1], keyYcc[1]), mix(ycc[2], keyYcc[2])};
    const Triple rgb = DecodePixel(is709, false, mixed);
    return {rgb[0], rgb[1], rgb[2], b[3]};
}

TEST(ChromaReplace, GivesClearPixelsTheChromaOfTheKey)
{
    std::mt19937 random(4);
    for (int i = 0; i < 200; ++i) {
        const bool is709 = random() % 2;
        const vfILColor key = AnyColor(random);
        const double offset = Real(random, -1, 1);
        const double gain = i % 8 == 0 ? 1e4 : Real(random, 0, 2);
        GuardedImage a(PXFormat_RGBA32, RandomIn(random, 1, 150), 2);
        GuardedImage b(PXFormat_RGBA32, a.Width(), 2), out(PXFormat_RGBA32, a.Width(), 2);
        a.Randomise(random);
        b.Randomise(random);
        GuardedImage& target = i % 3 == 0 ? b : out;
        Snapshot expected(b);
        for (long y = 0; y < 2; ++y)
            for (long x = 0; x < a.Width(); ++x)
                expected.At(x, y) = ModelReplace(a.Get(x, y), b.Get(x, y), key, is709, offset, gain);
        Switched<vfILChromaReplace> replace(random() % 2);
        Connect(replace, &a, &b, &target);
        replace.SetKeyColor(key);
        replace.SetLuma(offset, gain);
        if (is709) replace.SetColorModel(PXColorModel_YCC709);
        replace.SetProcessingMode(random() % 16);
        ASSERT_EQ(replace.Verify(), VFIL_SUCCESS);
        ASSERT_EQ(replace.Execute(), VFIL_SUCCESS);
        ASSERT_EQ(Difference(expected, target), "");
    }
}

// Nobody called Verify: no run fails without a code.
TEST(TableKeyers, RefuseInARunWhatTheyCannotDo)
{
    vfILChromaKeyImg hls;
    vfILLumKeyImg lum;
    for (vfILImgProc* key : std::initializer_list<vfILImgProc*>{&hls, &lum})
        for (const bool deep : {false, true}) {
            GuardedImage image(deep ? PXFormat_RGBA64 : PXFormat_RGBA32, 5, 2);
            Connect(*key, &image, nullptr, &image);
            EXPECT_EQ(key->Execute(), VFIL_FAILURE);
            EXPECT_EQ(key->GetLastError().GetErrorCode(), deep ? 0x1000Du : 0x10018u);
        }
}

} // namespace
} // namespace vfil::test
