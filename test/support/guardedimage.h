/// \file
/// A picture in memory for tests: it implements the contract plainly, guards the bytes around its pixels,
/// fails on demand and counts what is asked of it. Its class factory makes pictures for the library.
#pragma once

#include "support/formats.h"

#include <vfil/image.h>

#include <array>
#include <cstdint>
#include <random>
#include <vector>

namespace vfil::test {

/// The channel values of a pixel in memory order. In 4:2:2 formats the two bytes of its column, then its
/// alpha.
using Pixel = std::array<int, 4>;

class GuardedImage final : public IPXImage {
public:
    /// Without pixels.
    explicit GuardedImage(const GUID& format) : m_format(&FormatOf(format)) {}
    GuardedImage(const GUID& format, long width, long height);
    GuardedImage(const GuardedImage&) = delete;
    GuardedImage& operator=(const GuardedImage&) = delete;

    const FormatCase& Format() const { return *m_format; }
    long Width() const { return m_size[0]; }
    long Height() const { return m_size[1]; }
    bool Contains(long x, long y) const { return x >= 0 && y >= 0 && x < Width() && y < Height(); }
    Pixel Get(long x, long y) const;
    void Set(long x, long y, const Pixel& pixel);
    /// Fills the pixels with noise that is rich in 0 and in full values.
    void Randomise(std::mt19937& random);
    /// The pixel array alone.
    std::vector<std::uint8_t> Bytes() const;
    bool AreGuardsIntact() const;

    bool failSetDimensions = false;
    bool failGetImageState = false;
    bool failSetImageState = false;
    int readRegionCalls = 0;
    unsigned long references = 1;

    HRESULT QueryInterface(const IID& riid, void** object) override;
    unsigned long AddRef() override { return ++references; }
    unsigned long Release() override;
    HRESULT GetFormat(GUID* format) override { return Give(m_format->id, format); }
    HRESULT SetFormat(const GUID* format) override;
    HRESULT GetDimensions(long* width, long* height) override { return GivePair(m_size, width, height); }
    HRESULT GetExtent(double* width, double* height) override { return GivePair(m_extent, width, height); }
    HRESULT SetExtent(double width, double height) override { return Give({width, height}, &m_extent); }
    HRESULT GetOrigin(double* x, double* y) override { return GivePair(m_origin, x, y); }
    HRESULT SetOrigin(double x, double y) override { return Give({x, y}, &m_origin); }
    HRESULT GetChannelCount(long* count) override { return Give<long>(m_format->channels, count); }
    HRESULT GetSampleBytes(long* bytes) override { return Give<long>(m_format->sampleBytes, bytes); }
    HRESULT GetChannelBytes(long* bytes) override { return GetSampleBytes(bytes); }
    HRESULT GetPixelBytes(long* bytes) override { return Give<long>(m_format->pixelBytes, bytes); }
    HRESULT GetPixelArray(void** pixels) override;
    HRESULT GetPixelArraySize(unsigned long* bytes) override
    {
        return Give<unsigned long>(ArraySize(), bytes);
    }
    HRESULT SetDimensions(long width, long height) override;
    HRESULT ReadRegion(void* destination, long x, long y, long width, long height) override;
    HRESULT FillRegion(const void* pixel, long x, long y, long width, long height) override;
    HRESULT CopyFrom(IPXImage* source) override;
    HRESULT GetImageState(long id, long* value) override;
    HRESULT SetImageState(long id, long value) override;
    HRESULT GetTag(unsigned long* value) override { return Give(m_tag, value); }
    HRESULT SetTag(unsigned long value) override { return Give(value, &m_tag); }

private:
    template <class T>
    static HRESULT Give(const T& value, T* to)
    {
        *to = value;
        return S_OK;
    }
    template <class T>
    static HRESULT GivePair(const std::array<T, 2>& pair, T* first, T* second)
    {
        Give(pair[0], first);
        return Give(pair[1], second);
    }
    std::size_t ArraySize() const;
    long MemoryRow(long y) const;
    /// Address of sample \p channel of the pixel; null for a channel that the format has not.
    std::uint8_t* Sample(long x, long y, std::size_t channel);

    const FormatCase* m_format;
    std::array<long, 2> m_size{};
    std::vector<std::uint8_t> m_storage; ///< guard, pixels, guard; empty without pixels
    std::array<double, 2> m_extent{};
    std::array<double, 2> m_origin{};
    std::array<long, 4> m_states{};
    unsigned long m_tag = 0;
};

/// Makes guarded pictures without pixels in PXFormat_RGBA32.
class GuardedImageFactory final : public IClassFactory {
public:
    unsigned long references = 1;

    HRESULT QueryInterface(const IID& riid, void** object) override;
    unsigned long AddRef() override { return ++references; }
    unsigned long Release() override { return --references; }
    HRESULT CreateInstance(IUnknown* outer, const IID& riid, void** object) override;
};

/// A value in 0 .. full, half of the time an end or a neighbour of one.
int RandomSample(std::mt19937& random, int full);
/// A number in low .. high.
long RandomIn(std::mt19937& random, long low, long high);

} // namespace vfil::test
