#include "support/guardedimage.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

namespace vfil::test {
namespace {

constexpr std::ptrdiff_t kGuard = 64;
constexpr std::uint8_t kGuardByte = 0xA5;

} // namespace

GuardedImage::GuardedImage(const GUID& format, long width, long height) : GuardedImage(format)
{
    SetDimensions(width, height);
}

long GuardedImage::MemoryRow(long y) const
{
    const long height = Height();
    const long row = m_format->Is('T') ? height - 1 - y : y;
    if (!m_format->Is('S')) return row;
    return (row >> 1) + (m_format->Is('E') ? ((height + 1) >> 1) * (y & 1) : (height >> 1) * (1 - (y & 1)));
}

std::uint8_t* GuardedImage::Sample(long x, long y, std::size_t channel)
{
    std::uint8_t* base = m_storage.data() + kGuard;
    const auto c = static_cast<int>(channel);
    const std::ptrdiff_t index = MemoryRow(y) * Width() + x;
    if (!m_format->IsSubsampled())
        return c < m_format->channels ? base + index * m_format->pixelBytes + c * m_format->sampleBytes
                                      : nullptr;
    if (c < 2) return base + index * 2 + c;
    return c == 2 && m_format->Is('P') ? base + Width() * Height() * 2 + index : nullptr;
}

// Machines are little-endian here: the first bytes of an int are those of its sample.
Pixel GuardedImage::Get(long x, long y) const
{
    Pixel pixel{};
    for (std::size_t c = 0; c < 4; ++c) {
        const std::uint8_t* sample = const_cast<GuardedImage*>(this)->Sample(x, y, c);
        if (sample) std::memcpy(&pixel[c], sample, static_cast<std::size_t>(m_format->sampleBytes));
    }
    return pixel;
}

void GuardedImage::Set(long x, long y, const Pixel& pixel)
{
    for (std::size_t c = 0; c < 4; ++c) {
        std::uint8_t* sample = Sample(x, y, c);
        if (sample) std::memcpy(sample, &pixel[c], static_cast<std::size_t>(m_format->sampleBytes));
    }
}

void GuardedImage::Randomise(std::mt19937& random)
{
    for (long y = 0; y < Height(); ++y)
        for (long x = 0; x < Width(); ++x) {
            Pixel pixel;
            for (int& value : pixel)
                value = RandomSample(random, m_format->Full());
            Set(x, y, pixel);
        }
}

std::vector<std::uint8_t> GuardedImage::Bytes() const
{
    return {m_storage.begin() + kGuard, m_storage.end() - kGuard};
}

bool GuardedImage::AreGuardsIntact() const
{
    const auto isGuard = [](std::uint8_t byte) { return byte == kGuardByte; };
    return std::all_of(m_storage.begin(), m_storage.begin() + kGuard, isGuard) &&
           std::all_of(m_storage.end() - kGuard, m_storage.end(), isGuard);
}

HRESULT GuardedImage::SetFormat(const GUID* format)
{
    m_storage.clear();
    return Give(&FormatOf(*format), &m_format);
}

HRESULT GuardedImage::GetDimensions(long* width, long* height)
{
    ++asked.size;
    Give(m_width, width);
    return Give(m_height, height);
}

HRESULT GuardedImage::GetPixelArray(void** pixels)
{
    ++asked.pixels;
    return Give<void*>(m_storage.empty() ? nullptr : m_storage.data() + kGuard, pixels);
}

HRESULT GuardedImage::SetDimensions(long width, long height)
{
    m_width = width;
    m_height = height;
    m_storage.assign(static_cast<std::size_t>(width * height * m_format->pixelBytes + 2 * kGuard),
                     kGuardByte);
    std::fill(m_storage.begin() + kGuard, m_storage.end() - kGuard, std::uint8_t{0});
    return S_OK;
}

HRESULT GuardedImage::ReadRegion(void* destination, long x, long y, long width, long height)
{
    ++readRegionCalls;
    if (failReadRegion) return E_FAIL;
    if (!Contains(x, y) || !Contains(x + width - 1, y + height - 1)) return E_INVALIDARG;
    auto* to = static_cast<std::uint8_t*>(destination);
    const auto rowBytes = static_cast<std::size_t>(width * m_format->pixelBytes);
    for (long row = y; row < y + height; ++row, to += rowBytes)
        std::memcpy(to, Sample(x, row, 0), rowBytes);
    return S_OK;
}

HRESULT GuardedImage::GetImageState(long id, long* value)
{
    if (failGetImageState || id < 0 || id > 3) return E_INVALIDARG;
    return Give(m_states[static_cast<std::size_t>(id)], value);
}

HRESULT GuardedImage::SetImageState(long id, long value)
{
    if (failSetImageState || id < 0 || id > 3) return E_INVALIDARG;
    return Give(value, &m_states[static_cast<std::size_t>(id)]);
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
