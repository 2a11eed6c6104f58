/// \file
/// The same operators by libyuv.
#include "bench/frames.h"

#include <libyuv.h>

namespace bench {

namespace {

constexpr int kRow = kWidth * 4;
constexpr int kColumns = kWidth;
constexpr int kRows = kHeight;

void AddYuv()
{
    Add("over", "libyuv", [](const Frame& frame) {
        libyuv::ARGBBlend(frame.front->Pixels(), kRow, frame.back->Pixels(), kRow, frame.out->Pixels(), kRow,
                          kColumns, kRows);
    });
    Add("over, front straight", "libyuv",
        [row = std::vector<std::uint8_t>(kRow)](const Frame& frame) mutable {
            for (std::size_t at = 0; at < kPixels * 4; at += kRow) {
                libyuv::ARGBAttenuate(frame.front->Pixels() + at, kRow, row.data(), kRow, kColumns, 1);
                libyuv::ARGBBlend(row.data(), kRow, frame.back->Pixels() + at, kRow, frame.out->Pixels() + at,
                                  kRow, kColumns, 1);
            }
        });
    Add("add", "libyuv", [](const Frame& frame) {
        libyuv::ARGBAdd(frame.front->Pixels(), kRow, frame.back->Pixels(), kRow, frame.out->Pixels(), kRow,
                        kColumns, kRows);
    });
    Add("mult", "libyuv", [](const Frame& frame) {
        libyuv::ARGBMultiply(frame.front->Pixels(), kRow, frame.back->Pixels(), kRow, frame.out->Pixels(),
                             kRow, kColumns, kRows);
    });
    Add("copy", "libyuv", [](const Frame& frame) {
        libyuv::ARGBCopy(frame.back->Pixels(), kRow, frame.out->Pixels(), kRow, kColumns, kRows);
    });
}

const Source s_source(AddYuv);

} // namespace
} // namespace bench
