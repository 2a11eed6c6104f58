/// \file
/// A picture in memory for tests: it lays its pixels out by the contract, guards the bytes around them, fails
/// on demand and counts what is read.
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

/// Lives where it is declared: references are not counted. What no operator asks for isn't implemented.
class GuardedImage final : public IPXImage {
public:
    /// Without pixels.
    explicit GuardedImage(const GUID& format) : m_format(&FormatOf(format)) {}
    GuardedImage(const GUID& format, long width, long height);
    GuardedImage(const GuardedImage&) = delete;
    GuardedImage& operator=(const GuardedImage&) = delete;

    const FormatCase& Format() const { return *m_format; }
    long Width() const { return m_width; }
    long Height() const { return m_height; }
    bool Contains(long x, long y) const { return x >= 0 && y >= 0 && x < m_width && y < m_height; }
    Pixel Get(long x, long y) const;
    void Set(long x, long y, const Pixel& pixel);
    /// Fills the pixels with noise that is rich in 0 and in full values.
    void Randomise(std::mt19937& random);
    /// The pixel array alone.
    std::vector<std::uint8_t> Bytes() const;
    bool AreGuardsIntact() const;

    bool failGetImageState = false;
    bool failSetImageState = false;
    bool failReadRegion = false;
    int readRegionCalls = 0;
    /// How often its format, size, pixels, bytes a pixel and a channel were asked for.
    struct Asked {
        int format = 0, size = 0, pixels = 0, pixelBytes = 0, channelBytes = 0;
        bool operator==(const Asked&) const = default;
    } asked;

    HRESULT QueryInterface(const IID&, void**) override { return E_NOINTERFACE; }
    unsigned long AddRef() override { return 1; }
    unsigned long Release() override { return 1; }
    HRESULT GetFormat(GUID* format) override { return ++asked.format, Give(m_format->id, format); }
    HRESULT SetFormat(const GUID* format) override;
    HRESULT GetDimensions(long* width, long* height) override;
    HRESULT GetExtent(double*, double*) override { return E_INVALIDARG; }
    HRESULT SetExtent(double, double) override { return E_INVALIDARG; }
    HRESULT GetOrigin(double*, double*) override { return E_INVALIDARG; }
    HRESULT SetOrigin(double, double) override { return E_INVALIDARG; }
    HRESULT GetChannelCount(long* count) override { return Give(m_format->channels, count); }
    HRESULT GetSampleBytes(long* bytes) override { return Give(m_format->sampleBytes, bytes); }
    HRESULT GetChannelBytes(long* bytes) override
    {
        return ++asked.channelBytes, Give(m_format->sampleBytes, bytes);
    }
    HRESULT GetPixelBytes(long* bytes) override
    {
        return ++asked.pixelBytes, Give(m_format->pixelBytes, bytes);
    }
    HRESULT GetPixelArray(void** pixels) override;
    HRESULT GetPixelArraySize(unsigned long*) override { return E_INVALIDARG; }
    HRESULT SetDimensions(long width, long height) override;
    HRESULT ReadRegion(void* destination, long x, long y, long width, long height) override;
    HRESULT FillRegion(const void*, long, long, long, long) override { return E_INVALIDARG; }
    HRESULT CopyFrom(IPXImage*) override { return E_INVALIDARG; }
    HRESULT GetImageState(long id, long* value) override;
    HRESULT SetImageState(long id, long value) override;
    HRESULT GetTag(unsigned long*) override { return E_INVALIDARG; }
    HRESULT SetTag(unsigned long) override { return E_INVALIDARG; }

private:
    template <class Value, class Place>
    static HRESULT Give(const Value& value, Place* to)
    {
        *to = value;
        return S_OK;
    }
    long MemoryRow(long y) const;
    /// Address of sample \p channel of the pixel; null for a channel that the format has not.
    std::uint8_t* Sample(long x, long y, std::size_t channel);

    const FormatCase* m_format;
    long m_width = 0;
    long m_height = 0;
    std::vector<std::uint8_t> m_storage; ///< guard, pixels, guard; empty without pixels
    std::array<long, 4> m_states{};
};

/// A value in 0 .. full, half of the time an end or a neighbour of one.
int RandomSample(std::mt19937& random, int full);
/// A number in low .. high.
long RandomIn(std::mt19937& random, long low, long high);

} // namespace vfil::test
