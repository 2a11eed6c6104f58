/// \file
/// Puts pictures on one sheet: example_contactsheet SHEET.png PICTURE...
///
/// Each picture is made smaller to fit its cell and composited over a checkerboard, which shows through where
/// alpha is not full. Cells run from the top left, row by row.
#include <vfil/host/picturefile.h>

#include <vfil/composite.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <exception>
#include <iostream>
#include <string>
#include <vector>

namespace {

using vfil::host::Picture;
using vfil::host::PicturePtr;

constexpr long kColumns = 5;
constexpr long kCellWidth = 240;
constexpr long kCellHeight = 200;
constexpr long kMargin = 8;
constexpr long kSquare = 10;
constexpr std::uint8_t kLight = 204;
constexpr std::uint8_t kDark = 153;
constexpr std::uint8_t kPaper = 40;

struct Size {
    long width;
    long height;
};

/// The largest size of the same shape that fits a cell; never larger than the picture.
Size FittedSize(long width, long height)
{
    const double scale = std::min({1.0, static_cast<double>(kCellWidth) / static_cast<double>(width),
                                   static_cast<double>(kCellHeight) / static_cast<double>(height)});
    const auto scaled = [scale](long side) {
        return std::max(1l, static_cast<long>(static_cast<double>(side) * scale));
    };
    return {scaled(width), scaled(height)};
}

/// The mean of a block of pixels, weighted by alpha and multiplied by it.
std::array<std::uint8_t, 4> PremultipliedMean(const Picture& picture, long x0, long x1, long y0, long y1)
{
    std::array<std::uint64_t, 4> sums{};
    for (long y = y0; y < y1; ++y) {
        const std::uint8_t* pixel = picture.Row(y) + 4 * x0;
        for (long x = x0; x < x1; ++x, pixel += 4) {
            const std::uint64_t weight = picture.Premultiplied() ? 255 : pixel[3];
            for (std::size_t c = 0; c < 3; ++c)
                sums[c] += pixel[c] * weight;
            sums[3] += pixel[3] * 255u;
        }
    }
    const auto total = static_cast<std::uint64_t>(x1 - x0) * static_cast<std::uint64_t>(y1 - y0) * 255;
    std::array<std::uint8_t, 4> mean{};
    for (std::size_t c = 0; c < 4; ++c)
        mean[c] = static_cast<std::uint8_t>((sums[c] + total / 2) / total);
    return mean;
}

PicturePtr Reduced(const Picture& picture)
{
    const Size size = FittedSize(picture.Width(), picture.Height());
    PicturePtr small = Picture::Create(PXFormat_RGBA32, size.width, size.height);
    small->SetPremultiplied(true);
    for (long y = 0; y < size.height; ++y) {
        for (long x = 0; x < size.width; ++x) {
            const auto mean = PremultipliedMean(
                picture, x * picture.Width() / size.width, (x + 1) * picture.Width() / size.width,
                y * picture.Height() / size.height, (y + 1) * picture.Height() / size.height);
            std::copy(mean.begin(), mean.end(), small->Row(y) + 4 * x);
        }
    }
    return small;
}

/// An opaque sheet of cells with a checkerboard in each.
PicturePtr EmptySheet(long cells)
{
    const long columns = std::min(cells, kColumns);
    const long rows = (cells + kColumns - 1) / kColumns;
    const long stepX = kCellWidth + kMargin;
    const long stepY = kCellHeight + kMargin;
    PicturePtr sheet = Picture::Create(PXFormat_RGBA32, columns * stepX + kMargin, rows * stepY + kMargin);
    for (long y = 0; y < sheet->Height(); ++y) {
        for (long x = 0; x < sheet->Width(); ++x) {
            const bool margin = x % stepX < kMargin || y % stepY < kMargin;
            const bool light = (x / kSquare + y / kSquare) % 2 == 0;
            std::uint8_t* pixel = sheet->Row(y) + 4 * x;
            std::fill_n(pixel, 3, margin ? kPaper : light ? kLight : kDark);
            pixel[3] = 255;
        }
    }
    return sheet;
}

/// Composites a picture into the middle of a cell, in place.
bool Place(Picture& sheet, Picture& picture, long cell)
{
    const long left = kMargin + cell % kColumns * (kCellWidth + kMargin) + (kCellWidth - picture.Width()) / 2;
    const long top =
        kMargin + cell / kColumns * (kCellHeight + kMargin) + (kCellHeight - picture.Height()) / 2;
    const long bottom = sheet.Height() - top - picture.Height();

    vfILOverImage over;
    over.SetInputImgA(&sheet);
    over.SetInputImgB(&picture);
    over.SetDominantInput(&sheet);
    over.SetInputOffset({left, bottom});
    over.SetOutputImg(&sheet);
    over.SetROI({left, bottom, picture.Width(), picture.Height()});
    over.SetOutputOffset({left, bottom});
    over.SetProcessingMode(VFIL_MODE_RGBA);
    return over.Verify() == VFIL_SUCCESS && over.Execute() == VFIL_SUCCESS;
}

int Run(const std::string& sheetPath, const std::vector<std::string>& paths)
{
    vfil::host::ReadOptions options;
    options.format = PXFormat_RGBA32;
    const PicturePtr sheet = EmptySheet(static_cast<long>(paths.size()));
    for (std::size_t i = 0; i < paths.size(); ++i) {
        const PicturePtr picture = Reduced(*vfil::host::ReadPicture(paths[i], options));
        if (!Place(*sheet, *picture, static_cast<long>(i))) {
            std::cerr << paths[i] << ": cannot be composited\n";
            return 1;
        }
    }
    vfil::host::WritePicture(sheetPath, *sheet);
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc < 3) {
        std::cerr << "usage: example_contactsheet SHEET.png PICTURE...\n";
        return 2;
    }
    try {
        return Run(argv[1], {argv + 2, argv + argc});
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
