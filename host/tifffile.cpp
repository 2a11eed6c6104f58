/// \file
/// TIFF files: 8 and 16 bits, gray or RGB, with or without alpha, in strips or tiles.

#include "host/filecodec.h"
#include "host/pixelrows.h"

#include <algorithm>
#include <cstdarg>
#include <cstring>
#include <vector>

#include <tiffio.h>
#include <unistd.h>

namespace vfil::host {

namespace {

/// A tile is decoded as a whole; this many bytes are far beyond any that is of use.
constexpr std::uint64_t kMaxTileBytes = std::uint64_t{1} << 28;

int KeepComplaint(TIFF*, void* complaint, const char*, const char* format, std::va_list arguments)
{
    auto& text = static_cast<Complaint*>(complaint)->text;
    std::vsnprintf(text, sizeof text, format, arguments);
    return 1;
}

int Ignore(TIFF*, void*, const char*, const char*, std::va_list)
{
    return 1;
}

/// A TIFF handle whose messages stay with it.
class Tiff {
public:
    Tiff(const OpenFile& file, const char* mode) : m_file(file)
    {
        TIFFOpenOptions* options = TIFFOpenOptionsAlloc();
        if (options == nullptr) throw std::bad_alloc();
        TIFFOpenOptionsSetMaxSingleMemAlloc(options, static_cast<tmsize_t>(kMaxFileBytes - 1));
        TIFFOpenOptionsSetErrorHandlerExtR(options, KeepComplaint, &m_complaint);
        TIFFOpenOptionsSetWarningHandlerExtR(options, Ignore, nullptr);
        // The library closes its descriptor; the stream keeps its own.
        const int descriptor = dup(fileno(file.stream));
        m_tiff = descriptor < 0 ? nullptr : TIFFFdOpenExt(descriptor, "", mode, options);
        TIFFOpenOptionsFree(options);
        if (m_tiff == nullptr && descriptor >= 0) close(descriptor);
    }
    ~Tiff() { Close(); }
    Tiff(const Tiff&) = delete;
    Tiff& operator=(const Tiff&) = delete;

    void Close()
    {
        if (m_tiff != nullptr) TIFFClose(m_tiff);
        m_tiff = nullptr;
    }

    TIFF* Handle() const { return m_tiff; }
    const OpenFile& File() const { return m_file; }
    const Complaint& LastComplaint() const { return m_complaint; }

private:
    const OpenFile& m_file;
    Complaint m_complaint;
    TIFF* m_tiff = nullptr;
};

std::uint16_t ShortTag(TIFF* tiff, std::uint32_t tag, std::uint16_t missing)
{
    std::uint16_t value = missing;
    return TIFFGetFieldDefaulted(tiff, tag, &value) != 0 ? value : missing;
}

/// Says why a file cannot be read, with the value in question.
[[noreturn]] void Refuse(const OpenFile& file, const char* what, int value)
{
    throw FileError(file.path, std::string("a TIFF with ") + what + " " + std::to_string(value) +
                                   " is not read; save it as 8 or 16 bit gray or RGB, upright");
}

AlphaState ReadAlpha(const Tiff& tiff, int samples)
{
    if (samples == 1 || samples == 3) return AlphaState::None;
    std::uint16_t count = 0;
    const std::uint16_t* kinds = nullptr;
    const int found = TIFFGetFieldDefaulted(tiff.Handle(), TIFFTAG_EXTRASAMPLES, &count, &kinds);
    if (found != 0 && count == 1 && kinds[0] == EXTRASAMPLE_ASSOCALPHA) return AlphaState::Premultiplied;
    if (found != 0 && count == 1 && kinds[0] == EXTRASAMPLE_UNASSALPHA) return AlphaState::Straight;
    throw FileError(tiff.File().path, "the TIFF does not say that its last channel is alpha, straight or "
                                      "premultiplied; save it with an alpha channel or without one");
}

PictureInfo ReadHeader(const Tiff& tiff)
{
    const OpenFile& file = tiff.File();
    TIFF* handle = tiff.Handle();
    if (handle == nullptr) ThrowDamaged(file, "TIFF", tiff.LastComplaint());
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    TIFFGetField(handle, TIFFTAG_IMAGEWIDTH, &width);
    TIFFGetField(handle, TIFFTAG_IMAGELENGTH, &height);
    const int bits = ShortTag(handle, TIFFTAG_BITSPERSAMPLE, 1);
    const int samples = ShortTag(handle, TIFFTAG_SAMPLESPERPIXEL, 1);
    const int photometric = ShortTag(handle, TIFFTAG_PHOTOMETRIC, 0xFFFF);
    const int sampleKind = ShortTag(handle, TIFFTAG_SAMPLEFORMAT, SAMPLEFORMAT_UINT);
    const int planes = ShortTag(handle, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    const int orientation = ShortTag(handle, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
    const bool gray = photometric == PHOTOMETRIC_MINISBLACK;

    if (bits != 8 && bits != 16) Refuse(file, "a number of bits of", bits);
    if (sampleKind != SAMPLEFORMAT_UINT) Refuse(file, "sample format", sampleKind);
    if (!gray && photometric != PHOTOMETRIC_RGB) Refuse(file, "colour kind (photometric)", photometric);
    if (samples < (gray ? 1 : 3) || samples > (gray ? 2 : 4))
        Refuse(file, "a number of channels of", samples);
    if (samples > 1 && planes != PLANARCONFIG_CONTIG) Refuse(file, "separate planes, configuration", planes);
    if (orientation != ORIENTATION_TOPLEFT) Refuse(file, "orientation", orientation);

    PictureInfo info{.fileType = "TIFF"};
    info.alpha = ReadAlpha(tiff, samples);
    info.format = FileFormat(samples == 1, bits / 8);
    CheckSize(file.path, width, height, info.format);
    info.width = static_cast<long>(width);
    info.height = static_cast<long>(height);
    info.depth = bits;
    info.channels = samples;
    return info;
}

/// Moves decoded pixels of the file into a picture, column \p x on in a row counted from the top.
void StorePixels(const PictureInfo& info, const void* from, Picture& picture, long x, long row, long pixels)
{
    std::uint8_t* to = FileRow(picture, row) + x * picture.PixelBytes();
    if (info.channels == 1) {
        std::memcpy(to, from, static_cast<std::size_t>(pixels * picture.PixelBytes()));
    } else {
        ExpandRow(from, info.channels, info.depth / 8, to, pixels);
    }
}

/// A row or tile as decoded; words, so that 16-bit samples are aligned.
std::vector<std::uint16_t> DecodeBuffer(std::uint64_t bytes)
{
    return std::vector<std::uint16_t>(static_cast<std::size_t>((bytes + 1) / 2));
}

/// Bytes of a pixel in the file.
std::uint64_t FilePixelBytes(const PictureInfo& info)
{
    return static_cast<std::uint64_t>(info.channels) * (info.depth == 16 ? 2 : 1);
}

bool ReadStrips(const Tiff& tiff, const PictureInfo& info, Picture& picture)
{
    const std::uint64_t rowBytes = static_cast<std::uint64_t>(info.width) * FilePixelBytes(info);
    if (TIFFScanlineSize64(tiff.Handle()) != rowBytes) return false;
    std::vector<std::uint16_t> buffer = DecodeBuffer(rowBytes);
    for (long row = 0; row < info.height; ++row) {
        if (TIFFReadScanline(tiff.Handle(), buffer.data(), static_cast<std::uint32_t>(row), 0) != 1)
            return false;
        StorePixels(info, buffer.data(), picture, 0, row, info.width);
    }
    return true;
}

bool ReadTiles(const Tiff& tiff, const PictureInfo& info, Picture& picture)
{
    std::uint32_t tileWidth = 0;
    std::uint32_t tileHeight = 0;
    TIFFGetField(tiff.Handle(), TIFFTAG_TILEWIDTH, &tileWidth);
    TIFFGetField(tiff.Handle(), TIFFTAG_TILELENGTH, &tileHeight);
    const std::uint64_t pixelBytes = FilePixelBytes(info);
    const std::uint64_t bytes = TIFFTileSize64(tiff.Handle());
    if (bytes == 0 || bytes > kMaxTileBytes || bytes != pixelBytes * tileWidth * tileHeight) return false;
    std::vector<std::uint16_t> buffer = DecodeBuffer(bytes);
    const auto* decoded = reinterpret_cast<const std::uint8_t*>(buffer.data());
    for (long y = 0; y < info.height; y += static_cast<long>(tileHeight)) {
        for (long x = 0; x < info.width; x += static_cast<long>(tileWidth)) {
            const std::uint32_t tile = TIFFComputeTile(tiff.Handle(), static_cast<std::uint32_t>(x),
                                                       static_cast<std::uint32_t>(y), 0, 0);
            const auto wanted = static_cast<tmsize_t>(bytes);
            if (TIFFReadEncodedTile(tiff.Handle(), tile, buffer.data(), wanted) != wanted) return false;
            const long rows = std::min(static_cast<long>(tileHeight), info.height - y);
            const long columns = std::min(static_cast<long>(tileWidth), info.width - x);
            for (long row = 0; row < rows; ++row) {
                const std::uint64_t offset = static_cast<std::uint64_t>(row) * tileWidth * pixelBytes;
                StorePixels(info, decoded + offset, picture, x, y + row, columns);
            }
        }
    }
    return true;
}

bool WriteRows(TIFF* tiff, const Picture& picture)
{
    // The encoder wants a row that it may change.
    std::vector<std::uint16_t> buffer = DecodeBuffer(picture.RowBytes());
    for (long row = 0; row < picture.Height(); ++row) {
        std::memcpy(buffer.data(), FileRow(picture, row), picture.RowBytes());
        if (TIFFWriteScanline(tiff, buffer.data(), static_cast<std::uint32_t>(row), 0) != 1) return false;
    }
    return true;
}

bool WriteAll(TIFF* tiff, const Picture& picture)
{
    const vfILFormatInfo& format = picture.FormatInfo();
    const bool gray = format.channels == 1;
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, static_cast<std::uint32_t>(picture.Width()));
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, static_cast<std::uint32_t>(picture.Height()));
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 8 * format.sampleBytes);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, format.channels);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, gray ? PHOTOMETRIC_MINISBLACK : PHOTOMETRIC_RGB);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tiff, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
    TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_LZW);
    TIFFSetField(tiff, TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL);
    if (!gray) {
        const std::uint16_t kind = picture.Premultiplied() ? EXTRASAMPLE_ASSOCALPHA : EXTRASAMPLE_UNASSALPHA;
        TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &kind);
    }
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, TIFFDefaultStripSize(tiff, 0));
    return WriteRows(tiff, picture) && TIFFWriteDirectory(tiff) == 1;
}

bool IsTiff(std::string_view head)
{
    using namespace std::string_view_literals;
    return BeginsWith(head, "II*\0"sv) || BeginsWith(head, "MM\0*"sv) || BeginsWith(head, "II+\0"sv) ||
           BeginsWith(head, "MM\0+"sv);
}

PictureInfo InspectTiff(const OpenFile& file, const ReadOptions&)
{
    // Without a memory map ("m"): a file that shrinks meanwhile would end the program.
    return ReadHeader(Tiff(file, "rm"));
}

PicturePtr ReadTiff(const OpenFile& file, const ReadOptions&)
{
    const Tiff tiff(file, "rm");
    const PictureInfo info = ReadHeader(tiff);
    PicturePtr picture = Picture::Create(info.format, info.width, info.height);
    picture->SetPremultiplied(info.alpha == AlphaState::Premultiplied);
    const auto read = TIFFIsTiled(tiff.Handle()) != 0 ? ReadTiles : ReadStrips;
    if (!read(tiff, info, *picture)) ThrowDamaged(file, "TIFF", tiff.LastComplaint());
    return picture;
}

void WriteTiff(const OpenFile& file, const Picture& picture, const WriteOptions&)
{
    Tiff tiff(file, "w");
    const bool written = tiff.Handle() != nullptr && WriteAll(tiff.Handle(), picture);
    tiff.Close();
    // Closing writes too, and tells of a failure by the message alone.
    if (!written || tiff.LastComplaint().text[0] != '\0') {
        ThrowNotWritten(file.path, tiff.LastComplaint().text);
    }
}

} // namespace

const FileCodec kTiffCodec{"TIFF",   {".tif", ".tiff"}, IsTiff,   InspectTiff,
                           ReadTiff, CheckFileFormat,   WriteTiff};

} // namespace vfil::host
