/// \file
/// How rows of pixels go between picture files and memory: order, channels, depth and premultiplication.
/// The conversions of whole pictures, the premultiplication and the questions are for everyone above the
/// host; the rest is private to it.
#pragma once

#include <vfil/host/picture.h>

#include <cstdint>

namespace vfil::host {

/// Row \p row of a picture, counted from the top as files do. All files are read and written through this.
std::uint8_t* FileRow(Picture& picture, long row);
const std::uint8_t* FileRow(const Picture& picture, long row);

/// Whether a format is one of RGBA32, RGBA64, Mono8 and Mono16, which go to picture files.
bool IsFileFormat(const GUID& format);
/// The one of those four with \p sampleBytes (1 or 2), gray or RGBA.
const GUID& FileFormat(bool gray, int sampleBytes);

/// Turns gray (1 channel), gray and alpha (2), RGB (3) or RGBA (4) into RGBA; missing alpha is full. Both
/// rows have samples of \p sampleBytes and are aligned to them.
void ExpandRow(const void* from, int channels, int sampleBytes, void* to, long pixels);

/// Multiplies the colour of a row of RGBA by its alpha: c * a / full to the nearest, as the layer operators
/// do.
void PremultiplyRow(const void* from, int sampleBytes, void* to, long pixels);

/// Divides the colour of a row of RGBA by its alpha: c * full / a to the nearest, at most full; 0 where alpha
/// is 0.
void UnpremultiplyRow(const void* from, int sampleBytes, void* to, long pixels);

/// Whether every alpha of a picture is full. True for mono pictures.
bool IsOpaque(const Picture& picture);

/// Whether ConvertPicture can make \p to of \p from: among the four file formats, all but RGBA to gray.
bool CanConvert(const GUID& from, const GUID& to);
/// A picture of another file format: v * 257 from 8 to 16 bits, the high byte from 16 to 8, opaque RGBA from
/// gray. State flags are copied.
PicturePtr ConvertPicture(const PicturePtr& picture, const GUID& format);

} // namespace vfil::host
