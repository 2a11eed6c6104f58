/// \file
/// The channel arithmetic that operators of the frame, and a host's own, are made of.

#include "il/rows/pixarith.h"

#include <vfil/frame.h>

#include <algorithm>
#include <cstdint>

using vfil::Arith;

using Rules8 = Arith<std::uint8_t>;
using Rules16 = Arith<std::uint16_t>;

unsigned char vfILImgProc::BlendChannel8(unsigned char F, unsigned char B, unsigned char M)
{
    return Rules8::Blend(F, B, M);
}

unsigned short vfILImgProc::BlendChannel16(unsigned short F, unsigned short B, unsigned short M)
{
    return Rules16::Blend(F, B, M);
}

unsigned char vfILImgProc::FrontOverBack8(unsigned char F, unsigned char B, unsigned char A)
{
    return Rules8::FrontOverBack(F, B, A);
}

unsigned short vfILImgProc::FrontOverBack16(unsigned short F, unsigned short B, unsigned short A)
{
    return Rules16::FrontOverBack(F, B, A);
}

short vfILImgProc::FrontOverBack16(short F, short B, unsigned char A)
{
    return static_cast<short>(
        static_cast<std::uint16_t>(F + vfil::SignedNormMult(static_cast<std::uint8_t>(255 - A), B)));
}

unsigned char vfILImgProc::FrontInBack8(unsigned char F, unsigned char C)
{
    return Rules8::FrontInBack(F, C);
}

unsigned short vfILImgProc::FrontInBack16(unsigned short F, unsigned short C)
{
    return Rules16::FrontInBack(F, C);
}

unsigned char vfILImgProc::FrontOutBack8(unsigned char F, unsigned char C)
{
    return Rules8::FrontOutBack(F, C);
}

unsigned short vfILImgProc::FrontOutBack16(unsigned short F, unsigned short C)
{
    return Rules16::FrontOutBack(F, C);
}

unsigned char vfILImgProc::FrontAtopBack8(unsigned char F, unsigned char B, unsigned char A, unsigned char C)
{
    return Rules8::FrontAtopBack(F, B, A, C);
}

unsigned short vfILImgProc::FrontAtopBack16(unsigned short F, unsigned short B, unsigned short A,
                                            unsigned short C)
{
    return Rules16::FrontAtopBack(F, B, A, C);
}

unsigned char vfILImgProc::FrontXorBack8(unsigned char F, unsigned char B, unsigned char A, unsigned char C)
{
    return Rules8::FrontXorBack(F, B, A, C);
}

unsigned short vfILImgProc::FrontXorBack16(unsigned short F, unsigned short B, unsigned short A,
                                           unsigned short C)
{
    return Rules16::FrontXorBack(F, B, A, C);
}

unsigned char vfILImgProc::MultChannel(unsigned char a, unsigned char b)
{
    return Rules8::Mult(a, b);
}

unsigned short vfILImgProc::MultChannel(unsigned short a, unsigned short b)
{
    return Rules16::Mult(a, b);
}

unsigned char vfILImgProc::AddChannel(unsigned char a, unsigned char b)
{
    return Rules8::Add(a, b);
}

unsigned short vfILImgProc::AddChannel(unsigned short a, unsigned short b)
{
    return Rules16::Add(a, b);
}

unsigned char vfILImgProc::AddNoClipChannel(unsigned char a, unsigned char b)
{
    return Rules8::AddNoClip(a, b);
}

unsigned short vfILImgProc::AddNoClipChannel(unsigned short a, unsigned short b)
{
    return Rules16::AddNoClip(a, b);
}

unsigned char vfILImgProc::DiffChannel(unsigned char a, unsigned char b)
{
    return Rules8::Diff(a, b);
}

unsigned short vfILImgProc::DiffChannel(unsigned short a, unsigned short b)
{
    return Rules16::Diff(a, b);
}

namespace {

/// What the inverse of compositing needs of a sample width: the quotient in normalised form, and a scale of
/// full / alpha in fixed point.
struct Uncomposite8Rules {
    using Sample = unsigned char;
    static constexpr int kShift = 15;
    static Sample Quotient(int n, int d)
    {
        return vfil::NormDiv8(static_cast<std::uint8_t>(n), static_cast<std::uint8_t>(d));
    }
    static std::int64_t Scale(int alpha) { return vfil::RoundHalfAway(255.0 / alpha * 32768.0); }
};

struct Uncomposite16Rules {
    using Sample = unsigned short;
    static constexpr int kShift = 31;
    static Sample Quotient(int n, int d)
    {
        if (d == 0) return 0;
        if (d < n) return 65535;
        const auto divisor = static_cast<std::uint32_t>(d);
        return static_cast<Sample>((static_cast<std::uint32_t>(n) * 65535U + (divisor >> 1)) / divisor);
    }
    static std::int64_t Scale(int alpha) { return ((std::int64_t{65535} << 31) + (alpha >> 1)) / alpha; }
};

/// A pixel as three colour channels and alpha.
struct Channels {
    int value[4];
};

/// How much front the change of one colour channel asks for.
template <class Rules>
int ColourDemand(int composite, int back)
{
    constexpr int kFull = static_cast<typename Rules::Sample>(-1);
    if (composite < back || back == kFull) return Rules::Quotient(back - composite, back);
    return Rules::Quotient(composite - back, kFull - back);
}

template <class Rules>
int AlphaDemand(int composite, int back)
{
    constexpr int kFull = static_cast<typename Rules::Sample>(-1);
    if (back == 0) return composite;
    if (back == kFull || composite < back) return 0;
    return Rules::Quotient(composite - back, kFull - back);
}

template <class Rules>
Channels Uncomposite(const Channels& composite, const Channels& back)
{
    constexpr std::int64_t kFull = static_cast<typename Rules::Sample>(-1);
    int alpha = AlphaDemand<Rules>(composite.value[3], back.value[3]);
    for (int c = 0; c < 3; ++c)
        alpha = std::max(alpha, ColourDemand<Rules>(composite.value[c], back.value[c]));

    Channels front{{0, 0, 0, alpha}};
    const std::int64_t scale = alpha == 0 ? 0 : Rules::Scale(alpha);
    for (int c = 0; c < 3; ++c) {
        if (alpha == 0) {
            front.value[c] = back.value[c] < composite.value[c] ? static_cast<int>(kFull) : 0;
            continue;
        }
        const std::int64_t base = back.value[3] != 0 ? back.value[c] : 0;
        constexpr std::int64_t kHalf = std::int64_t{1} << (Rules::kShift - 1);
        const std::int64_t value = base + (((composite.value[c] - base) * scale + kHalf) >> Rules::kShift);
        front.value[c] = static_cast<int>(std::clamp<std::int64_t>(value, 0, kFull));
    }
    return front;
}

template <class Rules>
void Store(const Channels& pixel, typename Rules::Sample& oR, typename Rules::Sample& oG,
           typename Rules::Sample& oB, typename Rules::Sample& oA)
{
    oR = static_cast<typename Rules::Sample>(pixel.value[0]);
    oG = static_cast<typename Rules::Sample>(pixel.value[1]);
    oB = static_cast<typename Rules::Sample>(pixel.value[2]);
    oA = static_cast<typename Rules::Sample>(pixel.value[3]);
}

} // namespace

void vfILImgProc::Uncomposite8(unsigned char r, unsigned char g, unsigned char b, unsigned char a,
                               unsigned char br, unsigned char bg, unsigned char bb, unsigned char ba,
                               unsigned char& oR, unsigned char& oG, unsigned char& oB, unsigned char& oA)
{
    Store<Uncomposite8Rules>(Uncomposite<Uncomposite8Rules>({{r, g, b, a}}, {{br, bg, bb, ba}}), oR, oG, oB,
                             oA);
}

void vfILImgProc::Uncomposite16(unsigned short r, unsigned short g, unsigned short b, unsigned short a,
                                unsigned short br, unsigned short bg, unsigned short bb, unsigned short ba,
                                unsigned short& oR, unsigned short& oG, unsigned short& oB,
                                unsigned short& oA)
{
    Store<Uncomposite16Rules>(Uncomposite<Uncomposite16Rules>({{r, g, b, a}}, {{br, bg, bb, ba}}), oR, oG, oB,
                              oA);
}
