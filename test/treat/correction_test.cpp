/// \file
/// Colour correction against a model of its own: a colour goes through the steps one by one, in doubles, to
/// give the matrix, and through integers of 64 bits from there.
#include "support/guardedimage.h"
#include "support/processors.h"

#include <vfil/treat.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

using namespace vfil::test;

namespace {

using Correct = Switched<vfILColorCorrectionImg>;
using Triple = std::array<double, 3>;

/// Full-range YCC and back, by the published coefficients.
Triple ToYcc(const Triple& rgb, bool is601)
{
    const auto [r, g, b] = rgb;
    if (is601)
        return {0.299 * r + 0.587 * g + 0.114 * b, -0.16874 * r - 0.33126 * g + 0.5 * b,
                0.5 * r - 0.41869 * g - 0.08131 * b};
    const double y = 0.2126 * r + 0.7152 * g + 0.0722 * b;
    return {y, (b - y) / 1.8556, (r - y) / 1.5748};
}

Triple ToRgb(const Triple& ycc, bool is601)
{
    const auto [y, cb, cr] = ycc;
    if (is601) return {y + 1.402 * cr, y - 0.34414 * cb - 0.71414 * cr, y + 1.772 * cb};
    return {y + 1.5748 * cr, y - 0.18732427 * cb - 0.46812427 * cr, y + 1.8556 * cb};
}

using Integers = std::array<std::int64_t, 3>;

/// The affine map of a function in 256ths.
class Map256 {
public:
    template <class Function>
    explicit Map256(Function function)
    {
        const Triple none = function(Triple{});
        for (std::size_t i = 0; i < 3; ++i) {
            Triple unit{};
            unit[i] = 1;
            const Triple value = function(unit);
            for (std::size_t k = 0; k < 3; ++k)
                m_rows[i][k] = std::llround(256 * (value[k] - none[k]));
        }
        for (std::size_t k = 0; k < 3; ++k)
            m_rows[3][k] = std::llround(256 * none[k]);
    }
    Integers operator()(const Integers& in) const
    {
        Integers out{};
        for (std::size_t k = 0; k < 3; ++k) {
            const auto sum =
                in[0] * m_rows[0][k] + in[1] * m_rows[1][k] + in[2] * m_rows[2][k] + m_rows[3][k];
            out[k] = static_cast<std::int64_t>(std::floor(static_cast<double>(sum) / 256));
        }
        return out;
    }

private:
    std::array<Integers, 4> m_rows{};
};

struct Settings {
    double hue = 0, saturation = 100, gain = 100, offset = 0;
    int model = 64;
    bool hasLut = false, hasTables = false;
    std::array<std::array<std::int16_t, 4>, 256> lut{};
    std::array<std::array<std::uint8_t, 256>, 4> tables{};
};

/// What becomes of pixels of one picture.
class Model {
public:
    Model(const Settings& settings, const FormatCase& format)
        : m_settings(settings), m_full(format.Full()), m_video(format.IsSubsampled()),
          m_is601(settings.model == 64 || (settings.model == 0 && format.Is('6'))),
          m_first([this](Triple v) { return m_settings.hasLut ? Adjusted(v) : Back(Adjusted(v)); }),
          m_second([this](Triple v) { return Back(v); })
    {}

    Pixel Rgba(const Pixel& in) const
    {
        Integers colour = m_first({in[0], in[1], in[2]});
        auto alpha = static_cast<int>(Alpha(in[3]));
        if (m_settings.hasLut) {
            const auto more = Entry(colour[0]);
            colour = m_second({colour[0] + more[0], colour[1] + more[1], colour[2] + more[2]});
            alpha += static_cast<int>(more[3]);
        }
        return {Replaced(0, colour[0]), Replaced(1, colour[1]), Replaced(2, colour[2]), Replaced(3, alpha)};
    }
    /// Y0, Cb, Y1, Cr.
    Pixel Pair(const Pixel& in) const
    {
        Integers left = m_first({in[0], in[1], in[3]});
        Integers right = m_first({in[2], in[1], in[3]});
        if (m_settings.hasLut) {
            const auto more = Entry(left[0]);
            left = {left[0] + more[0], left[1] + more[1], left[2] + more[2]};
            right = m_second({right[0] + Entry(right[0])[0], left[1], left[2]});
            left = m_second(left);
        }
        if (!m_settings.hasTables) return {Clamp(left[0]), Clamp(left[1]), Clamp(right[0]), Clamp(left[2])};
        const auto encode = [this](const Integers& rgb, std::size_t k) {
            static constexpr int kWeights[2][3][3] = {{{66, 129, 25}, {-38, -74, 112}, {112, -94, -18}},
                                                      {{47, 157, 16}, {-26, -87, 112}, {112, -102, -10}}};
            int sum = 128 + 256 * (k == 0 ? 16 : 128);
            for (std::size_t i = 0; i < 3; ++i)
                sum += kWeights[m_is601 ? 0 : 1][k][i] * Replaced(static_cast<int>(i), rgb[i]);
            return sum / 256; // never below 0
        };
        return {encode(left, 0), encode(left, 1), encode(right, 0), encode(left, 2)};
    }
    int Mixed(long mask, long corrected, long old) const
    {
        const auto rounded = [this](long product) {
            return static_cast<int>((product + m_full / 2) / m_full);
        };
        if (m_full == 255) return rounded(mask * corrected) + rounded((m_full - mask) * old);
        return rounded(mask * corrected + (m_full - mask) * old);
    }
    int AlphaOfPlane(int in) const { return Replaced(3, Alpha(in)); }

private:
    Triple Adjusted(const Triple& in) const
    {
        Triple v = in;
        if (m_video) {
            v = {(v[0] - 16) * 1.16438356, (v[1] - 16) * 1.13839286 - 128, (v[2] - 16) * 1.13839286 - 128};
        } else {
            v = ToYcc(v, m_is601);
        }
        const double turn = m_settings.hue * std::acos(-1.0) / 180;
        const double scale = m_settings.gain / 100 * m_settings.saturation / 100;
        return {v[0] * m_settings.gain / 100 + m_settings.offset / 100 * m_full,
                scale * (v[1] * std::cos(turn) - v[2] * std::sin(turn)),
                scale * (v[1] * std::sin(turn) + v[2] * std::cos(turn))};
    }
    Triple Back(const Triple& v) const
    {
        if (!m_video || m_settings.hasTables) return ToRgb(v, m_is601);
        return {v[0] * 0.858823529 + 16, (v[1] + 128) * 0.878431373 + 16, (v[2] + 128) * 0.878431373 + 16};
    }
    std::int64_t Alpha(int in) const
    {
        const std::int64_t sum =
            in * std::llround(2.56 * m_settings.gain) + std::llround(2.56 * m_settings.offset * m_full);
        return static_cast<std::int64_t>(std::floor(static_cast<double>(sum) / 256));
    }
    int UpperByte(int v) const { return m_full == 255 ? v : v / 256; }
    int Clamp(std::int64_t v) const { return static_cast<int>(std::clamp<std::int64_t>(v, 0, m_full)); }
    std::array<std::int64_t, 4> Entry(std::int64_t luma) const
    {
        const int unit = m_full / 255;
        const auto& entry = m_settings.lut[static_cast<std::size_t>(UpperByte(Clamp(luma)))];
        return {unit * entry[0], unit * entry[1], unit * entry[2], unit * entry[3]};
    }
    int Replaced(int channel, std::int64_t v) const
    {
        if (!m_settings.hasTables) return Clamp(v);
        const auto index = static_cast<std::size_t>(UpperByte(Clamp(v)));
        return m_full / 255 * m_settings.tables[static_cast<std::size_t>(channel)][index];
    }

    const Settings& m_settings;
    int m_full;
    bool m_video, m_is601;
    Map256 m_first, m_second;
};

double Between(std::mt19937& random, double low, double high)
{
    return std::uniform_real_distribution(low, high)(random);
}

Settings RandomSettings(std::mt19937& random)
{
    static constexpr int kModels[] = {64, 512, 64, 512, 0};
    Settings settings{Between(random, -400, 400), Between(random, -100, 300), Between(random, 0, 250),
                      Between(random, -60, 60),   kModels[random() % 5],      random() % 2 == 0,
                      random() % 2 == 0};
    for (auto& entry : settings.lut)
        for (std::int16_t& v : entry)
            v = static_cast<std::int16_t>(RandomIn(random, -60, 60));
    for (auto& table : settings.tables)
        for (std::uint8_t& v : table)
            v = static_cast<std::uint8_t>(random());
    return settings;
}

/// The host's tables, at addresses that suit bytes alone.
struct Tables {
    std::vector<std::uint8_t> lut, rgba;

    Tables(const Settings& settings, Correct& correct) : lut(2049), rgba(1024)
    {
        std::memcpy(lut.data() + 1, settings.lut.data(), 2048);
        std::memcpy(rgba.data(), settings.tables.data(), 1024);
        correct.SetHue(settings.hue);
        correct.SetSaturation(settings.saturation);
        correct.SetGain(settings.gain);
        correct.SetOffset(settings.offset);
        correct.SetColorModel(static_cast<PXColorModel>(settings.model));
        if (settings.hasLut) correct.SetLut(lut.data() + 1);
        if (settings.hasTables) correct.SetRGBALut(rgba.data());
    }
};

/// The pixels of a picture.
std::vector<Pixel> PixelsOf(const GuardedImage& image)
{
    std::vector<Pixel> pixels;
    for (long y = 0; y < image.Height(); ++y)
        for (long x = 0; x < image.Width(); ++x)
            pixels.push_back(image.Get(x, y));
    return pixels;
}

/// What a run must leave in a pixel that it treats.
Pixel Expected(const Model& model, const GuardedImage& in, const GuardedImage* mask, unsigned long mode,
               long x, long y)
{
    const Pixel old = in.Get(x, y);
    Pixel result = old;
    if (!in.Format().IsSubsampled()) {
        const Pixel corrected = model.Rgba(old);
        for (std::size_t c = 0; c < 4; ++c)
            if ((mode >> c & 1U) != 0)
                result[c] =
                    mask == nullptr ? corrected[c] : model.Mixed(mask->Get(x, y)[0], corrected[c], old[c]);
        return result;
    }
    const std::size_t luma = in.Format().Is('C') ? 1 : 0;
    const std::size_t chroma = 1 - luma;
    const Pixel left = in.Get(x & ~1L, y);
    Pixel right = left;
    right[chroma] = 128;
    if ((x | 1) < in.Width()) right = in.Get(x | 1, y);
    const Pixel pair = model.Pair({left[luma], left[chroma], right[luma], right[chroma]});
    result[luma] = pair[(x & 1) != 0 ? 2 : 0];
    result[chroma] = pair[(x & 1) != 0 ? 3 : 1];
    if (in.Format().Is('P') && (mode & 8U) != 0) result[2] = model.AlphaOfPlane(old[2]);
    return result;
}

bool IsRgba(const FormatCase& format)
{
    return format.id == PXFormat_RGBA32 || format.id == PXFormat_RGBA64;
}

TEST(ColorCorrection, IsTheModel)
{
    std::mt19937 random(1);
    std::vector<const FormatCase*> formats;
    for (const FormatCase& format : kFormats)
        if (IsRgba(format) || format.IsSubsampled())
            formats.insert(formats.end(), IsRgba(format) ? 6 : 1, &format);
    for (int i = 0; i < 1500; ++i) {
        const FormatCase& format = *formats[random() % formats.size()];
        Settings settings = RandomSettings(random);
        if (IsRgba(format) && settings.model == 0) settings.model = 64;
        Correct correct(random() % 4 != 0);
        const Tables tables(settings, correct);

        const long width = RandomIn(random, 1, 90);
        GuardedImage in(format.id, width, 3), original(format.id, width, 3), other(format.id, width, 3);
        in.Randomise(random);
        other.Randomise(random);
        for (long x = 0; x < 3 * width; ++x)
            original.Set(x % width, x / width, in.Get(x % width, x / width));
        GuardedImage& out = random() % 3 == 0 ? in : other;
        const std::vector<Pixel> before = PixelsOf(out);
        correct.SetInputImg(&in);
        correct.SetOutputImg(&out);

        GuardedImage mask(format.Full() == 255 ? PXFormat_RGBA32 : PXFormat_Mono16, width, 3);
        mask.Randomise(random);
        const bool masked = IsRgba(format) && random() % 2 == 0;
        if (masked)
            correct.SetMask({0, 0, width, 3}, &mask,
                            format.Full() == 255 ? PXImageChannel_RED : PXImageChannel_MONO);
        const unsigned long mode =
            (IsRgba(format) ? random() % 16 : 7 + random() % 2 * 8) | RandomFieldBits(random);
        correct.SetProcessingMode(mode);
        ASSERT_EQ(correct.Verify(), VFIL_SUCCESS);
        ASSERT_EQ(correct.Execute(), VFIL_SUCCESS);

        const Model model(settings, format);
        std::vector<Pixel> expected = before;
        for (long x = 0; x < 3 * width; ++x) {
            const long y = x / width;
            if ((mode & (y % 2 != 0 ? VFIL_MODE_EVEN_ROWS : VFIL_MODE_ODD_ROWS)) != 0) continue;
            expected[static_cast<std::size_t>(x)] =
                Expected(model, original, masked ? &mask : nullptr, mode, x % width, y);
        }
        ASSERT_EQ(PixelsOf(out), expected) << format.name << ", case " << i << ", mode " << mode;
        ASSERT_TRUE(out.AreGuardsIntact());
    }
}

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

struct Case {
    const char* name;
    GUID format;
    Pixel in, out;
    double hue = 0, saturation = 100, gain = 100, offset = 0;
};

const Case kCases[] = {
    {"offset 100", PXFormat_RGBA32, {10, 20, 30, 5}, {255, 255, 255, 255}, 0, 100, 100, 100},
    {"offset -10", PXFormat_RGBA32, {10, 20, 30, 40}, {0, 0, 4, 14}, 0, 100, 100, -10},
    {"half", PXFormat_RGBA64, {1000, 2000, 60000, 7}, {500, 1000, 30000, 3}, 0, 100, 50},
    {"Cr to minus Cb", PXFormat_YCC422_601, {80, 144}, {80, 112}, 90},
    {"the middle moves", PXFormat_YCC422_601, {80, 128}, {80, 127}, 0, 200},
    {"hue no number", PXFormat_RGBA32, {10, 20, 30, 40}, {0, 0, 0, 40}, kNaN},
    {"gain 1e300", PXFormat_YCC422_601, {80, 200}, {255, 255}, 0, 100, 1e300},
    {"gain -1e300", PXFormat_RGBA64, {900, 900, 900, 900}, {0, 0, 0, 0}, 0, 100, -1e300},
    {"offset 1e300", PXFormat_RGBA64, {1, 2, 3, 4}, {65535, 65535, 65535, 65535}, 0, 100, 100, 1e300},
};

TEST(ColorCorrection, GivesWhatWasWorkedOutByHand)
{
    for (const Case& c : kCases) {
        for (const bool simd : {false, true}) {
            GuardedImage image(c.format, 2, 1);
            image.Set(0, 0, c.in);
            image.Set(1, 0, c.in);
            Correct correct(simd);
            correct.SetInputImg(&image);
            correct.SetOutputImg(&image);
            correct.SetProcessingMode(VFIL_MODE_RGBA);
            correct.SetHue(c.hue);
            correct.SetSaturation(c.saturation);
            correct.SetGain(c.gain);
            correct.SetOffset(c.offset);
            EXPECT_EQ(correct.Verify(), VFIL_SUCCESS);
            EXPECT_EQ(correct.Execute(), VFIL_SUCCESS);
            EXPECT_EQ(image.Get(0, 0), c.out) << c.name << (simd ? ", vectors" : "");
        }
    }
}

TEST(ColorCorrection, DefaultsChangeNothingAndNoSaturationIsGrey)
{
    std::mt19937 random(2);
    for (const FormatCase& format : kFormats) {
        if (!IsRgba(format) && !format.IsSubsampled()) continue;
        GuardedImage in(format.id, 51, 20), out(format.id, 51, 20);
        in.Randomise(random);
        Correct correct(true);
        correct.SetInputImg(&in);
        correct.SetOutputImg(&out);
        correct.SetProcessingMode(VFIL_MODE_RGBA);
        for (const int model : {64, 512}) {
            correct.SetColorModel(static_cast<PXColorModel>(model));
            correct.SetSaturation(100);
            ASSERT_EQ(correct.Execute(), VFIL_SUCCESS);
            EXPECT_EQ(out.Bytes(), in.Bytes()) << format.name;
            correct.SetSaturation(0);
            ASSERT_EQ(correct.Execute(), VFIL_SUCCESS);
            if (!IsRgba(format)) continue;
            for (const Pixel& p : PixelsOf(out))
                ASSERT_TRUE(p[0] == p[1] && p[1] == p[2]) << format.name;
        }
    }
}

TEST(ColorCorrection, RefusesFormatsAndModels)
{
    const auto codeOf = [](const GUID& format, int model) {
        GuardedImage image(format, 4, 2);
        Correct correct(true);
        correct.SetInputImg(&image);
        correct.SetOutputImg(&image);
        correct.SetColorModel(static_cast<PXColorModel>(model));
        return correct.Verify() == VFIL_SUCCESS ? 0 : correct.GetLastError().GetErrorCode();
    };
    for (const FormatCase& format : kFormats) {
        const bool taken = IsRgba(format) || format.IsSubsampled();
        for (const int model : {0, 1, 64, 512, 576}) {
            const bool allowed = !IsRgba(format) || model == 64 || model == 512;
            EXPECT_EQ(codeOf(format.id, model), !taken    ? 0x1000DUL
                                                : allowed ? 0
                                                          : 0x1006AUL)
                << format.name << model;
        }
    }
}

} // namespace
