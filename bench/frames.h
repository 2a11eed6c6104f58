/// \file
/// The pictures that all benchmarks run over, and how a benchmark is added.
#pragma once

#include "host/picture.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace bench {

inline constexpr std::size_t kWidth = 1920;
inline constexpr std::size_t kHeight = 1080;
inline constexpr std::size_t kPixels = kWidth * kHeight;

using vfil::host::PicturePtr;

/// Two inputs and an output of RGBA in 8 and 16 bits, and a mask of one byte a pixel.
struct Frame {
    PicturePtr back, front, out, mask;
    PicturePtr back16, front16, out16;
};

template <class Sample>
Sample* Row(const PicturePtr& picture, std::size_t y)
{
    return reinterpret_cast<Sample*>(picture->Pixels() + y * picture->RowBytes());
}

/// Hands out frames in turn, so many that none is still in a cache when it comes again.
class Frames {
public:
    static Frames& Get();
    const Frame& Next();

private:
    Frames();
    std::vector<Frame> m_frames;
    std::size_t m_next = 0;
};

/// Adds the benchmark of an operator done by someone: run treats one whole frame.
void Add(const std::string& operation, const std::string& who, std::function<void(const Frame&)> run);

// Each source adds its own.
void AddProcessors();
void AddRows();
void AddLimits();
void AddPixman();
void AddYuv();
void AddOpenCv();

// How the table names those who are no peers: the processors, and their kernels by themselves.
inline constexpr char kOurs[] = "vfil";
inline constexpr char kOurRows[] = "vfil rows";
inline constexpr char kOurRowsCached[] = "vfil rows, plain stores";
inline constexpr char kLimitTwo[] = "limit: read two, write one";
inline constexpr char kLimitInPlace[] = "limit: read two, write over one";
inline constexpr char kLimitOne[] = "limit: read one, write one";
inline constexpr char kLimitTwo16[] = "limit: read two, write one, 16 bits";

/// The ending of operations that write over the back, as pixman does.
inline constexpr char kInPlace[] = ", in place";

} // namespace bench
