/// \file
/// The picture of the embedded host: an IPXImage of any format, and a pointer that counts its references.
#pragma once

#include <vfil/host/export.h>
#include <vfil/image.h>
#include <vfil/pxformat.h>

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <optional>
#include <utility>

namespace vfil::host {

class PicturePtr;

/// A picture in memory. Pixels lie in one array, aligned to 64 bytes, whose rows have no padding.
///
/// A new picture is RGBA32 and without pixels. Objects are counted: they begin with one reference and go when
/// Release drops the last one; AddRef and Release may be called from any thread. Everything else is for one
/// thread at a time, but several may read a picture that nobody changes.
///
/// All operations check their pointers (E_POINTER) and leave the picture as it was when they fail.
class VFIL_HOST_API Picture final : public IPXImage, public IPXImageOps {
public:
    /// Width and height are at most this.
    static constexpr long kMaxSide = 0x7FFFFFFF;
    /// State flags have the ids 0 .. kStates - 1.
    static constexpr long kStates = 32;

    /// A picture of the given format and size whose bytes are all 0.
    ///
    /// \throws std::invalid_argument  The format is none of the 27, or a side is negative or beyond kMaxSide.
    /// \throws std::bad_alloc         Memory is short, or the size overflows.
    static PicturePtr Create(const vfILGuid& format, long width, long height);
    /// A picture without a size, as the class factory makes it. Null when memory is short.
    static PicturePtr CreateEmpty() noexcept;

    Picture(const Picture&) = delete;
    Picture& operator=(const Picture&) = delete;

    const vfILGuid& Format() const { return m_content.format->id; }
    const vfILFormatInfo& FormatInfo() const { return *m_content.format; }
    long Width() const { return m_content.width; }
    long Height() const { return m_content.height; }
    /// Bytes of a pixel in the pixel array; 3 for 4:2:2 with an alpha plane.
    int PixelBytes() const { return m_content.format->pixelBytes; }
    /// Bytes of one row. In 4:2:2 with an alpha plane that is a row of the 4:2:2 part, 2 bytes a pixel.
    std::size_t RowBytes() const;
    /// Bytes of the pixel array.
    std::size_t Bytes() const { return m_content.bytes; }
    std::uint8_t* Pixels() { return m_content.pixels; }
    const std::uint8_t* Pixels() const { return m_content.pixels; }
    /// The first byte of image row \p y, 0 <= y < Height(); y = 0 is the bottom of the picture in every
    /// format.
    std::uint8_t* Row(long y) { return m_content.pixels + RowOffset(y); }
    const std::uint8_t* Row(long y) const { return m_content.pixels + RowOffset(y); }
    /// The same in the alpha plane of a format that has one.
    std::uint8_t* AlphaRow(long y) { return m_content.pixels + AlphaRowOffset(y); }
    const std::uint8_t* AlphaRow(long y) const { return m_content.pixels + AlphaRowOffset(y); }
    /// Whether the colour is multiplied by alpha (state 2).
    bool Premultiplied() const { return m_content.states[PXImageState_PREMULTIPLIED] != 0; }
    void SetPremultiplied(bool premultiplied)
    {
        m_content.states[PXImageState_PREMULTIPLIED] = premultiplied;
    }

    /// Answers IID_IUnknown, IID_IPXImage and IID_IPXImageOps.
    vfILResult QueryInterface(const vfILGuid& riid, void** object) override;
    unsigned long AddRef() override;
    unsigned long Release() override;

    vfILResult GetFormat(vfILGuid* format) override;
    /// A format other than the present one drops the pixels and makes the size 0 by 0. E_INVALIDARG for an
    /// identifier that is none of the 27 formats.
    vfILResult SetFormat(const vfILGuid* format) override;
    vfILResult GetDimensions(long* width, long* height) override;
    /// The size in pixels until SetExtent says otherwise.
    vfILResult GetExtent(double* width, double* height) override;
    vfILResult SetExtent(double width, double height) override;
    vfILResult GetOrigin(double* x, double* y) override;
    vfILResult SetOrigin(double x, double y) override;
    vfILResult GetChannelCount(long* count) override;
    vfILResult GetSampleBytes(long* bytes) override;
    vfILResult GetChannelBytes(long* bytes) override;
    vfILResult GetPixelBytes(long* bytes) override;
    vfILResult GetPixelArray(void** pixels) override;
    vfILResult GetPixelArraySize(unsigned long* bytes) override;
    /// New pixels are 0; a size with a side of 0 leaves the picture without pixels. E_INVALIDARG for a side
    /// that is negative or beyond kMaxSide, E_OUTOFMEMORY for what memory cannot hold.
    vfILResult SetDimensions(long width, long height) override;
    /// Rows arrive lowest y first; in 4:2:2 with an alpha plane the rectangle's plane follows its 4:2:2 rows.
    /// E_INVALIDARG unless the rectangle is inside the picture; an empty one inside copies nothing.
    vfILResult ReadRegion(void* destination, long x, long y, long width, long height) override;
    /// In 4:2:2 formats \p pixel is the group of two pixels, 4 bytes: even columns take its first two bytes,
    /// odd ones its last two; with an alpha plane a fifth byte is alpha. Rectangles as for ReadRegion.
    vfILResult FillRegion(const void* pixel, long x, long y, long width, long height) override;
    /// Takes format, size and pixels, and the state flags, which describe those. Any host's picture will do,
    /// as long as its pixel array has the size that follows from format and dimensions (else E_INVALIDARG).
    /// Extent, origin and tag stay.
    vfILResult CopyFrom(IPXImage* source) override;
    /// 0 for a flag that was never set. E_INVALIDARG for an id outside 0 .. kStates - 1, here and in
    /// SetImageState.
    vfILResult GetImageState(long id, long* value) override;
    vfILResult SetImageState(long id, long value) override;
    vfILResult GetTag(unsigned long* value) override;
    vfILResult SetTag(unsigned long value) override;

    /// The copy has extent, origin and tag of this picture too.
    vfILResult CloneImage(const vfILGuid& riid, void** out) override;
    /// The same without pixels, size and state flags.
    vfILResult CloneImageNoData(const vfILGuid& riid, void** out) override;
    /// Exchanges everything but the references. E_INVALIDARG unless \p other is a Picture, here and in
    /// SwapImageData.
    vfILResult SwapImage(IPXImage* other) override;
    /// E_INVALIDARG unless the two arrays have the same number of bytes.
    vfILResult SwapImageData(IPXImage* other) override;

private:
    struct Free {
        void operator()(void* block) const { std::free(block); }
    };
    struct Extent {
        double width;
        double height;
    };
    /// All that SwapImage exchanges.
    struct Content {
        const vfILFormatInfo* format = vfILFindFormat(PXFormat_RGBA32);
        long width = 0;
        long height = 0;
        std::optional<Extent> extent;
        double originX = 0;
        double originY = 0;
        unsigned long tag = 0;
        std::array<long, kStates> states{};
        std::unique_ptr<void, Free> block;
        std::uint8_t* pixels = nullptr;
        std::size_t bytes = 0;
    };

    Picture() = default;
    ~Picture() = default;

    PicturePtr CloneHeader() const noexcept;
    vfILResult Allocate(const vfILFormatInfo& format, long width, long height);
    bool Contains(long x, long y, long width, long height) const;
    std::size_t RowOffset(long y) const;
    std::size_t AlphaRowOffset(long y) const;

    std::atomic<unsigned long> m_references{1};
    Content m_content;
};

/// Holds one reference to a picture, or none.
class PicturePtr {
public:
    PicturePtr() = default;
    /// Takes over a reference that the caller holds.
    explicit PicturePtr(Picture* adopted) : m_picture(adopted) {}
    PicturePtr(const PicturePtr& other) : m_picture(other.m_picture)
    {
        if (m_picture != nullptr) m_picture->AddRef();
    }
    PicturePtr(PicturePtr&& other) noexcept : m_picture(std::exchange(other.m_picture, nullptr)) {}
    PicturePtr& operator=(PicturePtr other) noexcept
    {
        std::swap(m_picture, other.m_picture);
        return *this;
    }
    ~PicturePtr()
    {
        if (m_picture != nullptr) m_picture->Release();
    }

    Picture* Get() const { return m_picture; }
    Picture* operator->() const { return m_picture; }
    Picture& operator*() const { return *m_picture; }
    explicit operator bool() const { return m_picture != nullptr; }

private:
    Picture* m_picture = nullptr;
};

} // namespace vfil::host
