/// \file
/// PNG files.
///
/// libpng reports errors by a long jump. Every call of it stands in a step that runs under Guard and has no
/// object with a destructor; what the step needs is made before it.

#include "host/filecodec.h"
#include "host/pixelrows.h"

#include <algorithm>
#include <bit>
#include <csetjmp>
#include <vector>

#include <png.h>

namespace vfil::host {

namespace {

void Fail(png_structp png, png_const_charp message)
{
    static_cast<Complaint*>(png_get_error_ptr(png))->Set(message);
    png_longjmp(png, 1);
}

void Ignore(png_structp, png_const_charp)
{}

/// Runs a step; false when libpng left it by a long jump.
template <class Step>
bool Guard(png_structp png, Step& step)
{
    if (setjmp(png_jmpbuf(png)) != 0) return false;
    step();
    return true;
}

class PngReader {
public:
    explicit PngReader(const OpenFile& file) : m_file(file)
    {
        m_png = png_create_read_struct(PNG_LIBPNG_VER_STRING, &m_complaint, Fail, Ignore);
        if (m_png != nullptr) m_info = png_create_info_struct(m_png);
        if (m_info == nullptr) {
            png_destroy_read_struct(&m_png, nullptr, nullptr);
            throw std::bad_alloc();
        }
    }
    ~PngReader() { png_destroy_read_struct(&m_png, &m_info, nullptr); }
    PngReader(const PngReader&) = delete;
    PngReader& operator=(const PngReader&) = delete;

    PictureInfo ReadHeader()
    {
        Run([this] {
            png_init_io(m_png, m_file.stream);
            // The sizes that libpng itself refuses would be named less clearly.
            png_set_user_limits(m_png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
            png_set_crc_action(m_png, PNG_CRC_ERROR_QUIT, PNG_CRC_ERROR_QUIT);
            png_read_info(m_png, m_info);
        });
        const int colour = png_get_color_type(m_png, m_info);
        const int bits = png_get_bit_depth(m_png, m_info);
        const bool transparent = png_get_valid(m_png, m_info, PNG_INFO_tRNS) != 0;
        const bool alpha = (colour & PNG_COLOR_MASK_ALPHA) != 0 || transparent;
        const bool gray = (colour & PNG_COLOR_MASK_COLOR) == 0;

        PictureInfo info{.fileType = "PNG"};
        info.width = static_cast<long>(png_get_image_width(m_png, m_info));
        info.height = static_cast<long>(png_get_image_height(m_png, m_info));
        info.depth = colour == PNG_COLOR_TYPE_PALETTE ? 8 : bits;
        info.channels = (gray ? 1 : 3) + (alpha ? 1 : 0);
        info.alpha = alpha ? AlphaState::Straight : AlphaState::None;
        info.format = FileFormat(gray && !alpha, bits == 16 ? 2 : 1);
        CheckSize(m_file.path, png_get_image_width(m_png, m_info), png_get_image_height(m_png, m_info),
                  info.format);
        return info;
    }

    PicturePtr ReadPixels(const PictureInfo& info)
    {
        PicturePtr picture = Picture::Create(info.format, info.width, info.height);
        std::vector<png_bytep> rows(static_cast<std::size_t>(info.height));
        for (std::size_t i = 0; i < rows.size(); ++i) {
            rows[i] = FileRow(*picture, static_cast<long>(i));
        }
        const bool toRgba = picture->FormatInfo().channels == 4;
        Run([&] {
            png_set_expand(m_png);
            if (toRgba) png_set_gray_to_rgb(m_png);
            if (toRgba) png_set_add_alpha(m_png, 0xFFFF, PNG_FILLER_AFTER);
            if (info.depth == 16 && std::endian::native == std::endian::little) png_set_swap(m_png);
            png_set_interlace_handling(m_png);
            png_read_update_info(m_png, m_info);
            if (png_get_rowbytes(m_png, m_info) != picture->RowBytes())
                png_error(m_png, "unexpected row length");
            png_read_image(m_png, rows.data());
            png_read_end(m_png, nullptr);
        });
        return picture;
    }

private:
    template <class Step>
    void Run(Step step)
    {
        if (!Guard(m_png, step)) ThrowDamaged(m_file, "PNG", m_complaint);
    }

    const OpenFile& m_file;
    Complaint m_complaint;
    png_structp m_png = nullptr;
    png_infop m_info = nullptr;
};

class PngWriter {
public:
    explicit PngWriter(const OpenFile& file) : m_file(file)
    {
        m_png = png_create_write_struct(PNG_LIBPNG_VER_STRING, &m_complaint, Fail, Ignore);
        if (m_png != nullptr) m_info = png_create_info_struct(m_png);
        if (m_info == nullptr) {
            png_destroy_write_struct(&m_png, nullptr);
            throw std::bad_alloc();
        }
    }
    ~PngWriter() { png_destroy_write_struct(&m_png, &m_info); }
    PngWriter(const PngWriter&) = delete;
    PngWriter& operator=(const PngWriter&) = delete;

    void Write(const Picture& picture, int compression)
    {
        const vfILFormatInfo& format = picture.FormatInfo();
        const bool divide = picture.Premultiplied() && format.channels == 4;
        std::vector<std::uint16_t> straight(divide ? (picture.RowBytes() + 1) / 2 : 0);
        auto step = [&] {
            png_init_io(m_png, m_file.stream);
            png_set_compression_level(m_png, compression);
            png_set_IHDR(m_png, m_info, static_cast<png_uint_32>(picture.Width()),
                         static_cast<png_uint_32>(picture.Height()), 8 * format.sampleBytes,
                         format.channels == 1 ? PNG_COLOR_TYPE_GRAY : PNG_COLOR_TYPE_RGB_ALPHA,
                         PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
            png_write_info(m_png, m_info);
            if (format.sampleBytes == 2 && std::endian::native == std::endian::little) png_set_swap(m_png);
            for (long row = 0; row < picture.Height(); ++row) {
                const void* pixels = FileRow(picture, row);
                if (divide) {
                    UnpremultiplyRow(pixels, format.sampleBytes, straight.data(), picture.Width());
                    pixels = straight.data();
                }
                png_write_row(m_png, static_cast<png_const_bytep>(pixels));
            }
            png_write_end(m_png, m_info);
        };
        if (!Guard(m_png, step)) ThrowNotWritten(m_file.path, m_complaint.text);
    }

private:
    const OpenFile& m_file;
    Complaint m_complaint;
    png_structp m_png = nullptr;
    png_infop m_info = nullptr;
};

bool IsPng(std::string_view head)
{
    return BeginsWith(head, "\x89PNG\r\n\x1A\n");
}

void WritePng(const OpenFile& file, const Picture& picture, const WriteOptions& options)
{
    PngWriter(file).Write(picture, std::clamp(options.pngCompression, 0, 9));
}

} // namespace

const FileCodec kPngCodec{"PNG",           {".png"}, IsPng, InspectWith<PngReader>, ReadWith<PngReader>,
                          CheckFileFormat, WritePng};

} // namespace vfil::host
