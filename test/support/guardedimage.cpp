#include "support/guardedimage.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <utility>

namespace vfil::test {
namespace {

constexpr std::size_t kGuard = 64;
constexpr std::uint8_t kGuardByte = 0xA5;

} // namespace

GuardedImage::GuardedImage(const GUID& format, long width, long height) : GuardedImage(format)
{
    SetDimensions(width, height);
}

std::size_t GuardedImage::ArraySize() const
{
    return static_cast<std::size_t>(m_width) * static_cast<std::size_t>(m_height) *
           static_cast<std::size_t>(m_format->pixelBytes);
}

long GuardedImage::MemoryRow(long y) const
{
    long row = m_format->Is('T') ? m_height - 1 - y : y;
    if (m_format->Is('S'))
        row = m_format->Is('E') ? (row >> 1) + ((m_height + 1) >> 1) * (y & 1)
                                : (row >> 1) + (m_height >> 1) * (1 - (y & 1));
    return row;
}

const std::uint8_t* GuardedImage::Sample(long x, long y, int channel) const
{
    const std::uint8_t* base = m_storage.data() + kGuard;
    const std::ptrdiff_t index = MemoryRow(y) * m_width + x;
    if (!m_format->IsSubsampled())
        return channel < m_format->channels ? base + index * m_format->pixelBytes + channel * m_format->sampleBytes
                                            : nullptr;
    if (channel < 2) return base + index * 2 + channel;
    return channel == 2 && m_format->Is('P') ? base + m_width * m_height * 2 + index : nullptr;
}

Pixel GuardedImage::Get(long x, long y) const
{
    Pixel pixel{};
    for (int c = 0; c < 4; ++c) {
        const std::uint8_t* sample = Sample(x, y, c);
        if (!sample) continue;
        std::uint16_t word = *sample;
        if (m_format->sampleBytes == 2) std::memcpy(&word, sample, 2);
        pixel[static_cast<std::size_t>(c)] = word;
    }
    return pixel;
}

void GuardedImage::Set(long x, long y, const Pixel& pixel)
{
    for (int c = 0; c < 4; ++c) {
        auto* sample = const_cast<std::uint8_t*>(Sample(x, y, c));
        if (!sample) continue;
        const auto word = static_cast<std::uint16_t>(pixel[static_cast<std::size_t>(c)]);
        *sample = static_cast<std::uint8_t>(word);
        if (m_format->sampleBytes == 2) std::memcpy(sample, &word, 2);
    }
}

void GuardedImage::Randomise(std::mt19937& random)
{
    for (long y = 0; y < m_height; ++y)
        for (long x = 0; x < m_width; ++x) {
            Pixel pixel;
            for (int& value : pixel) value = RandomSample(random, m_format->Full());
            Set(x, y, pixel);
        }
}

std::vector<std::uint8_t> GuardedImage::Bytes() const
{
    const auto first = m_storage.begin() + static_cast<std::ptrdiff_t>(kGuard);
    return {first, first + static_cast<std::ptrdiff_t>(ArraySize())};
}

bool GuardedImage::AreGuardsIntact() const
{
    const auto isGuard = [](std::uint8_t byte) { return byte == kGuardByte; };
    const auto guard = static_cast<std::ptrdiff_t>(kGuard);
    return std::all_of(m_storage.begin(), m_storage.begin() + guard, isGuard) &&
           std::all_of(m_storage.end() - guard, m_storage.end(), isGuard);
}

HRESULT GuardedImage::QueryInterface(const IID& riid, void** object)
{
    *object = nullptr;
    if (riid == IID_IPXImage || riid == IID_IUnknown) *object = static_cast<IPXImage*>(this);
    if (riid == IID_IPXImageOps) *object = static_cast<IPXImageOps*>(this);
    if (!*object) return E_NOINTERFACE;
    AddRef();
    return S_OK;
}

unsigned long GuardedImage::Release()
{
    const unsigned long left = --references;
    if (left == 0) delete this;
    return left;
}

HRESULT GuardedImage::GetFormat(GUID* format)
{
    *format = m_format->id;
    return S_OK;
}

HRESULT GuardedImage::SetFormat(const GUID& format)
{
    m_format = &FormatOf(format);
    m_storage.clear();
    return S_OK;
}

HRESULT GuardedImage::GetDimensions(long* width, long* height)
{
    *width = m_width;
    *height = m_height;
    return S_OK;
}

HRESULT GuardedImage::GetExtent(double* width, double* height)
{
    *width = m_extent[0];
    *height = m_extent[1];
    return S_OK;
}

HRESULT GuardedImage::SetExtent(double width, double height)
{
    m_extent = {width, height};
    return S_OK;
}

HRESULT GuardedImage::GetOrigin(double* x, double* y)
{
    *x = m_origin[0];
    *y = m_origin[1];
    return S_OK;
}

HRESULT GuardedImage::SetOrigin(double x, double y)
{
    m_origin = {x, y};
    return S_OK;
}

HRESULT GuardedImage::GetChannelCount(long* count)
{
    *count = m_format->channels;
    return S_OK;
}

HRESULT GuardedImage::GetSampleBytes(long* bytes)
{
    *bytes = m_format->sampleBytes;
    return S_OK;
}

HRESULT GuardedImage::GetChannelBytes(long* bytes)
{
    return GetSampleBytes(bytes);
}

HRESULT GuardedImage::GetPixelBytes(long* bytes)
{
    *bytes = m_format->pixelBytes;
    return S_OK;
}

HRESULT GuardedImage::GetPixelArray(void** pixels)
{
    *pixels = m_storage.empty() ? nullptr : m_storage.data() + kGuard;
    return S_OK;
}

HRESULT GuardedImage::GetPixelArraySize(unsigned long* bytes)
{
    *bytes = ArraySize();
    return S_OK;
}

HRESULT GuardedImage::SetDimensions(long width, long height)
{
    if (failSetDimensions) return E_OUTOFMEMORY;
    if (width < 0 || height < 0) return E_INVALIDARG;
    m_width = width;
    m_height = height;
    m_storage.assign(ArraySize() + 2 * kGuard, kGuardByte);
    std::fill_n(m_storage.begin() + static_cast<std::ptrdiff_t>(kGuard), ArraySize(), std::uint8_t{0});
    return S_OK;
}

HRESULT GuardedImage::ReadRegion(void* destination, long x, long y, long width, long height)
{
    ++readRegionCalls;
    if (!Contains(x, y) || !Contains(x + width - 1, y + height - 1)) return E_INVALIDARG;
    auto* to = static_cast<std::uint8_t*>(destination);
    const std::ptrdiff_t rowBytes = width * m_format->pixelBytes;
    for (long row = 0; row < height; ++row)
        std::memcpy(to + row * rowBytes, Sample(x, y + row, 0), static_cast<std::size_t>(rowBytes));
    return S_OK;
}

HRESULT GuardedImage::FillRegion(const void* pixel, long x, long y, long width, long height)
{
    if (!Contains(x, y) || !Contains(x + width - 1, y + height - 1)) return E_INVALIDARG;
    for (long row = y; row < y + height; ++row)
        for (long column = x; column < x + width; ++column)
            std::memcpy(const_cast<std::uint8_t*>(Sample(column, row, 0)), pixel,
                        static_cast<std::size_t>(m_format->pixelBytes));
    return S_OK;
}

HRESULT GuardedImage::CopyFrom(IPXImage* source)
{
    const auto* other = static_cast<GuardedImage*>(source);
    m_format = other->m_format;
    m_width = other->m_width;
    m_height = other->m_height;
    m_storage = other->m_storage;
    return S_OK;
}

HRESULT GuardedImage::GetImageState(long id, long* value)
{
    if (failGetImageState || id < 0 || id > 3) return E_INVALIDARG;
    *value = m_states[static_cast<std::size_t>(id)];
    return S_OK;
}

HRESULT GuardedImage::SetImageState(long id, long value)
{
    if (failSetImageState || id < 0 || id > 3) return E_INVALIDARG;
    m_states[static_cast<std::size_t>(id)] = value;
    return S_OK;
}

HRESULT GuardedImage::GetTag(unsigned long* value)
{
    *value = m_tag;
    return S_OK;
}

HRESULT GuardedImage::SetTag(unsigned long value)
{
    m_tag = value;
    return S_OK;
}

HRESULT GuardedImage::CloneImage(const IID& riid, void** out)
{
    const HRESULT result = CloneImageNoData(riid, out);
    return FAILED(result) ? result : static_cast<GuardedImage*>(static_cast<IPXImage*>(*out))->CopyFrom(this);
}

HRESULT GuardedImage::CloneImageNoData(const IID& riid, void** out)
{
    *out = nullptr;
    if (riid != IID_IPXImage) return E_NOINTERFACE;
    auto* clone = new GuardedImage(m_format->id);
    clone->m_extent = m_extent;
    clone->m_origin = m_origin;
    clone->m_tag = m_tag;
    *out = static_cast<IPXImage*>(clone);
    return S_OK;
}

HRESULT GuardedImage::SwapImage(IPXImage* other)
{
    auto* image = static_cast<GuardedImage*>(other);
    std::swap(m_format, image->m_format);
    std::swap(m_width, image->m_width);
    std::swap(m_height, image->m_height);
    std::swap(m_extent, image->m_extent);
    std::swap(m_origin, image->m_origin);
    std::swap(m_states, image->m_states);
    std::swap(m_tag, image->m_tag);
    return SwapImageData(other);
}

HRESULT GuardedImage::SwapImageData(IPXImage* other)
{
    std::swap(m_storage, static_cast<GuardedImage*>(other)->m_storage);
    return S_OK;
}

HRESULT GuardedImageFactory::QueryInterface(const IID& riid, void** object)
{
    *object = riid == IID_IClassFactory || riid == IID_IUnknown ? static_cast<IClassFactory*>(this) : nullptr;
    if (!*object) return E_NOINTERFACE;
    AddRef();
    return S_OK;
}

HRESULT GuardedImageFactory::CreateInstance(IUnknown* outer, const IID& riid, void** object)
{
    *object = nullptr;
    if (outer) return CLASS_E_NOAGGREGATION;
    auto* image = new GuardedImage(PXFormat_RGBA32);
    const HRESULT result = image->QueryInterface(riid, object);
    image->Release();
    return result;
}

int RandomSample(std::mt19937& random, int full)
{
    const std::array<int, 8> ends{0, 0, full, full, 1, full - 1, full / 2, full / 2 + 1};
    const auto pick = random() % 16;
    return pick < ends.size() ? ends[pick] : static_cast<int>(random() % static_cast<unsigned>(full + 1));
}

long RandomIn(std::mt19937& random, long low, long high)
{
    return low + static_cast<long>(random() % static_cast<unsigned long>(high - low + 1));
}

} // namespace vfil::test
