/// \file
/// Conversions by libyuv. Its "ARGB" is B G R A in memory: as much work as ours.
#include "bench/frames.h"

#include <libyuv.h>

namespace bench {

namespace {

constexpr int kColumns = kWidth;
constexpr int kRows = kHeight;
constexpr int kRow = kWidth * 4;
constexpr int kPairRow = kWidth * 2;
constexpr int kRow24 = kWidth * 3;

using Convert = int (*)(const std::uint8_t*, int, std::uint8_t*, int, int, int);

/// A conversion of one call.
void AddCall(const char* operation, Convert convert, const GUID& from, int fromRow, const GUID& to, int toRow)
{
    Add(operation, "libyuv", [=](const Frame& frame) {
        convert(frame.In(from).Pixels(), fromRow, frame.Out(to).Pixels(), toRow, kColumns, kRows);
    });
}

/// BT.709 has no call of its own: planes of a row, then pixels.
void AddFrom709()
{
    Add(kFromUyvy709, "libyuv", [planes = std::vector<std::uint8_t>(2 * kWidth)](const Frame& frame) mutable {
        std::uint8_t* y = planes.data();
        std::uint8_t* u = y + kWidth;
        std::uint8_t* v = u + kWidth / 2;
        const std::uint8_t* from = frame.In(PXFormat_YUV422_709).Pixels();
        std::uint8_t* to = frame.Out(PXFormat_RGBA32).Pixels();
        for (int row = 0; row < kRows; ++row, from += kPairRow, to += kRow) {
            libyuv::UYVYToI422(from, kPairRow, y, kColumns, u, kColumns / 2, v, kColumns / 2, kColumns, 1);
            libyuv::I422ToARGBMatrix(y, kColumns, u, kColumns / 2, v, kColumns / 2, to, kRow,
                                     &libyuv::kYuvH709Constants, kColumns, 1);
        }
    });
}

void AddYuvConversions()
{
    AddCall(kToUyvy601, libyuv::ARGBToUYVY, PXFormat_RGBA32, kRow, PXFormat_YUV422_601, kPairRow);
    AddCall(kToYuyv601, libyuv::ARGBToYUY2, PXFormat_RGBA32, kRow, PXFormat_YCC422_601, kPairRow);
    AddCall(kFromUyvy601, libyuv::UYVYToARGB, PXFormat_YUV422_601, kPairRow, PXFormat_RGBA32, kRow);
    AddCall(kFromYuyv601, libyuv::YUY2ToARGB, PXFormat_YCC422_601, kPairRow, PXFormat_RGBA32, kRow);
    AddFrom709();
    AddCall(kSwap, libyuv::ARGBToABGR, PXFormat_RGBA32, kRow, PXFormat_BGRA32, kRow);
    AddCall(kExpand, libyuv::RGB24ToARGB, PXFormat_RGB24, kRow24, PXFormat_RGBA32, kRow);
    AddCall(kDrop, libyuv::ARGBToRGB24, PXFormat_RGBA32, kRow, PXFormat_RGB24, kRow24);
    Add(k16To8, "libyuv", [](const Frame& frame) {
        libyuv::Convert16To8Plane(reinterpret_cast<const std::uint16_t*>(frame.In(PXFormat_RGBA64).Pixels()),
                                  kRow, frame.Out(PXFormat_RGBA32).Pixels(), kRow, 256, kRow, kRows);
    });
    Add(kFillCopied, "libyuv", [](const Frame& frame) {
        libyuv::CopyPlane(frame.In(PXFormat_YCCA422_601).Pixels(), kPairRow,
                          frame.Out(PXFormat_YUV422_601).Pixels(), kPairRow, kPairRow, kRows);
    });
    // Pairs of bytes exchange their places.
    Add(kFillSwapped, "libyuv", [](const Frame& frame) {
        libyuv::SwapUVPlane(frame.In(PXFormat_YCCA422_601).Pixels(), kPairRow,
                            frame.Out(PXFormat_YCC422_601).Pixels(), kPairRow, kColumns, kRows);
    });
}

const Source s_source(AddYuvConversions);

} // namespace
} // namespace bench
