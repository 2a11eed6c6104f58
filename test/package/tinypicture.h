/// \file
/// The least pictures that a host can offer, RGBA32 in memory of its own, and their factory. It uses none of
/// the object model's usual names, which a host may have for itself.
#pragma once

#include <vfil/image.h>
#include <vfil/pxformat.h>

#include <vector>

class TinyPicture final : public IPXImage {
public:
    TinyPicture(long width, long height)
        : bytes(static_cast<std::size_t>(width * height * 4)), m_width(width), m_height(height)
    {}

    std::vector<unsigned char> bytes;

    vfILResult QueryInterface(const vfILGuid& riid, void** object) override
    {
        const bool known = riid == vfILUnknownId || riid == IID_IPXImage;
        *object = known ? this : nullptr;
        return known ? 0 : kFailed;
    }
    unsigned long AddRef() override { return ++m_references; }
    unsigned long Release() override
    {
        const unsigned long left = --m_references;
        if (left == 0) delete this;
        return left;
    }

    vfILResult GetFormat(vfILGuid* format) override { return Give(format, PXFormat_RGBA32); }
    vfILResult SetFormat(const vfILGuid* format) override { return *format == PXFormat_RGBA32 ? 0 : kFailed; }
    vfILResult GetDimensions(long* width, long* height) override
    {
        *width = m_width;
        return Give(height, m_height);
    }
    vfILResult GetExtent(double*, double*) override { return kFailed; }
    vfILResult SetExtent(double, double) override { return kFailed; }
    vfILResult GetOrigin(double*, double*) override { return kFailed; }
    vfILResult SetOrigin(double, double) override { return kFailed; }
    vfILResult GetChannelCount(long* count) override { return Give(count, 4L); }
    vfILResult GetSampleBytes(long* size) override { return Give(size, 1L); }
    vfILResult GetChannelBytes(long* size) override { return Give(size, 1L); }
    vfILResult GetPixelBytes(long* size) override { return Give(size, 4L); }
    vfILResult GetPixelArray(void** pixels) override
    {
        *pixels = bytes.data();
        return 0;
    }
    vfILResult GetPixelArraySize(unsigned long* size) override { return Give(size, bytes.size()); }
    vfILResult SetDimensions(long width, long height) override
    {
        bytes.assign(static_cast<std::size_t>(width * height * 4), 0);
        m_width = width;
        return Give(&m_height, height);
    }
    vfILResult ReadRegion(void*, long, long, long, long) override { return kFailed; }
    vfILResult FillRegion(const void*, long, long, long, long) override { return kFailed; }
    vfILResult CopyFrom(IPXImage*) override { return kFailed; }
    vfILResult GetImageState(long, long* value) override { return Give(value, 0L); }
    vfILResult SetImageState(long, long) override { return 0; }
    vfILResult GetTag(unsigned long* value) override { return Give(value, 0UL); }
    vfILResult SetTag(unsigned long) override { return 0; }

private:
    static constexpr vfILResult kFailed = -1;

    template <class T>
    static vfILResult Give(T* to, T value)
    {
        *to = value;
        return 0;
    }

    long m_width;
    long m_height;
    unsigned long m_references = 1;
};

/// Gives the library such pictures while it lives.
class TinyFactory final : public vfILClassFactory {
public:
    TinyFactory() { vfILRegisterClass(CLSID_PXImage, this, &m_cookie); }
    ~TinyFactory() { vfILRevokeClass(m_cookie); }

    vfILResult QueryInterface(const vfILGuid& riid, void** object) override
    {
        *object = riid == vfILClassFactoryId ? this : nullptr;
        return *object != nullptr ? 0 : -1;
    }
    unsigned long AddRef() override { return 1; }
    unsigned long Release() override { return 1; }
    vfILResult CreateInstance(vfILUnknown*, const vfILGuid&, void** object) override
    {
        *object = static_cast<IPXImage*>(new TinyPicture(0, 0));
        return 0;
    }

private:
    unsigned long m_cookie = 0;
};
