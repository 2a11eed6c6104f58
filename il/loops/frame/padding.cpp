/// \file
/// Reading a part of a picture that may reach past its edges: every row is cut into stretches that one copy
/// makes, and one rule places the samples of both axes.

#include "il/loops/frame/padding.h"

#include "il/loops/frame/rowcopy.h"

#include <algorithm>
#include <cstdint>

namespace vfil {

namespace {

/// Samples side by side that one copy makes.
struct Stretch {
    enum class Order { Forward, Backward, Same };

    std::int64_t from; ///< where the first is taken from; -1 for the edge colour
    std::int64_t count;
    Order order;
};

/// Where the samples from \p at on come from, in an axis of \p size samples: as many as are in one order, at
/// most \p wanted.
Stretch StretchAt(vfILEdgeMode mode, std::int64_t at, std::int64_t size, std::int64_t wanted)
{
    using Order = Stretch::Order;
    const bool inside = at >= 0 && at < size;
    if (inside || mode == VFIL_EDGE_WRAP) {
        const std::int64_t from = (at % size + size) % size;
        return {from, std::min(wanted, size - from), Order::Forward};
    }
    if (mode == VFIL_EDGE_MIRROR) {
        const std::int64_t period = 2 * size;
        const std::int64_t phase = (at % period + period) % period;
        if (phase < size) return {phase, std::min(wanted, size - phase), Order::Forward};
        return {period - 1 - phase, std::min(wanted, period - phase), Order::Backward};
    }
    const std::int64_t count = at < 0 ? std::min(wanted, -at) : wanted;
    return {mode == VFIL_EDGE_CLAMP ? std::clamp<std::int64_t>(at, 0, size - 1) : -1, count, Order::Same};
}

/// Copies pixels in reverse; \p from is the first one, behind the others.
template <std::size_t kPixelBytes>
void CopyBackward(const unsigned char* from, unsigned char* to, std::size_t count)
{
    for (; count != 0; --count, from -= kPixelBytes, to += kPixelBytes)
        std::memcpy(to, from, kPixelBytes);
}

void CopyBackward(const unsigned char* from, unsigned char* to, std::size_t count, std::size_t pixelBytes)
{
    switch (pixelBytes) {
    case 1:
        return CopyBackward<1>(from, to, count);
    case 2:
        return CopyBackward<2>(from, to, count);
    case 4:
        return CopyBackward<4>(from, to, count);
    case 8:
        return CopyBackward<8>(from, to, count);
    default:
        for (; count != 0; --count, from -= pixelBytes, to += pixelBytes)
            std::memcpy(to, from, pixelBytes);
    }
}

/// Reads one row of a window from the picture's row that it lies in.
void ReadRow(const ImageView& picture, const unsigned char* row, const vfILBbox2l& window,
             const EdgeRule& edge, bool useVectors, unsigned char* to)
{
    const auto pixelBytes = static_cast<std::size_t>(picture.RowPixelBytes());
    const std::int64_t first = window.GetOffsetX();
    const std::int64_t last = first + window.GetSizeX();
    for (std::int64_t x = first; x < last;) {
        const Stretch stretch = StretchAt(edge.mode, x, picture.width, last - x);
        const auto count = static_cast<std::size_t>(stretch.count);
        const unsigned char* from = stretch.from < 0
                                        ? edge.colour.bytes
                                        : row + stretch.from * static_cast<std::ptrdiff_t>(pixelBytes);
        if (stretch.order == Stretch::Order::Forward) {
            MoveRow(useVectors, from, to, count * pixelBytes);
        } else if (stretch.order == Stretch::Order::Backward) {
            CopyBackward(from, to, count, pixelBytes);
        } else {
            FillRow(to, count * pixelBytes, from, pixelBytes);
        }
        x += stretch.count;
        to += count * pixelBytes;
    }
}

} // namespace

EdgeRule EdgeRuleOf(const vfILMonadicSpatialProc& filter, const vfILWindowRun& run)
{
    EdgeRule rule{filter.GetEdgeMode(), {}};
    rule.colour.Set(*run.inputPicture.format, filter.GetEdgeColor());
    return rule;
}

ImageView InputOf(const vfILWindowRun& run)
{
    ImageView view(run.inputPicture);
    view.pixels = run.input.first;
    view.width = run.inputSize[0];
    view.height = run.inputSize[1];
    return view;
}

std::int64_t PlaceAt(vfILEdgeMode mode, std::int64_t at, std::int64_t size)
{
    return StretchAt(mode, at, size, 1).from;
}

void ReadWindow(const ImageView& picture, const vfILBbox2l& window, const EdgeRule& edge, bool useVectors,
                unsigned char* to)
{
    const auto pixelBytes = static_cast<std::size_t>(picture.RowPixelBytes());
    const std::size_t rowBytes = static_cast<std::size_t>(window.GetSizeX()) * pixelBytes;
    for (long i = 0; i < window.GetSizeY(); ++i, to += rowBytes) {
        const std::int64_t row = PlaceAt(edge.mode, std::int64_t{window.GetOffsetY()} + i, picture.height);
        if (row < 0) {
            FillRow(to, rowBytes, edge.colour.bytes, pixelBytes);
        } else {
            ReadRow(picture, picture.Pixel(0, static_cast<long>(row)), window, edge, useVectors, to);
        }
    }
}

} // namespace vfil
