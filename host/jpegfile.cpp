/// \file
/// JPEG files.
///
/// libjpeg reports errors by a long jump. Every call of it stands in a step that runs under Guard and has no
/// object with a destructor; what the step needs is made before it.

#include "host/filecodec.h"
#include "host/pixelrows.h"

#include <algorithm>
#include <csetjmp>
#include <limits>

#include <jpeglib.h>

#include <jerror.h>

namespace vfil::host {

namespace {

struct ErrorManager : jpeg_error_mgr {
    std::jmp_buf jump;
    Complaint complaint;
};

[[noreturn]] void Fail(j_common_ptr codec)
{
    auto* manager = static_cast<ErrorManager*>(codec->err);
    char message[JMSG_LENGTH_MAX];
    manager->format_message(codec, message);
    manager->complaint.Set(message);
    std::longjmp(manager->jump, 1);
}

/// A level below 0 warns of damage. libjpeg would go on with made-up pixels; what is only untidy may pass.
void Warn(j_common_ptr codec, int level)
{
    if (level >= 0) return;
    switch (codec->err->msg_code) {
    case JWRN_JPEG_EOF:
    case JWRN_HIT_MARKER:
    case JWRN_HUFF_BAD_CODE:
    case JWRN_ARITH_BAD_CODE:
    case JWRN_MUST_RESYNC:
        Fail(codec);
    default:
        break;
    }
}

/// Thousands of progressive scans in a small file would keep a reader busy for hours.
void LimitScans(j_common_ptr codec)
{
    constexpr int kMostScans = 500;
    if (reinterpret_cast<j_decompress_ptr>(codec)->input_scan_number > kMostScans) {
        ERREXIT(codec, JERR_BAD_PROGRESSION);
    }
}

void Prepare(ErrorManager& errors)
{
    jpeg_std_error(&errors);
    errors.error_exit = Fail;
    errors.emit_message = Warn;
}

/// Runs a step; false when libjpeg left it by a long jump.
template <class Step>
bool Guard(ErrorManager& errors, Step& step)
{
    if (setjmp(errors.jump) != 0) return false;
    step();
    return true;
}

class JpegReader {
public:
    explicit JpegReader(const OpenFile& file) : m_file(file)
    {
        Prepare(m_errors);
        m_codec.err = &m_errors;
        m_progress.progress_monitor = LimitScans;
    }
    ~JpegReader() { jpeg_destroy_decompress(&m_codec); }
    JpegReader(const JpegReader&) = delete;
    JpegReader& operator=(const JpegReader&) = delete;

    PictureInfo ReadHeader()
    {
        Run([this] {
            jpeg_create_decompress(&m_codec);
            m_codec.progress = &m_progress;
            m_codec.mem->max_memory_to_use = static_cast<long>(
                std::min<std::uint64_t>(2 * kMaxFileBytes, std::numeric_limits<long>::max()));
            jpeg_stdio_src(&m_codec, m_file.stream);
            jpeg_read_header(&m_codec, TRUE);
        });
        if (m_codec.num_components != 1 && m_codec.num_components != 3) {
            throw FileError(m_file.path, "a JPEG of " + std::to_string(m_codec.num_components) +
                                             " channels (CMYK) is not read; save it as RGB or gray");
        }
        PictureInfo info{.fileType = "JPEG"};
        info.width = static_cast<long>(m_codec.image_width);
        info.height = static_cast<long>(m_codec.image_height);
        info.depth = m_codec.data_precision;
        info.channels = m_codec.num_components;
        info.format = FileFormat(info.channels == 1, 1);
        CheckSize(m_file.path, m_codec.image_width, m_codec.image_height, info.format);
        return info;
    }

    PicturePtr ReadPixels(const PictureInfo& info)
    {
        PicturePtr picture = Picture::Create(info.format, info.width, info.height);
        Run([&] {
            m_codec.out_color_space = info.channels == 1 ? JCS_GRAYSCALE : JCS_EXT_RGBA;
            jpeg_start_decompress(&m_codec);
            while (m_codec.output_scanline < m_codec.output_height) {
                JSAMPROW row = FileRow(*picture, static_cast<long>(m_codec.output_scanline));
                jpeg_read_scanlines(&m_codec, &row, 1);
            }
            jpeg_finish_decompress(&m_codec);
        });
        return picture;
    }

private:
    template <class Step>
    void Run(Step step)
    {
        if (!Guard(m_errors, step)) ThrowDamaged(m_file, "JPEG", m_errors.complaint);
    }

    const OpenFile& m_file;
    ErrorManager m_errors{};
    jpeg_progress_mgr m_progress{};
    jpeg_decompress_struct m_codec{};
};

class JpegWriter {
public:
    explicit JpegWriter(const OpenFile& file) : m_file(file)
    {
        Prepare(m_errors);
        m_codec.err = &m_errors;
    }
    ~JpegWriter() { jpeg_destroy_compress(&m_codec); }
    JpegWriter(const JpegWriter&) = delete;
    JpegWriter& operator=(const JpegWriter&) = delete;

    void Write(const Picture& picture, int quality)
    {
        const bool gray = picture.FormatInfo().channels == 1;
        auto step = [&] {
            jpeg_create_compress(&m_codec);
            jpeg_stdio_dest(&m_codec, m_file.stream);
            m_codec.image_width = static_cast<JDIMENSION>(picture.Width());
            m_codec.image_height = static_cast<JDIMENSION>(picture.Height());
            m_codec.input_components = gray ? 1 : 4;
            m_codec.in_color_space = gray ? JCS_GRAYSCALE : JCS_EXT_RGBA;
            jpeg_set_defaults(&m_codec);
            jpeg_set_quality(&m_codec, quality, TRUE);
            jpeg_start_compress(&m_codec, TRUE);
            while (m_codec.next_scanline < m_codec.image_height) {
                const auto* pixels = FileRow(picture, static_cast<long>(m_codec.next_scanline));
                auto* row = const_cast<JSAMPROW>(pixels); // libjpeg reads it only
                jpeg_write_scanlines(&m_codec, &row, 1);
            }
            jpeg_finish_compress(&m_codec);
        };
        if (!Guard(m_errors, step)) ThrowNotWritten(m_file.path, m_errors.complaint.text);
    }

private:
    const OpenFile& m_file;
    ErrorManager m_errors{};
    jpeg_compress_struct m_codec{};
};

bool IsJpeg(std::string_view head)
{
    return BeginsWith(head, "\xFF\xD8\xFF");
}

void CheckJpeg(const std::filesystem::path& path, const Picture& picture)
{
    CheckFileFormat(path, picture);
    if (picture.FormatInfo().sampleBytes != 1) {
        throw FileError(path, "JPEG holds 8 bits and the picture has 16; write .png or .tif, or convert it");
    }
    if (!IsOpaque(picture))
        throw FileError(path, "JPEG holds no alpha; write .png or .tif, or put it over a back");
}

void WriteJpeg(const OpenFile& file, const Picture& picture, const WriteOptions& options)
{
    JpegWriter(file).Write(picture, std::clamp(options.jpegQuality, 1, 100));
}

} // namespace

const FileCodec kJpegCodec{
    "JPEG", {".jpg", ".jpeg"}, IsJpeg, InspectWith<JpegReader>, ReadWith<JpegReader>, CheckJpeg, WriteJpeg};

} // namespace vfil::host
