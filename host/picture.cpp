/// \file
/// The picture of the embedded host.

#include <vfil/host/picture.h>

#include <cstring>
#include <limits>
#include <new>
#include <stdexcept>

namespace vfil::host {

namespace {

constexpr std::size_t kAlignment = 64;

/// Bytes from one pixel of a row to the next; the alpha plane of 4:2:2 is no part of the row.
int RowPixelBytes(const vfILFormatInfo& format)
{
    return format.subsampled ? 2 : format.pixelBytes;
}

/// Bytes of a pixel array; nothing when no memory could hold it.
std::optional<std::size_t> ArrayBytes(const vfILFormatInfo& format, long width, long height)
{
    constexpr auto kMost = static_cast<std::size_t>(std::numeric_limits<std::ptrdiff_t>::max()) - kAlignment;
    const auto w = static_cast<std::size_t>(width);
    const auto h = static_cast<std::size_t>(height);
    const auto pixelBytes = static_cast<std::size_t>(format.pixelBytes);
    if (w == 0 || h == 0) return 0;
    if (h > kMost / pixelBytes / w) return std::nullopt;
    return w * h * pixelBytes;
}

bool IsSide(long side)
{
    return side >= 0 && side <= Picture::kMaxSide;
}

/// Stores what a getter returns.
template <class T, class Value>
HRESULT Give(T* target, Value value)
{
    if (target == nullptr) return E_POINTER;
    *target = static_cast<T>(value);
    return S_OK;
}

template <class T>
HRESULT GivePair(T* first, T* second, T a, T b)
{
    if (first == nullptr || second == nullptr) return E_POINTER;
    *first = a;
    *second = b;
    return S_OK;
}

/// Hands out one of a new picture's interfaces; the pointer's own reference goes with it.
HRESULT Answer(const PicturePtr& picture, const IID& riid, void** out)
{
    return picture ? picture->QueryInterface(riid, out) : E_OUTOFMEMORY;
}

} // namespace

PicturePtr Picture::Create(const GUID& format, long width, long height)
{
    const vfILFormatInfo* info = vfILFindFormat(format);
    if (info == nullptr) throw std::invalid_argument("Picture::Create: no such format");
    if (!IsSide(width) || !IsSide(height)) throw std::invalid_argument("Picture::Create: wrong size");
    PicturePtr picture = CreateEmpty();
    if (!picture || FAILED(picture->Allocate(*info, width, height))) throw std::bad_alloc();
    return picture;
}

PicturePtr Picture::CreateEmpty() noexcept
{
    return PicturePtr(new (std::nothrow) Picture);
}

std::size_t Picture::RowBytes() const
{
    return static_cast<std::size_t>(Width()) * static_cast<std::size_t>(RowPixelBytes(FormatInfo()));
}

std::size_t Picture::RowOffset(long y) const
{
    return static_cast<std::size_t>(FormatInfo().MemoryRow(Height(), y)) * RowBytes();
}

std::size_t Picture::AlphaRowOffset(long y) const
{
    const auto row = static_cast<std::size_t>(FormatInfo().MemoryRow(Height(), y));
    return RowBytes() * static_cast<std::size_t>(Height()) + row * static_cast<std::size_t>(Width());
}

HRESULT Picture::QueryInterface(const IID& riid, void** object)
{
    if (object == nullptr) return E_POINTER;
    if (riid == IID_IUnknown || riid == IID_IPXImage) {
        *object = static_cast<IPXImage*>(this);
    } else if (riid == IID_IPXImageOps) {
        *object = static_cast<IPXImageOps*>(this);
    } else {
        *object = nullptr;
        return E_NOINTERFACE;
    }
    AddRef();
    return S_OK;
}

unsigned long Picture::AddRef()
{
    return m_references.fetch_add(1, std::memory_order_relaxed) + 1;
}

unsigned long Picture::Release()
{
    const unsigned long left = m_references.fetch_sub(1, std::memory_order_acq_rel) - 1;
    if (left == 0) delete this;
    return left;
}

HRESULT Picture::GetFormat(GUID* format)
{
    return Give(format, Format());
}

HRESULT Picture::SetFormat(const GUID* format)
{
    if (format == nullptr) return E_POINTER;
    const vfILFormatInfo* info = vfILFindFormat(*format);
    if (info == nullptr) return E_INVALIDARG;
    return info == m_content.format ? S_OK : Allocate(*info, 0, 0);
}

HRESULT Picture::GetDimensions(long* width, long* height)
{
    return GivePair(width, height, Width(), Height());
}

HRESULT Picture::GetExtent(double* width, double* height)
{
    const Extent pixels{static_cast<double>(Width()), static_cast<double>(Height())};
    const Extent extent = m_content.extent.value_or(pixels);
    return GivePair(width, height, extent.width, extent.height);
}

HRESULT Picture::SetExtent(double width, double height)
{
    m_content.extent = Extent{width, height};
    return S_OK;
}

HRESULT Picture::GetOrigin(double* x, double* y)
{
    return GivePair(x, y, m_content.originX, m_content.originY);
}

HRESULT Picture::SetOrigin(double x, double y)
{
    m_content.originX = x;
    m_content.originY = y;
    return S_OK;
}

HRESULT Picture::GetChannelCount(long* count)
{
    return Give(count, FormatInfo().channels);
}

HRESULT Picture::GetSampleBytes(long* bytes)
{
    return Give(bytes, FormatInfo().sampleBytes);
}

HRESULT Picture::GetChannelBytes(long* bytes)
{
    return Give(bytes, FormatInfo().sampleBytes);
}

HRESULT Picture::GetPixelBytes(long* bytes)
{
    return Give(bytes, PixelBytes());
}

HRESULT Picture::GetPixelArray(void** pixels)
{
    return Give(pixels, Pixels());
}

HRESULT Picture::GetPixelArraySize(unsigned long* bytes)
{
    return Give(bytes, Bytes());
}

HRESULT Picture::SetDimensions(long width, long height)
{
    if (!IsSide(width) || !IsSide(height)) return E_INVALIDARG;
    return Allocate(FormatInfo(), width, height);
}

HRESULT Picture::Allocate(const vfILFormatInfo& format, long width, long height)
{
    const std::optional<std::size_t> bytes = ArrayBytes(format, width, height);
    if (!bytes) return E_OUTOFMEMORY;
    std::unique_ptr<void, Free> block;
    void* pixels = nullptr;
    if (*bytes != 0) {
        // Large blocks come from calloc as untouched pages, so that clearing them costs nothing here.
        std::size_t room = *bytes + kAlignment - 1;
        block.reset(std::calloc(room, 1));
        if (block == nullptr) return E_OUTOFMEMORY;
        pixels = block.get();
        std::align(kAlignment, *bytes, pixels, room);
    }
    m_content.format = &format;
    m_content.width = width;
    m_content.height = height;
    m_content.block = std::move(block);
    m_content.pixels = static_cast<std::uint8_t*>(pixels);
    m_content.bytes = *bytes;
    return S_OK;
}

bool Picture::Contains(long x, long y, long width, long height) const
{
    return x >= 0 && y >= 0 && width >= 0 && height >= 0 && x <= Width() - width && y <= Height() - height;
}

HRESULT Picture::ReadRegion(void* destination, long x, long y, long width, long height)
{
    if (destination == nullptr) return E_POINTER;
    if (!Contains(x, y, width, height)) return E_INVALIDARG;
    if (width == 0) return S_OK;
    const int pixelBytes = RowPixelBytes(FormatInfo());
    const auto rowBytes = static_cast<std::size_t>(width * pixelBytes);
    auto* to = static_cast<std::uint8_t*>(destination);
    for (long row = y; row < y + height; ++row, to += rowBytes) {
        std::memcpy(to, Row(row) + x * pixelBytes, rowBytes);
    }
    if (!FormatInfo().alphaPlane) return S_OK;
    for (long row = y; row < y + height; ++row, to += width) {
        std::memcpy(to, AlphaRow(row) + x, static_cast<std::size_t>(width));
    }
    return S_OK;
}

HRESULT Picture::FillRegion(const void* pixel, long x, long y, long width, long height)
{
    if (pixel == nullptr) return E_POINTER;
    if (!Contains(x, y, width, height)) return E_INVALIDARG;
    if (width == 0) return S_OK;
    const auto* value = static_cast<const std::uint8_t*>(pixel);
    const int pixelBytes = RowPixelBytes(FormatInfo());
    for (long row = y; row < y + height; ++row) {
        std::uint8_t* to = Row(row);
        for (long column = x; column < x + width; ++column) {
            const std::uint8_t* from = value + (FormatInfo().subsampled ? 2 * (column & 1) : 0);
            std::memcpy(to + column * pixelBytes, from, static_cast<std::size_t>(pixelBytes));
        }
        if (FormatInfo().alphaPlane)
            std::memset(AlphaRow(row) + x, value[4], static_cast<std::size_t>(width));
    }
    return S_OK;
}

HRESULT Picture::CopyFrom(IPXImage* source)
{
    if (source == nullptr) return E_POINTER;
    if (source == this) return S_OK;
    GUID id{};
    long width = 0;
    long height = 0;
    void* pixels = nullptr;
    unsigned long bytes = 0;
    if (FAILED(source->GetFormat(&id)) || FAILED(source->GetDimensions(&width, &height))) return E_FAIL;
    if (FAILED(source->GetPixelArray(&pixels)) || FAILED(source->GetPixelArraySize(&bytes))) return E_FAIL;
    const vfILFormatInfo* format = vfILFindFormat(id);
    if (format == nullptr || !IsSide(width) || !IsSide(height)) return E_INVALIDARG;
    if (ArrayBytes(*format, width, height) != bytes || (bytes != 0 && pixels == nullptr)) return E_INVALIDARG;

    const HRESULT result = Allocate(*format, width, height);
    if (FAILED(result)) return result;
    if (bytes != 0) std::memcpy(m_content.pixels, pixels, bytes);
    for (std::size_t i = 0; i < m_content.states.size(); ++i) {
        if (FAILED(source->GetImageState(static_cast<long>(i), &m_content.states[i])))
            m_content.states[i] = 0;
    }
    return S_OK;
}

HRESULT Picture::GetImageState(long id, long* value)
{
    if (id < 0 || id >= kStates) return E_INVALIDARG;
    return Give(value, m_content.states[static_cast<std::size_t>(id)]);
}

HRESULT Picture::SetImageState(long id, long value)
{
    if (id < 0 || id >= kStates) return E_INVALIDARG;
    m_content.states[static_cast<std::size_t>(id)] = value;
    return S_OK;
}

HRESULT Picture::GetTag(unsigned long* value)
{
    return Give(value, m_content.tag);
}

HRESULT Picture::SetTag(unsigned long value)
{
    m_content.tag = value;
    return S_OK;
}

PicturePtr Picture::CloneHeader() const noexcept
{
    PicturePtr clone = CreateEmpty();
    if (!clone) return clone;
    Content& content = clone->m_content;
    content.format = m_content.format;
    content.extent = m_content.extent;
    content.originX = m_content.originX;
    content.originY = m_content.originY;
    content.tag = m_content.tag;
    return clone;
}

HRESULT Picture::CloneImage(const IID& riid, void** out)
{
    if (out == nullptr) return E_POINTER;
    *out = nullptr;
    const PicturePtr clone = CloneHeader();
    const HRESULT copied = clone ? clone->CopyFrom(this) : E_OUTOFMEMORY;
    return FAILED(copied) ? copied : Answer(clone, riid, out);
}

HRESULT Picture::CloneImageNoData(const IID& riid, void** out)
{
    if (out == nullptr) return E_POINTER;
    *out = nullptr;
    return Answer(CloneHeader(), riid, out);
}

HRESULT Picture::SwapImage(IPXImage* other)
{
    if (other == nullptr) return E_POINTER;
    auto* picture = dynamic_cast<Picture*>(other);
    if (picture == nullptr) return E_INVALIDARG;
    std::swap(m_content, picture->m_content);
    return S_OK;
}

HRESULT Picture::SwapImageData(IPXImage* other)
{
    if (other == nullptr) return E_POINTER;
    auto* picture = dynamic_cast<Picture*>(other);
    if (picture == nullptr || picture->Bytes() != Bytes()) return E_INVALIDARG;
    std::swap(m_content.block, picture->m_content.block);
    std::swap(m_content.pixels, picture->m_content.pixels);
    return S_OK;
}

} // namespace vfil::host
