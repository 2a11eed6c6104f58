/// \file
/// The keyers of 4:2:2 video against a model that walks the pixels of the picture, not its memory.
#include "support/guardedimage.h"
#include "support/processors.h"

#include <vfil/videokeyer.h>

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

using namespace vfil::test;

namespace {

int ToByte(double v)
{
    return static_cast<int>(std::clamp(v, 0.0, 255.0));
}

int Round(double v)
{
    return static_cast<int>(std::round(v)); // half away from zero
}

/// a / 2^bits, towards minus infinity.
int Down(double a, int bits)
{
    return static_cast<int>(std::floor(std::ldexp(a, -bits)));
}

int Mult(int a, int b)
{
    return (a * b * 2 + 255) / 510;
}

int Mix(int a, int b, int m)
{
    return Mult(a, m) + Mult(b, 255 - m);
}

struct Macropixel {
    int y[2];
    int c[2]; // Cb, Cr

    bool operator==(const Macropixel&) const = default;
};

const Macropixel kBlack{{16, 16}, {128, 128}};

std::array<int, 4> Packed(const vfILColor& color, int model)
{
    unsigned char bytes[4];
    color.GetColorAs32(bytes, static_cast<PXColorModel>(model));
    return {bytes[0], bytes[1], bytes[2], bytes[3]};
}

// --- The sector key.

struct SectorSetting {
    double tolerance, lift, gain, low, high;
};

struct SectorModel {
    vfILColor key, replace;
    SectorSetting sector, spill;
    double lumaGain, lumaOffset;
    bool correct, matte;
    int model;

    int Matte(const Macropixel& a, const SectorSetting& s) const
    {
        double cb, cr;
        model == 0x40 ? key.GetColorAsYCCA(nullptr, &cb, &cr, nullptr)
                      : key.GetColorAsYCCA709(nullptr, &cb, &cr, nullptr);
        const double phi = -std::atan2(cr - 0.5, cb - 0.5);
        const int u = a.c[0] - 128, v = a.c[1] - 128;
        const int cosine = Round(256 * std::cos(phi)), sine = Round(256 * std::sin(phi));
        const int z = std::abs(Down(u * sine + v * cosine, 7));
        const double t = std::round(256 / std::tan((s.tolerance + 1) * M_PI / 360));
        const double inside =
            Down(u * cosine - v * sine, 7) - std::floor(z * t / 256) - Round(s.lift * 0.4 * 256);
        const int k = ToByte(std::floor(inside * Round((s.gain * 8 + 1) * 256) / 256));
        const double map = std::round(25600 / (s.high - s.low));
        return ToByte(std::floor((255 - k - Round(2.55 * s.low)) * map / 256));
    }
    int Spilled(int y) const
    {
        return ToByte(std::floor(y * std::round(lumaGain * 256) / 256) + std::round(255 * lumaOffset));
    }
    /// \p half: -1 for both pixels, else the one that is keyed.
    Macropixel operator()(const Macropixel& a, const Macropixel& b, int half) const
    {
        const int m = Matte(a, sector);
        const int luma = (m * 220 + 4096) / 256;
        if (matte) return {{half == 1 ? 16 : luma, half == 0 ? 16 : luma}, {128, 128}};
        Macropixel f = a;
        if (correct && m != 0) {
            const int s = Matte(a, spill);
            const auto ycc = Packed(replace, model);
            for (int i = 0; i < 2; ++i) {
                f.y[i] = Mix(a.y[i], Spilled(a.y[half == 0 ? 1 : i]), s);
                f.c[i] = Mix(a.c[i], ycc[static_cast<std::size_t>(i) + 1], s);
            }
            if (half == 1) f.c[0] = f.y[1], f.y[1] = Spilled(a.y[1]);
        }
        Macropixel out;
        for (int i = 0; i < 2; ++i) {
            out.y[i] = half == 1 - i ? b.y[i] : Mix(f.y[i], b.y[i], m);
            out.c[i] = Mix(f.c[i], b.c[i], m);
            if (half >= 0) out.c[i] = Mult(out.c[i], 128) + Mult(b.c[i], 127);
        }
        return out;
    }
};

// --- The colour-difference key.

struct DifferenceModel {
    vfILColor key, spill;
    double c0, c1, c2, low, high, factor, term, threshold, softness;
    bool correct, matte, fast;
    int model;

    double M(int row, int column) const
    {
        const auto& m = model == 0x40 ? s_dfArrayYCCAOffsettoRGBA : s_dfArrayYCCA709OffsettoRGBA;
        return m[static_cast<std::size_t>(4 * row + column)];
    }
    /// The channels key, p, q and the other one.
    std::array<int, 4> Channels() const
    {
        const auto rgb = Packed(key, 1);
        const bool green = rgb[2] < rgb[1] || (fast && rgb[2] == rgb[1]);
        return green ? std::array{1, 0, 2, 2} : std::array{2, 1, 0, 1};
    }
    double KeyLevel() const
    {
        const auto ycc = Packed(key, model);
        const int column = Channels()[0];
        return ycc[0] * M(0, column) + ycc[1] * M(1, column) + ycc[2] * M(2, column);
    }
    int Channel(const Macropixel& a, int i, int column) const
    {
        const auto w = [&](int row) { return Round(512 * M(row, column)); };
        const int cb = column == 0 ? 0 : w(1) * a.c[0];
        return ToByte(Down(w(0) * a.y[i] + cb + w(2) * a.c[1], 9) + Round(255 * M(3, column)));
    }
    int FastKey(const Macropixel& a, int i) const
    {
        const auto [k, p, q, o] = Channels();
        const auto w = [&](int row) { return c2 * M(row, q) + c0 * c1 * M(row, p); };
        const int limited = std::min(Channel(a, i, k), Round(KeyLevel() + 255 * M(3, k)));
        const double sum = Round(512 * w(0)) * a.y[i] + Round(512 * w(1)) * a.c[0] +
                           Round(512 * w(2)) * a.c[1] + Down(limited * Round(-c0 * 4096), 3);
        return Down(sum, 9) + Round(255 + 255 * w(3));
    }
    double FoldedKey(const Macropixel& a, int i) const
    {
        const auto [k, p, q, o] = Channels();
        double test = 0, below = 0, above = 0;
        const int samples[] = {a.y[i], a.c[0], a.c[1]};
        for (int row = 0; row < 3; ++row) {
            const double rest = c2 * M(row, q) + c0 * c1 * M(row, p);
            test += samples[row] * Round(M(row, k) * 65536);
            below += samples[row] * Round((rest - c0 * M(row, k)) * 65536);
            above += samples[row] * Round(rest * 65536);
        }
        const double constant = 255 + 255 * (c2 * M(3, q) - c0 * (M(3, k) - c1 * M(3, p)));
        const double level = KeyLevel();
        if (test < Round(level * 65536)) return below + Round(constant * 65536);
        return above + Round((constant - c0 * level) * 65536);
    }
    int MatteOf(double value, double least, double most, int whole) const
    {
        if (value <= least) return 0;
        if (value >= most) return 255;
        const double gain = std::round(65536 / (high - low));
        const double offset = std::round(16711680 * low / (high - low));
        return Down(whole * gain - offset, 16);
    }
    int Kept(const Macropixel& a, int i) const
    {
        const auto [k, p, q, o] = Channels();
        const int c = Channel(a, i, k);
        const int t = ToByte(std::max(Channel(a, i, o), Channel(a, i, 0)) - Round(threshold * 255));
        const int u = std::min(t + Round(Round(softness * 255) * 256 / 255.0), 255);
        if (c <= t) return 255;
        return c >= u ? 0 : Round((u - c) * 255.0 / (u - t));
    }
    Macropixel Fast(const Macropixel& a, const Macropixel& b) const
    {
        int m[2], k[2];
        for (int i = 0; i < 2; ++i) {
            k[i] = FastKey(a, i);
            m[i] = MatteOf(k[i], Round(255 * low), Round(255 * high), k[i]);
        }
        if (std::max(k[0], k[1]) <= Round(255 * low)) return b;
        Macropixel f = a;
        if (correct) {
            const int s[] = {Kept(a, 0), Kept(a, 1)};
            const auto ycc = Packed(spill, model);
            for (int i = 0; i < 2; ++i) {
                const int luma = ToByte(Down(a.y[i] * std::trunc(factor * 128), 7) + Round(term * 255));
                f.y[i] = Mix(a.y[i], luma, s[i]);
                f.c[i] = Mix(a.c[i], ycc[static_cast<std::size_t>(i) + 1], (s[0] + s[1] + 1) / 2);
            }
        }
        if (std::min(m[0], m[1]) >= Round(255 * high)) return f;
        Macropixel out;
        for (int i = 0; i < 2; ++i) {
            out.y[i] = Mix(f.y[i], b.y[i], m[i]);
            out.c[i] = Mix(f.c[i], b.c[i], (m[0] + m[1] + 1) / 2);
        }
        return out;
    }
    Macropixel operator()(const Macropixel& a, const Macropixel& b, int) const
    {
        if (fast && !matte) return Fast(a, b);
        const double least = Round(low * 255 * 65536), most = Round(high * 255 * 65536);
        const double k[] = {FoldedKey(a, 0), FoldedKey(a, 1)};
        if (std::max(k[0], k[1]) <= least) return matte ? kBlack : b;
        if (std::min(k[0], k[1]) >= most) return matte ? Macropixel{{235, 235}, {128, 128}} : a;
        Macropixel out{{}, {128, 128}};
        const int m[] = {MatteOf(k[0], least, most, Down(k[0], 16)),
                         MatteOf(k[1], least, most, Down(k[1], 16))};
        for (int i = 0; i < 2; ++i) {
            const int mean = (m[0] + m[1] + 1) >> 1;
            out.y[i] =
                (matte ? Down(m[i] * 56284 + 1048576, 16) : Down(a.y[i] * m[i] + b.y[i] * (255 - m[i]), 8)) &
                255;
            if (!matte) out.c[i] = Down(a.c[i] * mean + b.c[i] * (255 - mean), 8) & 255;
        }
        return out;
    }
};

// --- The luma key.

struct LumaModel {
    double clip, level, brightness, gain;
    bool reverse, matte;

    Macropixel operator()(const Macropixel& a, const Macropixel& b, int) const
    {
        const int low = Round(219 * clip + 16), high = Round(219 * level + 16);
        int k[2], m[2];
        for (int i = 0; i < 2; ++i) {
            k[i] = a.y[i];
            if (gain != 1 || brightness != 0)
                k[i] = std::clamp(
                    Down(Round(65536 * gain) * double{1} * a.y[i], 16) + Round(219 * brightness), 16, 235);
            if (reverse) k[i] = 251 - k[i];
            const double d = 1.0 / (high - low);
            m[i] = k[i] <= low ? 0
                   : k[i] >= high
                       ? 255
                       : Down(k[i] * std::round(16711680 * d) + std::round(-16711680.0 * low * d), 16);
        }
        if (std::max(k[0], k[1]) <= low) return matte ? kBlack : b;
        if (std::min(k[0], k[1]) >= high) return matte ? Macropixel{{235, 235}, {128, 128}} : a;
        Macropixel out{{}, {128, 128}};
        for (int i = 0; i < 2; ++i) {
            out.y[i] =
                matte ? Down(m[i] * 56284 + 1048576, 16) : Down(a.y[i] * m[i] + b.y[i] * (255 - m[i]), 8);
            if (!matte) out.c[i] = Down(a.c[i] * m[0] + b.c[i] * (255 - m[0]), 8);
        }
        return out;
    }
};

// --- Pictures.

using Rule = std::function<Macropixel(const Macropixel&, const Macropixel&, int)>;

struct Scene {
    vfILBbox2l crop;
    unsigned long mode = VFIL_MODE_RGB;
    bool matte = false;
    bool halves = false; ///< the keyer keys single pixels
};

Macropixel Read(const GuardedImage& image, long x, long y)
{
    const int luma = image.Format().Is('C') ? 1 : 0;
    const auto at = [&](long column) { return image.Get(column, y); };
    const auto l = static_cast<std::size_t>(luma);
    const Pixel first = at(x), second = x + 1 < image.Width() ? at(x + 1) : Pixel{};
    return {{first[l], second[l]}, {first[1 - l], second[1 - l]}};
}

void Write(GuardedImage& image, long x, long y, const Macropixel& m)
{
    for (int i = 0; i < 2 && x + i < image.Width(); ++i)
        image.Set(x + i, y, image.Format().Is('C') ? Pixel{m.c[i], m.y[i]} : Pixel{m.y[i], m.c[i]});
}

/// Whether the run treats image row y at all, and whether the crop keeps it.
bool IsKept(const GuardedImage& image, const Scene& scene, long y, bool& treated)
{
    const bool odd = scene.mode & VFIL_MODE_ODD_ROWS, even = scene.mode & VFIL_MODE_EVEN_ROWS;
    treated = !(odd && even) && (!odd || y % 2 == 1) && (!even || y % 2 == 0);
    const long low = scene.crop.GetOffsetY(), high = low + scene.crop.GetSizeY();
    const long height = image.Height();
    if (image.Format().Is('S') || odd == even) return y >= low && y < high;
    // A single field of a whole frame keeps half of the rows' numbers, whichever field it is.
    const long first = (height - 1) % 2 == (odd ? 1 : 0) ? height - 1 : height - 2;
    const long row = (first - y) / 2;
    return row >= (height - high) >> 1 && row < (height - low) >> 1;
}

void Model(const GuardedImage& a, const GuardedImage& b, GuardedImage& out, const Scene& given,
           const Rule& rule)
{
    Scene scene = given;
    const long width = out.Width(), even = width & ~1L;
    if (scene.crop == vfILBbox2l()) scene.crop = {0, 0, width, out.Height()};
    long left = std::clamp(scene.crop.GetOffsetX(), 0L, width);
    long right = std::clamp(scene.crop.GetOffsetX() + scene.crop.GetSizeX(), 0L, width);
    if (!scene.halves) {
        left &= ~1L;
        right = std::max(left, even - ((width - right) & ~1L));
    }
    for (long y = 0; y < out.Height(); ++y) {
        bool treated = false;
        const bool kept = IsKept(out, scene, y, treated);
        for (long x = 0; treated && x < width; x += 2) {
            const auto isKeyed = [&](long column) { return kept && column >= left && column < right; };
            const Macropixel back = Read(b, x, y);
            if (x + 1 == width) {
                if (!kept || scene.halves) Write(out, x, y, scene.matte ? kBlack : back);
            } else if (isKeyed(x) || isKeyed(x + 1)) {
                Write(out, x, y,
                      rule(Read(a, x, y), back,
                           isKeyed(x) == isKeyed(x + 1) ? -1
                           : isKeyed(x)                 ? 0
                                                        : 1));
            } else {
                Write(out, x, y, scene.matte ? kBlack : back);
            }
        }
    }
}

template <class Keyer>
void Connect(Keyer& keyer, GuardedImage& a, GuardedImage& b, GuardedImage& out)
{
    keyer.SetInputImgA(&a);
    keyer.SetInputImgB(&b);
    keyer.SetDominantInput(&b);
    keyer.SetOutputImg(&out);
}

std::vector<const FormatCase*> VideoFormats()
{
    std::vector<const FormatCase*> formats;
    for (const FormatCase& format : kFormats)
        if (format.IsSubsampled() && !format.Is('P')) formats.push_back(&format);
    return formats;
}

/// Samples that reach all of a key's branches: noise, or near the key colour, or near grey.
void Scatter(GuardedImage& image, std::mt19937& random, const vfILColor& key)
{
    image.Randomise(random);
    const auto ycc = Packed(key, image.Format().Is('7') ? 0x200 : 0x40);
    for (long y = 0; y < image.Height(); ++y)
        for (long x = 0; x < image.Width(); x += 2) {
            const double share = static_cast<double>(RandomIn(random, 0, 2) * RandomIn(random, 0, 10)) / 16;
            const auto near = [&](int of) {
                return ToByte(128 + share * (of - 128) + static_cast<double>(RandomIn(random, -9, 9)));
            };
            const Macropixel even{{RandomSample(random, 255), near(ycc[0])}, {near(ycc[1]), near(ycc[2])}};
            if (random() % 4 != 0) Write(image, x, y, even);
        }
}

double Real(std::mt19937& random, double low, double high)
{
    return std::uniform_real_distribution<double>(low, high)(random);
}

vfILColor AnyColor(std::mt19937& random)
{
    if (random() % 2) return random() % 2 ? vfILColor{0, 1, 0, 1} : vfILColor{0, 0.5, 0.5, 1};
    return {Real(random, 0, 1), Real(random, 0, 1), Real(random, 0, 1), 1};
}

template <class Keyer>
void Run(Keyer& keyer, const FormatCase& format, long width, long height, const Scene& scene,
         const Rule& rule, std::mt19937& random)
{
    GuardedImage a(format.id, width, height), b(format.id, width, height);
    GuardedImage out(format.id, width, height), expected(format.id, width, height);
    Scatter(a, random, keyer.GetKeyColor());
    b.Randomise(random);
    Connect(keyer, a, b, out);
    keyer.SetCropBox(scene.crop);
    keyer.SetProcessingMode(scene.mode);
    Model(a, b, expected, scene, rule);
    ASSERT_EQ(keyer.Execute(), VFIL_SUCCESS);
    ASSERT_TRUE(out.AreGuardsIntact());
    ASSERT_EQ(out.Bytes(), expected.Bytes())
        << format.name << ' ' << width << " x " << height << " crop " << scene.crop.GetOffsetX() << ' '
        << scene.crop.GetOffsetY() << ' ' << scene.crop.GetSizeX() << ' ' << scene.crop.GetSizeY() << " mode "
        << scene.mode << " matte " << scene.matte;
}

/// One keyer with random parameters over random pictures; its model is made of the same numbers.
template <class Keyer>
void Compare(const FormatCase& format, long width, long height, Scene scene, std::mt19937& random);

SectorSetting AnySector(std::mt19937& random)
{
    const double low = random() % 2 ? 0 : Real(random, 0, 60);
    return {Real(random, 0, random() % 4 ? 170 : 360), random() % 2 ? 0 : Real(random, 0, 1),
            Real(random, 0, 1), low, random() % 2 ? 100 : low + Real(random, 0.5, 40)};
}

template <>
void Compare<vfILChromaKeyerYUV>(const FormatCase& format, long width, long height, Scene scene,
                                 std::mt19937& random)
{
    scene.halves = true;
    scene.matte = random() % 3 == 0;
    const bool is709 = format.Is('7');
    const SectorModel model{AnyColor(random),      {Real(random, 0, 1), 0.4, 0.7, 1},
                            AnySector(random),     AnySector(random),
                            Real(random, -0.5, 3), Real(random, -1, 1),
                            random() % 2 == 0,     scene.matte,
                            is709 ? 0x200 : 0x40};
    Switched<vfILChromaKeyerYUV> keyer(random() % 2);
    keyer.SetKeyColor(model.key);
    keyer.SetKeyAngleTolerance(model.sector.tolerance);
    keyer.SetKeyLiftAndGain(model.sector.lift, model.sector.gain);
    keyer.SetKeyMatteMap(model.sector.low, model.sector.high);
    keyer.SetSpillAngleTolerance(model.spill.tolerance);
    keyer.SetSpillLiftAndGain(model.spill.lift, model.spill.gain);
    keyer.SetSpillMatteMap(model.spill.low, model.spill.high);
    keyer.SetSpillLumaGainAndOffset(model.lumaGain, model.lumaOffset);
    keyer.SetSpillReplaceColor(model.replace);
    keyer.SetApplySpill(model.correct);
    keyer.SetOutputMatte(model.matte);
    Run(keyer, format, width, height, scene, model, random);
}

void Set(vfILYUVKeyer& keyer, const DifferenceModel& model)
{
    keyer.SetKeyColor(model.key);
    keyer.SetCoefficients(model.c0, model.c1, model.c2);
    keyer.SetClipValues(model.low, model.high);
    keyer.SetOutputMatteFlag(model.matte);
    keyer.SetApplySpillCorrectionFlag(model.correct);
    keyer.SetSpillColor(model.spill);
    keyer.SetSpillThresholdAndSoftness(model.threshold, model.softness);
    keyer.SetSpillLuminanceOffsetAndGain(model.factor, model.term);
}

template <>
void Compare<vfILYUVKeyer>(const FormatCase& format, long width, long height, Scene scene,
                           std::mt19937& random)
{
    scene.matte = random() % 3 == 0;
    const double low = random() % 2 ? 0 : Real(random, 0, 0.5);
    const DifferenceModel model{AnyColor(random),
                                AnyColor(random),
                                Real(random, -0.5, 3),
                                Real(random, 0, 2),
                                random() % 2 ? 0 : Real(random, -1, 1),
                                low,
                                random() % 2 ? 1 : low + Real(random, 0.02, 0.5),
                                Real(random, -0.5, 3),
                                Real(random, -1, 1),
                                Real(random, -0.3, 0.3),
                                Real(random, -0.1, 1),
                                random() % 2 == 0,
                                scene.matte,
                                random() % 2 == 0,
                                format.Is('7') ? 0x200 : 0x40};
    Switched<vfILYUVKeyer> keyer(model.fast);
    Set(keyer, model);
    // The tie of the matte's form is blue, whatever the flag.
    DifferenceModel rule = model;
    rule.fast = model.fast && !model.matte;
    Run(keyer, format, width, height, scene, rule, random);
    EXPECT_EQ(keyer.GetColorModel(), model.model);
}

template <>
void Compare<vfIL2InputLumaKeyer>(const FormatCase& format, long width, long height, Scene scene,
                                  std::mt19937& random)
{
    scene.matte = random() % 3 == 0;
    const double clip = random() % 2 ? 0 : Real(random, 0, 1);
    const bool plain = random() % 2;
    const LumaModel model{clip,
                          random() % 4 ? Real(random, clip, 1) : clip,
                          plain ? 0 : Real(random, -1, 1),
                          plain ? 1 : Real(random, 0, 2),
                          random() % 2 == 0,
                          scene.matte};
    Switched<vfIL2InputLumaKeyer> keyer(random() % 2);
    keyer.SetLumaClip(model.clip);
    keyer.SetLumaGain(model.level);
    keyer.SetBrightness(model.brightness);
    keyer.SetGain(model.gain);
    keyer.SetReverseFlag(model.reverse);
    keyer.SetOutputMatteFlag(model.matte);
    Run(keyer, format, width, height, scene, model, random);
}

template <class Keyer>
struct VideoKeyer : testing::Test {};
using Keyers = testing::Types<vfILChromaKeyerYUV, vfILYUVKeyer, vfIL2InputLumaKeyer>;
TYPED_TEST_SUITE(VideoKeyer, Keyers);

TYPED_TEST(VideoKeyer, KeysAsTheModelInAllFormatsAndWidths)
{
    std::mt19937 random(3);
    for (const FormatCase* format : VideoFormats())
        for (long width = 1; width <= 150 && !this->HasFatalFailure(); ++width)
            Compare<TypeParam>(*format, width, RandomIn(random, 1, 5), {}, random);
}

TYPED_TEST(VideoKeyer, KeepsWhatTheCropAndTheFieldsKeep)
{
    std::mt19937 random(4);
    for (const FormatCase* format : VideoFormats())
        for (const auto& [width, height] : {std::pair{5L, 4L}, {6L, 5L}})
            for (unsigned long field = 0; field < 4; ++field)
                for (long x = 0; x < width; ++x)
                    for (long w = 0; x + w <= width; ++w)
                        for (long y = 0; y < height; ++y)
                            for (long h = 0; y + h <= height && !this->HasFatalFailure(); ++h) {
                                if (x + w + y + h == 0) continue; // no crop
                                Scene scene;
                                scene.crop = {x, y, w, h};
                                scene.mode = VFIL_MODE_RGB | field * VFIL_MODE_ODD_ROWS;
                                Compare<TypeParam>(*format, width, height, scene, random);
                            }
}

// --- Whatever a host sets.

double Wild(std::mt19937& random)
{
    constexpr double kWild[] = {0, 1, -1, 0.5, 100, -7e4, 359, 1e10, -1e300, 1e300, INFINITY, -INFINITY, NAN};
    return random() % 3 ? Real(random, -2, 2) : kWild[random() % std::size(kWild)];
}

vfILColor WildColor(std::mt19937& random)
{
    return {Wild(random), Wild(random), Wild(random), Wild(random)};
}

void SetWildly(vfILChromaKeyerYUV& keyer, std::mt19937& random)
{
    keyer.SetKeyAngleTolerance(180 * Wild(random));
    keyer.SetKeyLiftAndGain(Wild(random), Wild(random));
    keyer.SetKeyMatteMap(Wild(random), 50 * Wild(random));
    keyer.SetSpillAngleTolerance(180 * Wild(random));
    keyer.SetSpillLiftAndGain(Wild(random), Wild(random));
    keyer.SetSpillMatteMap(Wild(random), 50 * Wild(random));
    keyer.SetSpillLumaGainAndOffset(Wild(random), Wild(random));
    keyer.SetSpillReplaceColor(WildColor(random));
    keyer.SetApplySpill(random() % 2);
    keyer.SetOutputMatte(random() % 4 == 0);
}

void SetWildly(vfILYUVKeyer& keyer, std::mt19937& random)
{
    keyer.SetCoefficients(Wild(random), Wild(random), Wild(random));
    keyer.SetClipValues(Wild(random), Wild(random));
    keyer.SetSpillColor(WildColor(random));
    keyer.SetSpillThresholdAndSoftness(Wild(random), Wild(random));
    keyer.SetSpillLuminanceOffsetAndGain(Wild(random), Wild(random));
    keyer.SetApplySpillCorrectionFlag(random() % 2);
    keyer.SetOutputMatteFlag(random() % 4 == 0);
}

void SetWildly(vfIL2InputLumaKeyer& keyer, std::mt19937& random)
{
    keyer.SetLumaClip(Wild(random));
    keyer.SetLumaGain(Wild(random));
    keyer.SetBrightness(Wild(random));
    keyer.SetGain(Wild(random));
    keyer.SetReverseFlag(random() % 2);
    keyer.SetOutputMatteFlag(random() % 4 == 0);
}

// Unverified numbers and boxes give some picture, within its bounds, and the same one with the vector forms,
// where there are no two arithmetics; in place too.
TYPED_TEST(VideoKeyer, TakesAnyNumbersAndBoxes)
{
    std::mt19937 random(6);
    for (int turn = 0; turn < 3000 && !this->HasFatalFailure(); ++turn) {
        const FormatCase& format = *VideoFormats()[random() % 12];
        const long width = RandomIn(random, 1, 70), height = RandomIn(random, 1, 6);
        GuardedImage a(format.id, width, height), b(format.id, width, height), out(format.id, width, height);
        Scatter(a, random, {0, 1, 0, 1});
        b.Randomise(random);
        Switched<TypeParam> keyer(true);
        SetWildly(keyer, random);
        keyer.SetKeyColor(WildColor(random));
        keyer.SetProcessingMode(VFIL_MODE_RGB | RandomFieldBits(random));
        const auto edge = [&] {
            return random() % 8 == 0 ? RandomIn(random, INT32_MIN, INT32_MAX) : RandomIn(random, -9, 80);
        };
        if (random() % 2) keyer.SetCropBox({edge(), edge(), edge(), edge()});
        Connect(keyer, a, b, out);
        ASSERT_EQ(keyer.Execute(), VFIL_SUCCESS);
        Switched<TypeParam> other(std::is_same_v<TypeParam, vfILYUVKeyer>, keyer);
        other.SetProcessingMode(keyer.GetProcessingMode());
        if (keyer.GetProcessingMode() != VFIL_MODE_RGB) continue; // else what is not treated differs
        GuardedImage& place = random() % 2 ? a : b;
        Connect(other, a, b, place);
        if (width % 2 == 1) place.Set(width - 1, 0, out.Get(width - 1, 0));
        ASSERT_EQ(other.Execute(), VFIL_SUCCESS);
        ASSERT_TRUE(out.AreGuardsIntact() && place.AreGuardsIntact());
        for (long y = 0; y < height; ++y)
            for (long x = 0; x < (width & ~1L); ++x)
                ASSERT_EQ(out.Get(x, y), place.Get(x, y))
                    << format.name << ' ' << width << " at " << x << ' ' << y;
    }
}

TEST(SectorKey, AGreenScreenIsClearWithSomeGainAndTheInterruptIsPolled)
{
    const int green[] = {145, 54, 34};
    GuardedImage a(PXFormat_YCC422_601, 4, 3), b(PXFormat_YCC422_601, 4, 3), out(PXFormat_YCC422_601, 4, 3);
    for (long y = 0; y < 3; ++y) {
        Write(a, 0, y, {{green[0], green[0]}, {green[1], green[2]}});
        Write(a, 2, y, kBlack);
        Write(b, 0, y, {{90, 91}, {92, 93}});
    }
    vfILChromaKeyerYUV keyer;
    Connect(keyer, a, b, out);
    keyer.SetKeyColor({0, 1, 0, 1});
    keyer.SetKeyAngleTolerance(10);
    keyer.SetKeyLiftAndGain(0, 0.5);
    g_pollsLeft = 2; // before the rows, and after the first
    keyer.SetInterruptFct(StopAfterPolls, nullptr);
    ASSERT_EQ(keyer.Execute(), VFIL_SUCCESS);
    for (long y = 0; y < 3; ++y) {
        EXPECT_EQ(Read(out, 0, y), y == 0 ? Macropixel{} : Read(b, 0, y));
        EXPECT_EQ(Read(out, 2, y), y == 0 ? Macropixel{} : kBlack);
    }
    // At gain 0 the largest key is below full.
    keyer.SetInterruptFct(nullptr, nullptr);
    keyer.SetKeyLiftAndGain(0, 0);
    keyer.SetOutputMatte(1);
    ASSERT_EQ(keyer.Execute(), VFIL_SUCCESS);
    EXPECT_EQ(Read(out, 0, 0).y[0], (16 * 220 + 4096) / 256);
}

TEST(DifferenceKey, EqualClipLevelsAreSetToTheWholeRangeWhereTheFastFormRuns)
{
    for (const bool matte : {false, true}) {
        GuardedImage a(PXFormat_YUV422_709, 8, 2), b(PXFormat_YUV422_709, 8, 2),
            out(PXFormat_YUV422_709, 8, 2);
        vfILYUVKeyer keyer;
        Connect(keyer, a, b, out);
        keyer.SetClipValues(0.5, 0.5);
        keyer.SetOutputMatteFlag(matte);
        keyer.SetApplySpillCorrectionFlag(0);
        keyer.SetColorModel(PXColorModel_UNKNOWN);
        ASSERT_EQ(keyer.Verify(), VFIL_SUCCESS);
        g_pollsLeft = 1; // nothing polls after the rows
        keyer.SetInterruptFct(StopAfterPolls, nullptr);
        ASSERT_EQ(keyer.Execute(), VFIL_SUCCESS);
        EXPECT_EQ(Read(out, 0, 0), matte ? (Macropixel{{235, 235}, {128, 128}}) : Read(a, 0, 0));
        double low, high;
        keyer.GetClipValues(&low, &high);
        EXPECT_EQ(low, matte ? 0.5 : 0);
        EXPECT_EQ(high, matte ? 0.5 : 1);
        EXPECT_EQ(keyer.GetColorModel(), PXColorModel_YCC709);
    }
}

// --- RGBA.

Pixel Corrected(const DifferenceModel& s, const Pixel& in, bool whole)
{
    const auto [key, p, q, other] = s.Channels();
    const auto at = [&](int channel) { return in[static_cast<std::size_t>(channel)]; };
    const int e = std::clamp(std::max(at(other), at(0)) - Round(s.threshold * 255), 1, 255);
    const int soft = Round(s.softness * 255), c = at(key);
    const int amount = c <= e - soft ? 0 : c >= e ? 255 : Round((c - (e - soft)) * 255.0 / soft);
    const bool is709 = s.model == 0x200;
    const auto sum = [&](int r, int g, int b, int offset) {
        return (Down(r * in[0] + g * in[1] + b * in[2] + 32768, 16) + offset) & 255;
    };
    const int y = is709 ? sum(11966, 40254, 4064, 16) : sum(16829, 33039, 6416, 16);
    const int cb = is709 ? sum(-6596, -22189, 28784, 128) : sum(-9714, -19070, 28784, 128);
    const int cr = is709 ? sum(28784, -26145, -2639, 128) : sum(28784, -24104, -4681, 128);
    const auto spill = Packed(s.spill, s.model);
    const int term = Round(s.term * 255);
    const int y1 = Mix(ToByte(whole ? term * y : term + y), y, amount);
    const int cb1 = Mix(spill[1], cb, amount), cr1 = Mix(spill[2], cr, amount);
    const auto byte = [](int v) { return std::clamp(Down(v, 16), 0, 255); };
    const int t = y1 * 76309;
    if (is709)
        return {byte(t - 16226779 + cr1 * 117489), byte(t + 5071050 - cr1 * 34925 - cb1 * 13975),
                byte(t - 18908287 + cb1 * 138438)};
    return {byte(t - 14576620 + cr1 * 104597), byte(t + 8917902 - cr1 * 53279 - cb1 * 25675),
            byte(t - 18109946 + cb1 * 132201)};
}

Pixel KeyRgb(const DifferenceModel& s, const Pixel& a, const Pixel& b)
{
    const auto [key, p, q, other] = s.Channels();
    const auto at = [&](int channel) { return a[static_cast<std::size_t>(channel)]; };
    const double sum =
        Round(s.c0 * s.c1 * 65536) * double(at(p)) + Round(s.c2 * 65536) * double(at(q)) + 16711680 +
        Round(-s.c0 * 65536) * double(std::min(at(key), Packed(s.key, 1)[static_cast<std::size_t>(key)]));
    const auto grey = [](int v) { return Pixel{v, v, v, 255}; };
    if (sum <= Round(s.low * 16711680)) return s.matte ? grey(0) : Pixel{b[0], b[1], b[2], 255};
    const bool whole = sum >= Round(s.high * 16711680);
    const double gain = std::round(65536 / (s.high - s.low));
    const int m = whole ? 255 : Down((Down(sum, 16) - Round(255 * s.low)) * gain, 16) & 255;
    if (s.matte) return grey(m);
    const Pixel f = s.correct ? Corrected(s, a, whole) : a;
    return {Mix(f[0], b[0], m), Mix(f[1], b[1], m), Mix(f[2], b[2], m), 255};
}

TEST(DifferenceKey, OfRgbaIsOpaqueAndHeedsNoCrop)
{
    std::mt19937 random(9);
    for (int turn = 0; turn < 300 && !testing::Test::HasFatalFailure(); ++turn) {
        const double low = random() % 2 ? 0 : Real(random, 0, 0.5);
        const DifferenceModel model{AnyColor(random),
                                    AnyColor(random),
                                    Real(random, -0.5, 3),
                                    Real(random, 0, 2),
                                    Real(random, -1, 1),
                                    low,
                                    random() % 2 ? 1 : low + Real(random, 0.02, 0.5),
                                    1,
                                    Real(random, -1, 1),
                                    Real(random, -0.3, 0.3),
                                    Real(random, -0.1, 1),
                                    random() % 2 == 0,
                                    random() % 3 == 0,
                                    false,
                                    random() % 2 ? 0x200 : 0x40};
        GuardedImage a(PXFormat_RGBA32, 60, 4), b(PXFormat_RGBA32, 60, 4), out(PXFormat_RGBA32, 60, 4);
        a.Randomise(random);
        b.Randomise(random);
        Switched<vfILYUVKeyer> keyer(random() % 2);
        Connect(keyer, a, b, out);
        Set(keyer, model);
        keyer.SetCropBox({1, 1, 2, 2});
        keyer.SetColorModel(static_cast<PXColorModel>(model.model));
        ASSERT_EQ(keyer.Verify(), VFIL_SUCCESS);
        ASSERT_EQ(keyer.Execute(), VFIL_SUCCESS);
        for (long y = 0; y < 4; ++y)
            for (long x = 0; x < 60; ++x)
                ASSERT_EQ(out.Get(x, y), KeyRgb(model, a.Get(x, y), b.Get(x, y))) << "turn " << turn;
    }
}

// --- Refusals.

template <class Keyer>
struct Refusal {
    const char* text; ///< a part of it; null where the code says all
    unsigned long code;
    void (*set)(Keyer& keyer);
};

template <class Keyer>
void CheckRefusals(const std::vector<Refusal<Keyer>>& refusals)
{
    for (const Refusal<Keyer>& refusal : refusals) {
        GuardedImage a(PXFormat_YCC422_601, 4, 2), b(PXFormat_YCC422_601, 4, 2),
            out(PXFormat_YCC422_601, 4, 2);
        Keyer keyer;
        Connect(keyer, a, b, out);
        EXPECT_EQ(keyer.Verify(), VFIL_SUCCESS);
        refusal.set(keyer);
        EXPECT_EQ(keyer.Verify(), refusal.code == 0 ? VFIL_SUCCESS : VFIL_FAILURE) << refusal.code;
        EXPECT_EQ(keyer.GetLastError().GetErrorCode(), refusal.code);
        if (refusal.text != nullptr) {
            EXPECT_STREQ(keyer.GetLastErrorText(), refusal.text);
        }
    }
}

TEST(VideoKeyerRefusals, AreThoseOfTheTables)
{
    using Sector = vfILChromaKeyerYUV;
    CheckRefusals<Sector>({
        {"%s:Invalid Key Color!!!\n", 0x10048,
         [](Sector& k) {
             k.SetKeyColor({0, 2, 0, 1});
         }},
        {"%s:Invalid Key angle tolerance!!!\n", 0x10023, [](Sector& k) { k.SetKeyAngleTolerance(NAN); }},
        {nullptr, 0, [](Sector& k) { k.SetSpillAngleTolerance(361); }},
        {"%s:Invalid spillangle tolerance!!!\n", 0x10023,
         [](Sector& k) { k.SetApplySpill(1), k.SetSpillAngleTolerance(361); }},
        {"%s:Invalid lift and/or gain values!!!\n", 0x10023, [](Sector& k) { k.SetKeyLiftAndGain(0, 1.1); }},
        {"%s:Invalid matte map values!!!\n", 0x10023, [](Sector& k) { k.SetKeyMatteMap(50, 50); }},
        {"%s:Invalid spill matte map values!!!\n", 0x10023,
         [](Sector& k) { k.SetApplySpill(1), k.SetSpillMatteMap(-1, 50), k.SetSpillLiftAndGain(2, 0); }},
        {"%s:Invalid spill lift and/or gain values!!!\n", 0x10023,
         [](Sector& k) { k.SetApplySpill(1), k.SetSpillLiftAndGain(2, 0); }},
        {"%s:Invalid Spill Replace Color!!!\n", 0x10048,
         [](Sector& k) {
             k.SetApplySpill(1), k.SetSpillReplaceColor({0, 0, 0, -1});
         }},
    });
    using Difference = vfILYUVKeyer;
    CheckRefusals<Difference>({
        {nullptr, 0x1006A, [](Difference& k) { k.SetColorModel(PXColorModel_YCC709); }},
        {nullptr, 0, [](Difference& k) { k.SetColorModel(PXColorModel_UNKNOWN), k.SetClipValues(1, NAN); }},
        {nullptr, 0x1000A,
         [](Difference& k) {
             k.SetCropBox({0, 3, 1, 1});
         }},
    });
    using Luma = vfIL2InputLumaKeyer;
    constexpr const char* kLevels = "%s WARNING Verify: Luma clip and/or Gain Invalid\n";
    constexpr const char* kLine = "%s WARNING Verify: Clip and/or Gain Invalid\n";
    CheckRefusals<Luma>({
        {kLevels, 0x20002, [](Luma& k) { k.SetLumaClip(0.6), k.SetLumaGain(0.5); }},
        {nullptr, 0, [](Luma& k) { k.SetLumaClip(0.5), k.SetLumaGain(0.5); }},
        {kLevels, 0x20002, [](Luma& k) { k.SetLumaGain(NAN); }},
        {kLine, 0x20002, [](Luma& k) { k.SetBrightness(-1.1); }},
        {kLine, 0x20002, [](Luma& k) { k.SetGain(2.1); }},
    });
}

// What nobody verified is refused as late as it is seen.
TYPED_TEST(VideoKeyer, NeedsVideo)
{
    for (const GUID& format : {PXFormat_Mono16, PXFormat_YCCA32}) {
        GuardedImage a(format, 4, 2), b(format, 4, 2), out(format, 4, 2);
        TypeParam keyer;
        Connect(keyer, a, b, out);
        EXPECT_EQ(keyer.Verify(), VFIL_FAILURE);
        EXPECT_EQ(keyer.GetLastError().GetErrorCode(), 0x1000Du);
        EXPECT_EQ(keyer.Execute(), VFIL_FAILURE);
    }
}

} // namespace
