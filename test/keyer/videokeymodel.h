/// \file
/// The keys of 4:2:2 video as plain sums of plain numbers, a macropixel or a pixel at a time.
#pragma once

#include "support/convertmodel.h"
#include "support/guardedimage.h"

#include <vfil/color.h>

#include <algorithm>
#include <cmath>

namespace vfil::test {

inline int ToByte(double v)
{
    return static_cast<int>(std::clamp(v, 0.0, 255.0));
}

inline int Round(double v)
{
    return static_cast<int>(std::round(v)); // half away from zero
}

/// a / 2^bits, towards minus infinity.
inline int Down(double a, int bits)
{
    return static_cast<int>(std::floor(std::ldexp(a, -bits)));
}

inline int Mult(int a, int b)
{
    return (a * b * 2 + 255) / 510;
}

inline int Mix(int a, int b, int m)
{
    return Mult(a, m) + Mult(b, 255 - m);
}

struct Macropixel {
    int y[2];
    int c[2]; // Cb, Cr

    bool operator==(const Macropixel&) const = default;
};

inline const Macropixel kBlack{{16, 16}, {128, 128}};

inline std::array<int, 4> Packed(const vfILColor& color, int model)
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

struct PairMatte {
    bool back, front; ///< both pixels are wholly one of the pictures
    int m0, m1;
};

/// Mixed with the loss of one at 255, or the picture of the matte.
inline Macropixel MixDown(const Macropixel& a, const Macropixel& b, const PairMatte& m, int ofChroma,
                          bool matte)
{
    if (m.back) return matte ? kBlack : b;
    if (m.front) return matte ? Macropixel{{235, 235}, {128, 128}} : a;
    Macropixel out{{}, {128, 128}};
    for (int i = 0; i < 2; ++i) {
        const int own = i == 0 ? m.m0 : m.m1;
        const auto mix = [](int from, int to, int by) { return Down(from * by + to * (255 - by), 8) & 255; };
        out.y[i] = matte ? Down(own * 56284 + 1048576, 16) & 255 : mix(a.y[i], b.y[i], own);
        if (!matte) out.c[i] = mix(a.c[i], b.c[i], ofChroma);
    }
    return out;
}

// --- The colour-difference key.

struct DifferenceModel {
    vfILColor key, spill;
    double c0, c1, c2, low, high, factor, term, threshold, softness;
    bool correct, matte, fast = false;
    int model = 0x40;

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
        const auto w = [&, p = p, q = q](int row) { return c2 * M(row, q) + c0 * c1 * M(row, p); };
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
        const int m[] = {MatteOf(k[0], least, most, Down(k[0], 16)),
                         MatteOf(k[1], least, most, Down(k[1], 16))};
        return MixDown(a, b, {std::max(k[0], k[1]) <= least, std::min(k[0], k[1]) >= most, m[0], m[1]},
                       (m[0] + m[1] + 1) >> 1, matte);
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
        return MixDown(a, b, {std::max(k[0], k[1]) <= low, std::min(k[0], k[1]) >= high, m[0], m[1]}, m[0],
                       matte);
    }
};

// --- The same of RGBA.

inline Pixel Corrected(const DifferenceModel& s, const Pixel& in, bool whole)
{
    const auto [key, p, q, other] = s.Channels();
    const auto at = [&](int channel) { return in[static_cast<std::size_t>(channel)]; };
    const int e = std::clamp(std::max(at(other), at(0)) - Round(s.threshold * 255), 1, 255);
    const int soft = Round(s.softness * 255), c = at(key);
    const int amount = c <= e - soft ? 0 : c >= e ? 255 : Round((c - (e - soft)) * 255.0 / soft);
    const bool is709 = s.model == 0x200;
    const Triple ycc = EncodePixel(is709, {in[0], in[1], in[2]});
    const auto spill = Packed(s.spill, s.model);
    const int term = Round(s.term * 255);
    const Triple mixed{Mix(ToByte(whole ? term * ycc[0] : term + ycc[0]), ycc[0], amount),
                       Mix(spill[1], ycc[1], amount), Mix(spill[2], ycc[2], amount)};
    const Triple rgb = DecodePixel(is709, false, mixed);
    return {rgb[0], rgb[1], rgb[2]};
}

inline Pixel KeyRgb(const DifferenceModel& s, const Pixel& a, const Pixel& b)
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

} // namespace vfil::test
