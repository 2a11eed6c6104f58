/// \file
/// The host picture: rows, regions, sizes, copies, references, and its class factory.

#include <vfil/host/picture.h>

#include "support/formats.h"
#include <vfil/host/picturefactory.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <numeric>
#include <random>
#include <stdexcept>
#include <vector>

namespace vfil::host {
namespace {

using test::FormatCase;
using test::kFormats;
using Bytes = std::vector<std::uint8_t>;

Bytes PixelsOf(const Picture& picture)
{
    return {picture.Pixels(), picture.Pixels() + picture.Bytes()};
}

/// Gives every byte of a picture a value from 128 on, which its neighbours do not have.
void Number(Picture& picture)
{
    for (std::size_t i = 0; i < picture.Bytes(); ++i) {
        picture.Pixels()[i] = static_cast<std::uint8_t>(128 + i * 7 % 127);
    }
}

TEST(Picture, EveryFormatHasItsOrderOfRowsInAClearAlignedArray)
{
    for (const FormatCase& format : kFormats) {
        for (long height = 1; height <= 6; ++height) {
            SCOPED_TRACE(std::string(format.name) + " height " + std::to_string(height));
            const PicturePtr picture = Picture::Create(format.id, 5, height);
            const long rowBytes = 5 * (format.Is('P') ? 2 : format.pixelBytes);
            EXPECT_EQ(reinterpret_cast<std::uintptr_t>(picture->Pixels()) % 64, 0U);
            EXPECT_EQ(PixelsOf(*picture), Bytes(static_cast<std::size_t>(5 * height * format.pixelBytes)));

            std::vector<long> order(static_cast<std::size_t>(height)); // the image rows as memory has them
            std::iota(order.begin(), order.end(), 0);
            if (format.Is('T')) std::reverse(order.begin(), order.end());
            if (format.Is('S')) {
                std::stable_partition(order.begin(), order.end(),
                                      [&](long y) { return (y % 2 == 0) == format.Is('E'); });
            }
            for (long row = 0; row < height; ++row) {
                const long y = order[static_cast<std::size_t>(row)];
                EXPECT_EQ(picture->Row(y) - picture->Pixels(), row * rowBytes) << "y " << y;
                EXPECT_EQ(picture->AlphaRow(y) - picture->Pixels(), height * rowBytes + row * 5) << "y " << y;
            }
        }
    }
}

TEST(Picture, RegionsAreReadAndFilledInImageCoordinates)
{
    // A pixel, or with shared chroma two of them and alpha.
    const std::uint8_t value[] = {10, 20, 30, 40, 50, 60, 70, 80};
    std::mt19937 random(7);
    const auto below = [&](long end) { return static_cast<long>(random() % static_cast<unsigned>(end)); };
    for (const FormatCase& format : kFormats) {
        const PicturePtr picture = Picture::Create(format.id, 7, 5);
        const long pixelBytes = format.Is('P') ? 2 : format.pixelBytes;
        for (int run = 0; run < 20; ++run) {
            SCOPED_TRACE(std::string(format.name) + " run " + std::to_string(run));
            const long x = below(7);
            const long y = below(5);
            const long w = below(8 - x);
            const long h = below(6 - y);
            const long rowBytes = w * pixelBytes;
            Number(*picture);
            Bytes region(static_cast<std::size_t>(w * h * format.pixelBytes) + 1, 0xEE);
            ASSERT_EQ(picture->ReadRegion(region.data(), x, y, w, h), S_OK);
            Bytes filled;
            for (long i = 0; i < w * h * format.pixelBytes; ++i) {
                const long k = i - h * rowBytes; // in the alpha plane, which follows the rows
                const std::uint8_t there =
                    k >= 0 ? picture->AlphaRow(y + k / w)[x + k % w]
                           : picture->Row(y + i / rowBytes)[x * pixelBytes + i % rowBytes];
                ASSERT_EQ(region[static_cast<std::size_t>(i)], there);
                const long shared = format.IsSubsampled() ? 2 * ((x + i % rowBytes / 2) % 2) : 0;
                filled.push_back(value[k >= 0 ? 4 : shared + i % pixelBytes]);
            }
            ASSERT_EQ(picture->FillRegion(value, x, y, w, h), S_OK);
            const Bytes all = PixelsOf(*picture);
            EXPECT_EQ(std::count_if(all.begin(), all.end(), [](int v) { return v < 128; }),
                      static_cast<long>(filled.size()));
            filled.push_back(0xEE); // behind the region nothing is written
            ASSERT_EQ(picture->ReadRegion(region.data(), x, y, w, h), S_OK);
            EXPECT_EQ(region, filled);
        }
    }
}

TEST(Picture, WrongRectanglesAndSizesChangeNothing)
{
    const PicturePtr picture = Picture::Create(PXFormat_RGBA32, 4, 3);
    Number(*picture);
    const Bytes before = PixelsOf(*picture);
    std::uint8_t buffer[64] = {};
    const long rectangles[][4] = {{-1, 0, 1, 1}, {0, -1, 1, 1}, {0, 0, 5, 1},        {0, 0, 1, 4},
                                  {4, 0, 1, 1},  {0, 0, -1, 1}, {1, 0, LONG_MAX, 1}, {LONG_MAX, 0, 1, 1}};
    for (const auto& r : rectangles) {
        EXPECT_EQ(picture->ReadRegion(buffer, r[0], r[1], r[2], r[3]), E_INVALIDARG);
        EXPECT_EQ(picture->FillRegion(buffer, r[0], r[1], r[2], r[3]), E_INVALIDARG);
    }
    for (const auto& [width, height] : {std::pair{-1L, 4L}, {4L, LONG_MIN}, {LONG_MAX, 1L}}) {
        EXPECT_EQ(picture->SetDimensions(width, height), E_INVALIDARG);
    }
    EXPECT_EQ(picture->SetDimensions(Picture::kMaxSide, Picture::kMaxSide), E_OUTOFMEMORY);
    constexpr GUID kNoFormat{};
    EXPECT_EQ(picture->SetFormat(&kNoFormat), E_INVALIDARG);
    EXPECT_EQ(picture->SetImageState(Picture::kStates, 1), E_INVALIDARG);
    EXPECT_EQ(PixelsOf(*picture), before);
    EXPECT_THROW(Picture::Create(kNoFormat, 1, 1), std::invalid_argument);
    // Modulo 2^64 these are no more than 291 MB.
    EXPECT_THROW(Picture::Create(PXFormat_RGBA64, 1518500250, 1518500250), std::bad_alloc);

    EXPECT_EQ(picture->SetFormat(&PXFormat_Mono8), S_OK);
    EXPECT_EQ(picture->Width(), 0);
    EXPECT_EQ(picture->SetDimensions(0, 7), S_OK);
    EXPECT_EQ(picture->Pixels(), nullptr);
    EXPECT_EQ(picture->ReadRegion(buffer, 0, 0, 0, 7), S_OK);
}

TEST(Picture, ClonesAndSwapsCarryWhatTheyShould)
{
    const PicturePtr a = Picture::Create(PXFormat_YCCA422_709, 5, 3);
    Number(*a);
    a->SetPremultiplied(true);
    a->SetTag(77);
    PicturePtr full;
    for (const bool data : {false, true}) {
        void* made = nullptr;
        ASSERT_EQ(data ? a->CloneImage(IID_IPXImage, &made) : a->CloneImageNoData(IID_IPXImage, &made), S_OK);
        full = PicturePtr(static_cast<Picture*>(static_cast<IPXImage*>(made)));
        EXPECT_NE(full.Get(), a.Get());
        EXPECT_EQ(full->Format(), PXFormat_YCCA422_709);
        EXPECT_EQ(PixelsOf(*full), data ? PixelsOf(*a) : Bytes());
        EXPECT_EQ(full->Premultiplied(), data);
        unsigned long tag = 0;
        full->GetTag(&tag);
        EXPECT_EQ(tag, 77U);
    }

    const PicturePtr b = Picture::Create(PXFormat_Mono8, 2, 2);
    EXPECT_EQ(a->SwapImageData(b.Get()), E_INVALIDARG);
    const std::uint8_t* pixels = a->Pixels();
    EXPECT_EQ(a->SwapImage(b.Get()), S_OK);
    EXPECT_EQ(b->Pixels(), pixels);
    EXPECT_TRUE(b->Premultiplied());
    EXPECT_EQ(a->Width(), 2);
    EXPECT_EQ(b->SwapImageData(full.Get()), S_OK);
    EXPECT_EQ(full->Pixels(), pixels);
}

TEST(PictureFactory, MakesPicturesForTheLibrary)
{
    RegisterPictureClass();
    void* made = nullptr;
    ASSERT_EQ(CoCreateInstance(CLSID_PXImage, nullptr, CLSCTX_INPROC_SERVER, IID_IPXImage, &made), S_OK);
    auto* image = static_cast<IPXImage*>(made);
    void* ops = nullptr;
    EXPECT_EQ(image->QueryInterface(IID_IPXImageOps, &ops), S_OK);
    EXPECT_EQ(static_cast<IPXImageOps*>(ops)->Release(), 1U);
    EXPECT_EQ(image->QueryInterface(IID_IClassFactory, &ops), E_NOINTERFACE);
    EXPECT_EQ(CoCreateInstance(CLSID_PXImage, image, CLSCTX_INPROC_SERVER, IID_IPXImage, &made),
              CLASS_E_NOAGGREGATION);
    EXPECT_EQ(image->Release(), 0U);
}

} // namespace
} // namespace vfil::host
