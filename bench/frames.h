/// \file
/// The pictures that all benchmarks run over, and how a benchmark is added.
#pragma once

#include <vfil/host/picture.h>

#include <vfil/error.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
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
    /// A picture to read and one to write in each format that conversions are measured in. Those of RGBA are
    /// back and out.
    std::vector<PicturePtr> inputs, outputs;
    /// A photograph, opaque, for the filters: in RGBA of 8 and 16 bits and its green as mono, ...
    std::vector<PicturePtr> photos;
    /// ... and the planes G, B, R and A of 8 bits, one below the other.
    PicturePtr photoPlanes;
    /// A subject before a green screen, in RGBA, opaque, for the keyers.
    PicturePtr plate;
    /// The same as Y0 Cb Y1 Cr, BT.601; and bars of full colour.
    PicturePtr videoPlate, videoBars;

    vfil::host::Picture& In(const GUID& format) const { return Find(inputs, format); }
    vfil::host::Picture& Out(const GUID& format) const { return Find(outputs, format); }
    vfil::host::Picture& Photo(const GUID& format) const { return Find(photos, format); }

private:
    static vfil::host::Picture& Find(const std::vector<PicturePtr>& pictures, const GUID& format);
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

/// Adds the benchmark of an operator done by someone: run treats one whole frame, or does one operation whose
/// name ends in kMicroseconds.
void Add(const std::string& operation, const std::string& who, std::function<void(const Frame&)> run);

/// Runs one of our processors, and ends the program where it refuses.
template <class Processor>
void Execute(Processor& processor)
{
    if (processor.Verify() == VFIL_SUCCESS && processor.Execute() == VFIL_SUCCESS) return;
    std::fprintf(stderr, "a processor refused with %#lx\n", processor.GetLastError().GetErrorCode());
    std::abort();
}

/// A constant of this in a source of benchmarks has main call \p add: a source that is built is measured.
class Source {
public:
    explicit Source(void (*add)());
    /// Has all sources add their benchmarks.
    static void AddAll();
};

// How the table names those who are no peers: the processors, and their kernels by themselves.
inline constexpr char kOurs[] = "vfil";
inline constexpr char kOurRows[] = "vfil rows";
inline constexpr char kOurRowsCached[] = "vfil rows, plain stores";
constexpr const char* RowsName(bool streaming)
{
    return streaming ? kOurRows : kOurRowsCached;
}
inline constexpr char kLimitTwo[] = "limit: read two, write one";
inline constexpr char kLimitInPlace[] = "limit: read two, write over one";
inline constexpr char kLimitOne[] = "limit: read one, write one";
inline constexpr char kLimitOneVideo[] = "limit: read one, write one, 4:2:2";
inline constexpr char kLimitOne16[] = "limit: read one, write one, 16 bits";
inline constexpr char kLimitInTurn[] = "limit: rows of two in turn";
inline constexpr char kLimitInTurnVideo[] = "limit: rows of two in turn, 4:2:2";
inline constexpr char kLimitInTurn16[] = "limit: rows of two in turn, 16 bits";
inline constexpr char kLimitTwo16[] = "limit: read two, write one, 16 bits";

// Conversions, by the names of the formats.
inline constexpr char kToUyvy601[] = "rgba to uyvy 601";
inline constexpr char kToUyvy709[] = "rgba to uyvy 709";
inline constexpr char kToYuyv601[] = "rgba to yuyv 601";
inline constexpr char kFromUyvy601[] = "uyvy 601 to rgba";
inline constexpr char kFromUyvy709[] = "uyvy 709 to rgba";
inline constexpr char kFromYuyv601[] = "yuyv 601 to rgba";
inline constexpr char kRgb24ToUyvy[] = "rgb24 to uyvy 601";
inline constexpr char kUyvyToRgb24[] = "uyvy 601 to rgb24";
inline constexpr char k16To8[] = "rgba 16 to 8 bits";
inline constexpr char k8To16[] = "rgba 8 to 16 bits";
inline constexpr char kSwap[] = "rgba to bgra";
inline constexpr char kExpand[] = "rgb24 to rgba";
inline constexpr char kDrop[] = "rgba to rgb24";
inline constexpr char kToHls[] = "rgba to hls";
inline constexpr char kFromHls[] = "hls to rgba";
inline constexpr char kToYcca[] = "rgba to ycca";
inline constexpr char kFromYcca[] = "ycca to rgba";
inline constexpr char kToYcca64[] = "rgba64 to ycca64";
inline constexpr char kFillCopied[] = "split fill, same order";
inline constexpr char kFillSwapped[] = "split fill, other order";
inline constexpr char kKey[] = "split key";
inline constexpr char kJoin[] = "join fill and key";

// Keys, by what they go by.
inline constexpr char kKeyHue[] = "key, hue";
inline constexpr char kKeyDifference[] = "key, difference";
inline constexpr char kKeyRamp[] = "key, ramp";
inline constexpr char kKeyLuma[] = "key, luma";
inline constexpr char kRgbDifference[] = "key and composite, difference";
inline constexpr char kRgbDifferenceSpill[] = "key and composite, difference and spill";
inline constexpr char kRgbDifferenceMatte[] = "key to matte, difference";
inline constexpr char kVideoHue[] = "key 4:2:2, hue";
inline constexpr char kVideoHueSpill[] = "key 4:2:2, hue and spill";
inline constexpr char kVideoHueMatte[] = "key 4:2:2, hue, matte";
inline constexpr char kVideoDifference[] = "key 4:2:2, difference";
inline constexpr char kVideoDifferenceSpill[] = "key 4:2:2, difference and spill";
inline constexpr char kVideoDifferenceMatte[] = "key 4:2:2, difference, matte";
inline constexpr char kVideoLuma[] = "key 4:2:2, luma";

/// Of a ramp: the fill of a picture as large.
inline constexpr char kFill[] = "a fill";

// Fields: each row of the result is read once, wherever it comes from.
inline constexpr char kWeave[] = "weave, ";
inline constexpr char kFieldSwap[] = "field swap, ";
inline constexpr char kFieldMerge[] = "field merge, ";
inline constexpr char kFields422[] = "4:2:2";
inline constexpr char kFieldsRgba[] = "rgba";
inline constexpr char kFieldsRgba16[] = "rgba 16 bits";

// Colour correction, and what it goes by.
inline constexpr char kCorrect[] = "correct";
inline constexpr char kCorrect16[] = "correct 16 bits";
inline constexpr char kCorrect422[] = "correct 4:2:2";
inline constexpr char kLegalize[] = "legalize, ";
inline constexpr char kByMatrix[] = ", matrix";
inline constexpr char kByTables[] = ", matrix and channel tables";

/// The ending of operations that write over the back, as pixman does.
inline constexpr char kInPlace[] = ", in place";
/// The ending of operations that are no work on pixels.
inline constexpr char kMicroseconds[] = ", us";

} // namespace bench
