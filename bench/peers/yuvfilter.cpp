/// \file
/// Filters by libyuv.
#include "bench/filters.h"

#include <libyuv.h>

namespace bench {

namespace {

constexpr int kColumns = kWidth;
constexpr int kRows = kHeight;
constexpr int kRow = kWidth * 4;

void AddYuvFilters()
{
    for (const int radius : kBlurRadii) {
        std::vector<std::int32_t> sums(kWidth * 4 * (kHeight + 1));
        Add(Sized(kBox, radius, kRgba8), "libyuv", [radius, sums](const Frame& frame) mutable {
            libyuv::ARGBBlur(frame.Photo(PXFormat_RGBA32).Pixels(), kRow, frame.out->Pixels(), kRow,
                             sums.data(), kRow, kColumns, kRows, radius);
        });
    }
    // Less work than ours: that of the luma, written to three channels.
    Add(Named(kSobel, kRgba8), "libyuv, luma", [](const Frame& frame) {
        libyuv::ARGBSobel(frame.Photo(PXFormat_RGBA32).Pixels(), kRow, frame.out->Pixels(), kRow, kColumns,
                          kRows);
    });
}

const Source s_source(AddYuvFilters);

} // namespace
} // namespace bench
