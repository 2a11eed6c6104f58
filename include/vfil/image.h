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
using vfILResult = std::int32_t;

/// The identifier of vfILUnknown.
VFIL_LOCAL inline constexpr vfILGuid vfILUnknownId{
    0x00000000, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
/// The identifier of vfILClassFactory.
VFIL_LOCAL inline constexpr vfILGuid vfILClassFactoryId{
    0x00000001, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
VFIL_LOCAL inline constexpr vfILGuid IID_IPXImage{
    0x26C0E591, 0x63A1, 0x11CE, {0xBA, 0xBC, 0x00, 0xAA, 0x00, 0x62, 0x92, 0x84}};
VFIL_LOCAL inline constexpr vfILGuid IID_IPXImageOps{
    0x7880CFF1, 0x3FE0, 0x11D1, {0x8F, 0xA4, 0x00, 0xA0, 0x24, 0x19, 0x03, 0x44}};
/// The class of a new, empty picture.
VFIL_LOCAL inline constexpr vfILGuid CLSID_PXImage{
    0xEA8409B2, 0x63B3, 0x11CE, {0xBA, 0xBC, 0x00, 0xAA, 0x00, 0x62, 0x92, 0x84}};

/// A picture's numbered state flags (IPXImage::GetImageState).
enum PXImageState : long {
    PXImageState_KEYED = 1,         ///< cleared by single-picture keys together with state 2
    PXImageState_PREMULTIPLIED = 2, ///< colour is already multiplied by alpha
};

/// The root of all interfaces: a counted reference and a way to its other interfaces. There is no virtual
/// destructor: an object goes when Release drops its last reference.
struct vfILUnknown {
    // The order of the virtual functions is part of the ABI, here and in every interface below.
    virtual vfILResult QueryInterface(const vfILGuid& riid, void** object) = 0;
    virtual unsigned long AddRef() = 0;
    virtual unsigned long Release() = 0;

protected:
    ~vfILUnknown() = default;
};

/// Makes objects of one class.
struct vfILClassFactory : vfILUnknown {
    /// \param outer  Must be null.
    /// \param object Receives the new object with one reference, or null on failure.
    virtual vfILResult CreateInstance(vfILUnknown* outer, const vfILGuid& riid, void** object) = 0;

protected:
    ~vfILClassFactory() = default;
};

/// The class factory of pictures.
using IPXImageFactory = vfILClassFactory;

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
struct IPXImage : vfILUnknown {
    virtual vfILResult GetFormat(vfILGuid* format) = 0;
    /// Pixels are undefined until the next SetDimensions.
    virtual vfILResult SetFormat(const vfILGuid* format) = 0;
    /// Size in pixels.
    virtual vfILResult GetDimensions(long* width, long* height) = 0;
    /// Size in world units.
    virtual vfILResult GetExtent(double* width, double* height) = 0;
    virtual vfILResult SetExtent(double width, double height) = 0;
    /// Position in world units.
    virtual vfILResult GetOrigin(double* x, double* y) = 0;
    virtual vfILResult SetOrigin(double x, double y) = 0;
    virtual vfILResult GetChannelCount(long* count) = 0;
    /// Bytes of one channel value: 1 or 2.
    virtual vfILResult GetSampleBytes(long* bytes) = 0;
    /// Distance in bytes between two channels of a pixel. A mask and the output must agree on it.
    virtual vfILResult GetChannelBytes(long* bytes) = 0;
    /// Bytes a pixel in the pixel array: 3 in the 4:2:2 formats with an alpha plane (2 of 4:2:2 and 1 of
    /// alpha).
    virtual vfILResult GetPixelBytes(long* bytes) = 0;
    /// Base of the pixels, null when there are none yet.
    virtual vfILResult GetPixelArray(void** pixels) = 0;
    virtual vfILResult GetPixelArraySize(unsigned long* bytes) = 0;
    /// Allocates the pixel array for the current format. Fails for a negative size and when memory is short.
    virtual vfILResult SetDimensions(long width, long height) = 0;
    /// Copies a rectangle, in image coordinates, to a buffer whose rows have no padding, lowest y first. A
    /// run whose input fails here fails, too.
    virtual vfILResult ReadRegion(void* destination, long x, long y, long width, long height) = 0;
    /// Writes one pixel value to a rectangle, in image coordinates.
    virtual vfILResult FillRegion(const void* pixel, long x, long y, long width, long height) = 0;
    /// Becomes a deep copy of the source: format, size and pixels.
    virtual vfILResult CopyFrom(IPXImage* source) = 0;
    /// Reads a numbered state flag (PXImageState).
    virtual vfILResult GetImageState(long id, long* value) = 0;
    virtual vfILResult SetImageState(long id, long value) = 0;
    /// An attribute without a meaning to the library, passed on to derived pictures.
    virtual vfILResult GetTag(unsigned long* value) = 0;
    virtual vfILResult SetTag(unsigned long value) = 0;

protected:
    ~IPXImage() = default;
};

/// Whole-picture services, reached from a picture with QueryInterface.
struct IPXImageOps : vfILUnknown {
    /// A new picture of the same format, size and content.
    virtual vfILResult CloneImage(const vfILGuid& riid, void** out) = 0;
    /// A new picture of the same format without pixels.
    virtual vfILResult CloneImageNoData(const vfILGuid& riid, void** out) = 0;
    /// Exchanges all of two pictures' state.
    virtual vfILResult SwapImage(IPXImage* other) = 0;
    /// Exchanges the two pixel arrays only.
    virtual vfILResult SwapImageData(IPXImage* other) = 0;

protected:
    ~IPXImageOps() = default;
};

/// Puts a host's factory where the library finds it when it needs a new picture. Takes a reference. A later
/// registration of the same class comes before an earlier one until it is revoked. Any thread may call it.
///
/// \param cookie Receives a non-zero number for vfILRevokeClass.
VFIL_API vfILResult vfILRegisterClass(const vfILGuid& classId, vfILClassFactory* factory,
                                      unsigned long* cookie);

/// Takes a registration back and releases its factory. Fails for an unknown cookie.
VFIL_API vfILResult vfILRevokeClass(unsigned long cookie);

// The object model's own names, for hosts that have none (see guid.h).
#if !defined(VFIL_NO_COM_NAMES)

/// A vfILResult under its usual name.
using HRESULT = vfILResult;
using IUnknown = vfILUnknown;
using IClassFactory = vfILClassFactory;

VFIL_LOCAL inline constexpr HRESULT S_OK = 0;
VFIL_LOCAL inline constexpr HRESULT E_NOINTERFACE = static_cast<HRESULT>(0x80004002);
VFIL_LOCAL inline constexpr HRESULT E_POINTER = static_cast<HRESULT>(0x80004003);
VFIL_LOCAL inline constexpr HRESULT E_FAIL = static_cast<HRESULT>(0x80004005);
VFIL_LOCAL inline constexpr HRESULT E_OUTOFMEMORY = static_cast<HRESULT>(0x8007000E);
VFIL_LOCAL inline constexpr HRESULT E_INVALIDARG = static_cast<HRESULT>(0x80070057);
VFIL_LOCAL inline constexpr HRESULT CLASS_E_NOAGGREGATION = static_cast<HRESULT>(0x80040110);
VFIL_LOCAL inline constexpr HRESULT REGDB_E_CLASSNOTREG = static_cast<HRESULT>(0x80040154);

constexpr bool SUCCEEDED(HRESULT result)
{
    return result >= 0;
}

constexpr bool FAILED(HRESULT result)
{
    return result < 0;
}

VFIL_LOCAL inline constexpr IID IID_IUnknown = vfILUnknownId;
VFIL_LOCAL inline constexpr IID IID_IClassFactory = vfILClassFactoryId;

/// The in-process class context, the only one the library asks for.
VFIL_LOCAL inline constexpr unsigned long CLSCTX_INPROC_SERVER = 1;

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

/// vfILRegisterClass under its usual name.
VFIL_API HRESULT CoRegisterClassObject(const CLSID& classId, IClassFactory* factory, unsigned long* cookie);

/// vfILRevokeClass under its usual name.
VFIL_API HRESULT CoRevokeClassObject(unsigned long cookie);

#endif
