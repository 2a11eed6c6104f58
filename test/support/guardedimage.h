/// \file
/// A picture in memory for tests: it implements the contract plainly, guards the bytes around its pixels, fails on
/// demand and counts what is asked of it. Its class factory makes pictures for the library.
#pragma once

#include "support/formats.h"

#include <vfil/image.h>

#include <array>
#include <cstdint>
#include <random>
#include <vector>

namespace vfil::test {

/// The channel values of a pixel in memory order. In 4:2:2 formats the two bytes of its column, then its alpha.
using Pixel = std::array<int, 4>;

class GuardedImage final : public IPXImage, public IPXImageOps {
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

    bool failSetDimensions = false;
    bool failGetImageState = false;
    bool failSetImageState = false;
    int readRegionCalls = 0;
    unsigned long references = 1;

    HRESULT QueryInterface(const IID& riid, void** object) override;
    unsigned long AddRef() override { return ++references; }
    unsigned long Release() override;

    HRESULT GetFormat(GUID* format) override;
    HRESULT SetFormat(const GUID& format) override;
    HRESULT GetDimensions(long* width, long* height) override;
    HRESULT GetExtent(double* width, double* height) override;
    HRESULT SetExtent(double width, double height) override;
    HRESULT GetOrigin(double* x, double* y) override;
    HRESULT SetOrigin(double x, double y) override;
    HRESULT GetChannelCount(long* count) override;
    HRESULT GetSampleBytes(long* bytes) override;
    HRESULT GetChannelBytes(long* bytes) override;
    HRESULT GetPixelBytes(long* bytes) override;
    HRESULT GetPixelArray(void** pixels) override;
    HRESULT GetPixelArraySize(unsigned long* bytes) override;
    HRESULT SetDimensions(long width, long height) override;
    HRESULT ReadRegion(void* destination, long x, long y, long width, long height) override;
    HRESULT FillRegion(const void* pixel, long x, long y, long width, long height) override;
    HRESULT CopyFrom(IPXImage* source) override;
    HRESULT GetImageState(long id, long* value) override;
    HRESULT SetImageState(long id, long value) override;
    HRESULT GetTag(unsigned long* value) override;
    HRESULT SetTag(unsigned long value) override;

    HRESULT CloneImage(const IID& riid, void** out) override;
    HRESULT CloneImageNoData(const IID& riid, void** out) override;
    HRESULT SwapImage(IPXImage* other) override;
    HRESULT SwapImageData(IPXImage* other) override;

private:
    std::size_t ArraySize() const;
    long MemoryRow(long y) const;
    /// Address of sample \p channel of the pixel; null for a channel that the format has not.
    const std::uint8_t* Sample(long x, long y, int channel) const;

    const FormatCase* m_format;
    long m_width = 0;
    long m_height = 0;
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
