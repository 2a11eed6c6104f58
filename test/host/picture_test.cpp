/// \file
/// The host picture: rows, regions, sizes, copies, references, and its class factory.

#include "host/picture.h"

#include "host/picturefactory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <random>
#include <set>
#include <stdexcept>
#include <thread>
#include <vector>

namespace vfil::host {
namespace {

/// Gives every byte of a picture a value that its neighbours do not have.
void Number(Picture& picture)
{
    for (std::size_t i = 0; i < picture.Bytes(); ++i) {
        picture.Pixels()[i] = static_cast<std::uint8_t>(i * 7 + i / 251);
    }
}

TEST(Picture, EveryFormatHasAnAlignedClearArrayAndDistinctRows)
{
    for (std::size_t i = 0; i < 27; ++i) {
        const vfILFormatInfo& format = *vfILFormatAt(i);
        SCOPED_TRACE(format.name);
        for (long height = 1; height <= 6; ++height) {
            const PicturePtr picture = Picture::Create(format.id, 5, height);
            EXPECT_EQ(reinterpret_cast<std::uintptr_t>(picture->Pixels()) % 64, 0U);
            ASSERT_EQ(picture->Bytes(), static_cast<std::size_t>(5 * height * format.pixelBytes));
            EXPECT_EQ(std::count(picture->Pixels(), picture->Pixels() + picture->Bytes(), 0),
                      static_cast<long>(picture->Bytes()));
            std::set<std::ptrdiff_t> offsets;
            for (long y = 0; y < height; ++y) {
                const std::ptrdiff_t offset = picture->Row(y) - picture->Pixels();
                EXPECT_EQ(offset % static_cast<std::ptrdiff_t>(picture->RowBytes()), 0);
                EXPECT_LT(offset, static_cast<std::ptrdiff_t>(picture->RowBytes()) * height);
                offsets.insert(offset);
            }
            EXPECT_EQ(offsets.size(), static_cast<std::size_t>(height));
        }
    }
}

TEST(Picture, RowsFollowTheFormat)
{
    struct {
        GUID format;
        std::vector<long> memoryRows; // of y = 0, 1, 2, ...
    } const cases[] = {
        {PXFormat_RGBA32, {0, 1, 2, 3, 4}},
        {PXFormat_YCCA64, {4, 3, 2, 1, 0}},
        {PXFormat_YCC422_601_SplitEven, {2, 4, 1, 3, 0}},
        {PXFormat_YUV422_709_SplitOdd, {4, 1, 3, 0, 2}},
        {PXFormat_YCC422_709_SplitEven, {1, 3, 0, 2}},
        {PXFormat_YUV422_601_SplitOdd, {3, 1, 2, 0}},
    };
    for (const auto& [format, memoryRows] : cases) {
        const vfILFormatInfo& info = *vfILFindFormat(format);
        for (std::size_t y = 0; y < memoryRows.size(); ++y) {
            EXPECT_EQ(MemoryRow(info, static_cast<long>(memoryRows.size()), static_cast<long>(y)),
                      memoryRows[y])
                << info.name << " y " << y;
        }
    }
}

TEST(Picture, RegionsAreReadAndFilledInImageCoordinates)
{
    std::mt19937 random(7);
    for (const GUID& id : {PXFormat_RGBA64, PXFormat_BGR24, PXFormat_YCCA32, PXFormat_YCC422_709_SplitOdd}) {
        const PicturePtr picture = Picture::Create(id, 7, 5);
        const long pixelBytes = picture->PixelBytes();
        for (int run = 0; run < 50; ++run) {
            Number(*picture);
            const long x = static_cast<long>(random() % 7);
            const long y = static_cast<long>(random() % 5);
            const long w = static_cast<long>(random() % static_cast<unsigned long>(8 - x));
            const long h = static_cast<long>(random() % static_cast<unsigned long>(6 - y));
            std::vector<std::uint8_t> region(static_cast<std::size_t>(w * h * pixelBytes) + 1, 0xEE);
            ASSERT_EQ(picture->ReadRegion(region.data(), x, y, w, h), S_OK);
            for (long i = 0; i < w * h * pixelBytes; ++i) {
                const long row = y + i / (w * pixelBytes);
                ASSERT_EQ(region[static_cast<std::size_t>(i)],
                          picture->Row(row)[x * pixelBytes + i % (w * pixelBytes)]);
            }
            EXPECT_EQ(region.back(), 0xEE);

            std::memset(picture->Pixels(), 9, picture->Bytes());
            const std::uint8_t value[] = {1, 2, 1, 2, 5, 6, 7, 8};
            ASSERT_EQ(picture->FillRegion(value, x, y, w, h), S_OK);
            for (long row = 0; row < 5; ++row) {
                for (long i = 0; i < 7 * pixelBytes; ++i) {
                    const long column = i / pixelBytes;
                    const bool inside = row >= y && row < y + h && column >= x && column < x + w;
                    ASSERT_EQ(picture->Row(row)[i], inside ? value[i % pixelBytes] : 9);
                }
            }
        }
    }
}

TEST(Picture, FillAndReadKeepThePairsAndThePlaneOf422)
{
    const PicturePtr picture = Picture::Create(PXFormat_YCCA422_601, 5, 2);
    const std::uint8_t group[] = {10, 20, 30, 40, 50};
    ASSERT_EQ(picture->FillRegion(group, 1, 1, 3, 1), S_OK);
    const std::vector<std::uint8_t> expected{0, 0,  30, 40, 10, 20, 30, 40, 0, 0, // top row, y = 1
                                             0, 0,  0,  0,  0,  0,  0,  0,  0, 0, //
                                             0, 50, 50, 50, 0,  0,  0,  0,  0, 0};
    EXPECT_EQ(std::vector<std::uint8_t>(picture->Pixels(), picture->Pixels() + 30), expected);
    std::vector<std::uint8_t> region(12);
    ASSERT_EQ(picture->ReadRegion(region.data(), 0, 0, 2, 2), S_OK);
    EXPECT_EQ(region, (std::vector<std::uint8_t>{0, 0, 0, 0, 0, 0, 30, 40, 0, 0, 0, 50}));
}

TEST(Picture, WrongRectanglesAndSizesChangeNothing)
{
    const PicturePtr picture = Picture::Create(PXFormat_RGBA32, 4, 3);
    Number(*picture);
    const std::vector<std::uint8_t> before(picture->Pixels(), picture->Pixels() + picture->Bytes());
    std::uint8_t buffer[64] = {};
    const long rectangles[][4] = {{-1, 0, 1, 1}, {0, -1, 1, 1}, {0, 0, 5, 1},        {0, 0, 1, 4},
                                  {4, 0, 1, 1},  {0, 0, -1, 1}, {1, 0, LONG_MAX, 1}, {LONG_MAX, 0, 1, 1}};
    for (const auto& r : rectangles) {
        EXPECT_EQ(picture->ReadRegion(buffer, r[0], r[1], r[2], r[3]), E_INVALIDARG);
        EXPECT_EQ(picture->FillRegion(buffer, r[0], r[1], r[2], r[3]), E_INVALIDARG);
    }
    EXPECT_EQ(picture->SetDimensions(-1, 4), E_INVALIDARG);
    EXPECT_EQ(picture->SetDimensions(4, LONG_MIN), E_INVALIDARG);
    EXPECT_EQ(picture->SetDimensions(LONG_MAX, 1), E_INVALIDARG);
    EXPECT_EQ(picture->SetDimensions(Picture::kMaxSide, Picture::kMaxSide), E_OUTOFMEMORY);
    constexpr GUID kNoFormat{};
    EXPECT_EQ(picture->SetFormat(&kNoFormat), E_INVALIDARG);
    EXPECT_EQ(picture->SetFormat(nullptr), E_POINTER);
    EXPECT_EQ(picture->GetPixelArray(nullptr), E_POINTER);
    EXPECT_EQ(picture->CopyFrom(nullptr), E_POINTER);
    EXPECT_EQ(picture->SetImageState(Picture::kStates, 1), E_INVALIDARG);
    ASSERT_EQ(picture->Width() * picture->Height(), 12);
    EXPECT_EQ(std::memcmp(picture->Pixels(), before.data(), before.size()), 0);
    EXPECT_THROW(Picture::Create(GUID{}, 1, 1), std::invalid_argument);
    EXPECT_THROW(Picture::Create(PXFormat_RGBA64, Picture::kMaxSide, Picture::kMaxSide), std::bad_alloc);

    EXPECT_EQ(picture->SetFormat(&PXFormat_Mono8), S_OK);
    EXPECT_EQ(picture->Pixels(), nullptr);
    EXPECT_EQ(picture->Width(), 0);
    EXPECT_EQ(picture->SetDimensions(0, 7), S_OK);
    EXPECT_EQ(picture->Pixels(), nullptr);
    EXPECT_EQ(picture->ReadRegion(buffer, 0, 0, 0, 7), S_OK);
}

/// One of a picture's clones, taken over into a pointer.
PicturePtr Clone(Picture& picture, HRESULT (Picture::*method)(const IID&, void**))
{
    void* made = nullptr;
    EXPECT_EQ((picture.*method)(IID_IPXImage, &made), S_OK);
    return PicturePtr(static_cast<Picture*>(static_cast<IPXImage*>(made)));
}

TEST(Picture, ClonesAndSwapsCarryWhatTheyShould)
{
    const PicturePtr a = Picture::Create(PXFormat_YCCA422_709, 5, 3);
    Number(*a);
    a->SetPremultiplied(true);
    a->SetTag(77);
    a->SetOrigin(2.5, -1);
    const PicturePtr full = Clone(*a, &Picture::CloneImage);
    const PicturePtr empty = Clone(*a, &Picture::CloneImageNoData);
    ASSERT_EQ(full->Bytes(), a->Bytes());
    EXPECT_NE(full->Pixels(), a->Pixels());
    EXPECT_EQ(std::memcmp(full->Pixels(), a->Pixels(), a->Bytes()), 0);
    EXPECT_TRUE(full->Premultiplied());
    EXPECT_EQ(empty->Format(), PXFormat_YCCA422_709);
    EXPECT_EQ(empty->Pixels(), nullptr);
    EXPECT_FALSE(empty->Premultiplied());
    for (const PicturePtr& clone : {full, empty}) {
        unsigned long tag = 0;
        double x = 0;
        double y = 0;
        clone->GetTag(&tag);
        clone->GetOrigin(&x, &y);
        EXPECT_EQ(tag, 77U);
        EXPECT_EQ(x, 2.5);
        EXPECT_EQ(y, -1);
    }

    const PicturePtr b = Picture::Create(PXFormat_Mono8, 2, 2);
    EXPECT_EQ(a->SwapImageData(b.Get()), E_INVALIDARG);
    const std::uint8_t* pixels = a->Pixels();
    EXPECT_EQ(a->SwapImage(b.Get()), S_OK);
    EXPECT_EQ(b->Pixels(), pixels);
    EXPECT_EQ(b->Format(), PXFormat_YCCA422_709);
    EXPECT_TRUE(b->Premultiplied());
    EXPECT_EQ(a->Width(), 2);
    EXPECT_EQ(b->SwapImageData(full.Get()), S_OK);
    EXPECT_EQ(full->Pixels(), pixels);

    EXPECT_EQ(a->CopyFrom(b.Get()), S_OK);
    EXPECT_EQ(a->Format(), PXFormat_YCCA422_709);
    EXPECT_TRUE(a->Premultiplied());
    EXPECT_EQ(std::memcmp(a->Pixels(), b->Pixels(), a->Bytes()), 0);
}

TEST(Picture, ReferencesAreCountedFromManyThreads)
{
    const PicturePtr picture = Picture::Create(PXFormat_Mono8, 1, 1);
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([copy = picture] {
            for (int k = 0; k < 20000; ++k) {
                const PicturePtr another = copy;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    threads.clear();
    picture->AddRef();
    EXPECT_EQ(picture->Release(), 1U);
}

TEST(PictureFactory, MakesPicturesForTheLibrary)
{
    RegisterPictureClass();
    RegisterPictureClass();
    void* made = nullptr;
    ASSERT_EQ(CoCreateInstance(CLSID_PXImage, nullptr, CLSCTX_INPROC_SERVER, IID_IPXImage, &made), S_OK);
    auto* image = static_cast<IPXImage*>(made);
    EXPECT_EQ(image->SetFormat(&PXFormat_HLSA64), S_OK);
    EXPECT_EQ(image->SetDimensions(3, 2), S_OK);
    unsigned long bytes = 0;
    image->GetPixelArraySize(&bytes);
    EXPECT_EQ(bytes, 48U);
    void* ops = nullptr;
    EXPECT_EQ(image->QueryInterface(IID_IPXImageOps, &ops), S_OK);
    EXPECT_EQ(static_cast<IPXImageOps*>(ops)->Release(), 1U);
    EXPECT_EQ(image->QueryInterface(IID_IClassFactory, &ops), E_NOINTERFACE);
    EXPECT_EQ(ops, nullptr);
    EXPECT_EQ(CoCreateInstance(CLSID_PXImage, image, CLSCTX_INPROC_SERVER, IID_IPXImage, &made),
              CLASS_E_NOAGGREGATION);
    EXPECT_EQ(image->Release(), 0U);
}

} // namespace
} // namespace vfil::host
