/// \file
/// Deinterlacing of whole frames to two pictures, and what memory allows of it.
#include "deinterlace.h"

#include <vfil/fields.h>

#include <map>
#include <random>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace bench {

namespace {

using vfil::host::Picture;

/// A slope of all samples, under the noise of a camera.
PicturePtr Slope(const Layout& layout, std::mt19937& random)
{
    PicturePtr picture = Picture::Create(layout.format, kWidth, kHeight);
    const std::size_t rowBytes = picture->RowBytes();
    for (std::size_t y = 0; y < kHeight; ++y)
        for (std::size_t x = 0; x < rowBytes; ++x)
            picture->Pixels()[y * rowBytes + x] =
                static_cast<std::uint8_t>(x * 96 / rowBytes + y * 96 / kHeight + random() % 24);
    return picture;
}

std::vector<FieldFrame> MakeFrames(const Layout& layout)
{
    std::mt19937 random(3);
    std::vector<FieldFrame> frames;
    std::size_t bytes = 0;
    while (frames.size() < 2 || bytes < std::size_t{100} << 20) {
        frames.push_back({Slope(layout, random), Slope(layout, random), Slope(layout, random),
                          Slope(layout, random), Slope(layout, random)});
        bytes += 5 * frames.back().in->Bytes();
    }
    return frames;
}

void AddOurs(const char* name, vfILInterpolationType type, const Layout& layout)
{
    Add(Named(name, layout), kOurs, [type, layout](const Frame&) {
        const FieldFrame& frame = NextFieldFrame(layout);
        vfILDeinterlace processor;
        processor.SetInputImg(frame.in.Get());
        processor.SetOutputImgA(frame.outA.Get());
        processor.SetOutputImgB(frame.outB.Get());
        processor.SetCompImgA(frame.before.Get());
        processor.SetCompImgB(frame.behind.Get());
        processor.SetInterpolationType(type);
        Execute(processor);
    });
}

#if defined(__x86_64__)

/// Copies to both outputs at once, or to one after the other.
template <bool streaming, bool atOnce>
__attribute__((target("avx2"))) void Split(const std::uint8_t* in, std::uint8_t* a, std::uint8_t* b,
                                           std::size_t bytes)
{
    for (int pass = 0; pass < (atOnce ? 1 : 2); ++pass) {
        for (std::size_t i = 0; i < bytes; i += 32) {
            const __m256i v = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(in + i));
            auto* const first = reinterpret_cast<__m256i*>((pass == 0 ? a : b) + i);
            auto* const second = reinterpret_cast<__m256i*>(b + i);
            if (streaming)
                _mm256_stream_si256(first, v);
            else
                _mm256_storeu_si256(first, v);
            if (!atOnce) continue;
            if (streaming)
                _mm256_stream_si256(second, v);
            else
                _mm256_storeu_si256(second, v);
        }
    }
}

void AddLimits(const Layout& layout)
{
    if (!__builtin_cpu_supports("avx2")) return;
    const auto add = [&](const char* who, auto split) {
        Add(kLimitSplit + std::string(layout.name), who, [=](const Frame&) {
            const FieldFrame& frame = NextFieldFrame(layout);
            const std::size_t bytes = frame.in->RowBytes();
            for (std::size_t at = 0; at < kHeight * bytes; at += bytes)
                split(frame.in->Pixels() + at, frame.outA->Pixels() + at, frame.outB->Pixels() + at, bytes);
            _mm_sfence();
        });
    };
    add("at once", Split<false, true>);
    add("in turn", Split<false, false>);
    add("at once, streaming", Split<true, true>);
    add("in turn, streaming", Split<true, false>);
}

#else

void AddLimits(const Layout&)
{}

#endif

void AddDeinterlace()
{
    for (const Layout& layout : kFieldLayouts) {
        AddOurs(kDuplicate, VFIL_DEINTERLACE_DUPLICATE, layout);
        AddOurs(kInterpolate, VFIL_DEINTERLACE_INTERPOLATE, layout);
        AddOurs(kAdaptive, VFIL_DEINTERLACE_ADAPTIVE, layout);
        AddLimits(layout);
    }
}

const Source s_source(AddDeinterlace);

} // namespace

const FieldFrame& NextFieldFrame(const Layout& layout)
{
    struct Turns {
        std::vector<FieldFrame> frames;
        std::size_t next = 0;
    };
    static std::map<std::string, Turns> s_turns;
    Turns& turns = s_turns[layout.name];
    if (turns.frames.empty()) turns.frames = MakeFrames(layout);
    turns.next = (turns.next + 1) % turns.frames.size();
    return turns.frames[turns.next];
}

} // namespace bench
