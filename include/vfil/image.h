/// \file
/// The contract between the library and its host: how pictures are reached, and how new ones are made.
///
/// The library owns no picture. A host implements IPXImage, and, when it uses processors that need work
/// pictures, registers a class factory for them. Interfaces follow the COM object model, with or without a
/// system that has it: virtual functions in a fixed order, reference counts, results that are negative on
/// failure.
#pragma once

#include <vfil/export.h>
#include <vfil/guid.h>

#include <cstdint>

/// Result of an interface operation: negative on failure.
using HRESULT = std::int32_t;

inline constexpr HRESULT S_OK = 0;
inline constexpr HRESULT E_NOINTERFACE = static_cast<HRESULT>(0x80004002);
inline constexpr HRESULT E_POINTER = static_cast<HRESULT>(0x80004003);
inline constexpr HRESULT E_FAIL = static_cast<HRESULT>(0x80004005);
inline constexpr HRESULT E_OUTOFMEMORY = static_cast<HRESULT>(0x8007000E);
inline constexpr HRESULT E_INVALIDARG = static_cast<HRESULT>(0x80070057);
inline constexpr HRESULT CLASS_E_NOAGGREGATION = static_cast<HRESULT>(0x80040110);
inline constexpr HRESULT REGDB_E_CLASSNOTREG = static_cast<HRESULT>(0x80040154);

constexpr bool SUCCEEDED(HRESULT result)
{
    return result >= 0;
}

constexpr bool FAILED(HRESULT result)
{
    return result < 0;
}

inline constexpr IID IID_IUnknown{
    0x00000000, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
inline constexpr IID IID_IClassFactory{
    0x00000001, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
inline constexpr IID IID_IPXImage{
    0x26C0E591, 0x63A1, 0x11CE, {0xBA, 0xBC, 0x00, 0xAA, 0x00, 0x62, 0x92, 0x84}};
inline constexpr IID IID_IPXImageOps{
    0x7880CFF1, 0x3FE0, 0x11D1, {0x8F, 0xA4, 0x00, 0xA0, 0x24, 0x19, 0x03, 0x44}};
/// The class of a new, empty picture.
inline constexpr CLSID CLSID_PXImage{
    0xEA8409B2, 0x63B3, 0x11CE, {0xBA, 0xBC, 0x00, 0xAA, 0x00, 0x62, 0x92, 0x84}};

/// The in-process class context, the only one the library asks for.
inline constexpr unsigned long CLSCTX_INPROC_SERVER = 1;

/// A picture's numbered state flags (IPXImage::GetImageState).
enum PXImageState : long {
    PXImageState_KEYED = 1,         ///< cleared by single-picture keys together with state 2
    PXImageState_PREMULTIPLIED = 2, ///< colour is already multiplied by alpha
};

/// The root of all interfaces: a counted reference and a way to its other interfaces. There is no virtual
/// destructor: an object goes when Release drops its last reference.
struct IUnknown {
    // The order of the virtual functions is part of the ABI, here and in every interface below.
    virtual HRESULT QueryInterface(const IID& riid, void** object) = 0;
    virtual unsigned long AddRef() = 0;
    virtual unsigned long Release() = 0;

protected:
    ~IUnknown() = default;
};

/// Makes objects of one class.
struct IClassFactory : IUnknown {
    /// \param outer  Must be null.
    /// \param object Receives the new object with one reference, or null on failure.
    virtual HRESULT CreateInstance(IUnknown* outer, const IID& riid, void** object) = 0;

protected:
    ~IClassFactory() = default;
};

/// The class factory of pictures.
using IPXImageFactory = IClassFactory;

/// A picture of the host.
///
/// Rows have no padding. The memory row of image row y, 0 <= y < h, is found so: r = h - 1 - y when the
/// format is top-down, else y; in a split-field format with even rows first r becomes (r >> 1) + ((h + 1) >>
/// 1) * (y & 1), with odd rows first (r >> 1) + (h >> 1) * (1 - (y & 1)). Pixel (x, y) is at base + (r * w +
/// x) * pixel bytes. The 4:2:2 formats with an alpha plane are the exception: 2 bytes a pixel of 4:2:2, then
/// the plane, one byte a pixel.
///
/// Processors keep the raw pointers given to their setters and take no reference: a picture must outlive the
/// run. They call a picture only from the thread that runs them.
struct IPXImage : IUnknown {
    virtual HRESULT GetFormat(GUID* format) = 0;
    /// Pixels are undefined until the next SetDimensions.
    virtual HRESULT SetFormat(const GUID* format) = 0;
    /// Size in pixels.
    virtual HRESULT GetDimensions(long* width, long* height) = 0;
    /// Size in world units.
    virtual HRESULT GetExtent(double* width, double* height) = 0;
    virtual HRESULT SetExtent(double width, double height) = 0;
    /// Position in world units.
    virtual HRESULT GetOrigin(double* x, double* y) = 0;
    virtual HRESULT SetOrigin(double x, double y) = 0;
    virtual HRESULT GetChannelCount(long* count) = 0;
    /// Bytes of one channel value: 1 or 2.
    virtual HRESULT GetSampleBytes(long* bytes) = 0;
    /// Distance in bytes between two channels of a pixel. A mask and the output must agree on it.
    virtual HRESULT GetChannelBytes(long* bytes) = 0;
    /// Bytes a pixel in the pixel array: 3 in the 4:2:2 formats with an alpha plane (2 of 4:2:2 and 1 of
    /// alpha).
    virtual HRESULT GetPixelBytes(long* bytes) = 0;
    /// Base of the pixels, null when there are none yet.
    virtual HRESULT GetPixelArray(void** pixels) = 0;
    virtual HRESULT GetPixelArraySize(unsigned long* bytes) = 0;
    /// Allocates the pixel array for the current format. Fails for a negative size and when memory is short.
    virtual HRESULT SetDimensions(long width, long height) = 0;
    /// Copies a rectangle, in image coordinates, to a buffer whose rows have no padding, lowest y first. A run
    /// whose input fails here fails, too.
    virtual HRESULT ReadRegion(void* destination, long x, long y, long width, long height) = 0;
    /// Writes one pixel value to a rectangle, in image coordinates.
    virtual HRESULT FillRegion(const void* pixel, long x, long y, long width, long height) = 0;
    /// Becomes a deep copy of the source: format, size and pixels.
    virtual HRESULT CopyFrom(IPXImage* source) = 0;
    /// Reads a numbered state flag (PXImageState).
    virtual HRESULT GetImageState(long id, long* value) = 0;
    virtual HRESULT SetImageState(long id, long value) = 0;
    /// An attribute without a meaning to the library, passed on to derived pictures.
    virtual HRESULT GetTag(unsigned long* value) = 0;
    virtual HRESULT SetTag(unsigned long value) = 0;

protected:
    ~IPXImage() = default;
};

/// Whole-picture services, reached from a picture with QueryInterface.
struct IPXImageOps : IUnknown {
    /// A new picture of the same format, size and content.
    virtual HRESULT CloneImage(const IID& riid, void** out) = 0;
    /// A new picture of the same format without pixels.
    virtual HRESULT CloneImageNoData(const IID& riid, void** out) = 0;
    /// Exchanges all of two pictures' state.
    virtual HRESULT SwapImage(IPXImage* other) = 0;
    /// Exchanges the two pixel arrays only.
    virtual HRESULT SwapImageData(IPXImage* other) = 0;

protected:
    ~IPXImageOps() = default;
};

/// Makes an object of a registered class.
///
/// \param outer   Must be null.
/// \param context CLSCTX_INPROC_SERVER.
/// \param object  Receives the object with one reference, or null on failure.
/// \return REGDB_E_CLASSNOTREG when no factory of the class is registered, else what its factory returns.
VFIL_API HRESULT CoCreateInstance(const CLSID& classId, IUnknown* outer, unsigned long context,
                                  const IID& riid, void** object);

/// The registered factory of a class, with a reference of the caller's.
///
/// \param reserved Must be null.
VFIL_API HRESULT CoGetClassObject(const CLSID& classId, unsigned long context, void* reserved,
                                  const IID& riid, void** factory);

/// Puts a host's factory where CoCreateInstance and CoGetClassObject find it. Takes a reference. A later
/// registration of the same class comes before an earlier one until it is revoked. Any thread may call it.
///
/// \param cookie Receives a non-zero number for CoRevokeClassObject.
VFIL_API HRESULT CoRegisterClassObject(const CLSID& classId, IClassFactory* factory, unsigned long* cookie);

/// Takes a registration back and releases its factory. E_INVALIDARG for an unknown cookie.
VFIL_API HRESULT CoRevokeClassObject(unsigned long cookie);
