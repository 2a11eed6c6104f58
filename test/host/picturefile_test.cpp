/// \file
/// Picture files: round trips, files made by hand, damaged and refused files, and what is left behind.

#include "host/picturefile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <map>
#include <random>
#include <vector>

#include <jpeglib.h>
#include <sys/resource.h>
#include <unistd.h>

namespace vfil::host {
namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<std::uint8_t>;
using testing::HasSubstr;

Bytes FromHex(const std::string& hex)
{
    Bytes bytes;
    for (std::size_t i = 0; i < hex.size(); i += 2) {
        bytes.push_back(static_cast<std::uint8_t>(std::stoi(hex.substr(i, 2), nullptr, 16)));
    }
    return bytes;
}

Bytes PixelsOf(const Picture& picture)
{
    return {picture.Pixels(), picture.Pixels() + picture.Bytes()};
}

/// An uncompressed little-endian TIFF with its pixels in one strip, or in one tile when \p more has a tile's
/// width.
Bytes MakeTiff(int width, int height, int bits, int photometric, int samples, const Bytes& pixels,
               const std::map<int, int>& more = {})
{
    std::map<int, int> tags{{256, width}, {257, height},      {258, bits},
                            {259, 1},     {262, photometric}, {277, samples}};
    tags.insert(more.begin(), more.end());
    const bool tiled = tags.contains(322);
    const std::size_t pixelsAt = 8 + 2 + 12 * (tags.size() + 2) + 4;
    tags[tiled ? 324 : 273] = static_cast<int>(pixelsAt);
    tags[tiled ? 325 : 279] = static_cast<int>(pixels.size());
    Bytes file{'I', 'I', 42, 0, 8, 0, 0, 0};
    const auto put = [&](std::size_t value, int bytes) {
        for (int i = 0; i < bytes; ++i) {
            file.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
        }
    };
    put(tags.size(), 2);
    for (const auto& [tag, value] : tags) {
        put(static_cast<std::size_t>(tag), 2);
        put(tag == 338 ? 3 : 4, 2); // short, else long
        put(1, 4);
        put(static_cast<std::size_t>(value), 4);
    }
    put(0, 4);
    file.insert(file.end(), pixels.begin(), pixels.end());
    return file;
}

/// A JPEG of 8 by 8 blocks of one colour each, given from the top left.
Bytes MakeJpeg(int blocksAcross, const std::vector<Bytes>& blocks, J_COLOR_SPACE space)
{
    const int channels = static_cast<int>(blocks[0].size());
    const int width = 8 * blocksAcross;
    jpeg_compress_struct codec{};
    jpeg_error_mgr errors{};
    codec.err = jpeg_std_error(&errors);
    jpeg_create_compress(&codec);
    unsigned char* out = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&codec, &out, &size);
    codec.image_width = static_cast<JDIMENSION>(width);
    codec.image_height = static_cast<JDIMENSION>(8 * static_cast<int>(blocks.size()) / blocksAcross);
    codec.input_components = channels;
    codec.in_color_space = space;
    jpeg_set_defaults(&codec);
    codec.comp_info[0].h_samp_factor = codec.comp_info[0].v_samp_factor = 1;
    jpeg_start_compress(&codec, TRUE);
    while (codec.next_scanline < codec.image_height) {
        Bytes row;
        for (int x = 0; x < width; ++x) {
            const Bytes& block = blocks[codec.next_scanline / 8 * static_cast<unsigned>(blocksAcross) +
                                        static_cast<unsigned>(x) / 8];
            row.insert(row.end(), block.begin(), block.end());
        }
        JSAMPROW data = row.data();
        jpeg_write_scanlines(&codec, &data, 1);
    }
    jpeg_finish_compress(&codec);
    Bytes file(out, out + size);
    jpeg_destroy_compress(&codec);
    std::free(out);
    return file;
}

class PictureFile : public testing::Test {
protected:
    void SetUp() override
    {
        m_folder = fs::temp_directory_path() / ("vfil-host-" + std::to_string(getpid()));
        fs::create_directory(m_folder);
    }
    void TearDown() override { fs::remove_all(m_folder); }

    fs::path Path(const std::string& name) const { return m_folder / name; }

    fs::path Put(const std::string& name, const Bytes& bytes) const
    {
        std::ofstream file(Path(name), std::ios::binary);
        file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        return Path(name);
    }

    Bytes Get(const std::string& name) const
    {
        std::ifstream file(Path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    std::size_t FileCount() const
    {
        return static_cast<std::size_t>(std::distance(fs::directory_iterator(m_folder), {}));
    }

    fs::path m_folder;
};

/// What a failing step says, without the folder.
template <class Step>
std::string MessageOf(Step step)
{
    try {
        step();
    } catch (const FileError& error) {
        return error.what();
    }
    return "no error";
}

PicturePtr Random(const GUID& format, long width, long height, unsigned seed)
{
    PicturePtr picture = Picture::Create(format, width, height);
    std::mt19937 random(seed);
    for (std::size_t i = 0; i < picture->Bytes(); ++i) {
        picture->Pixels()[i] = static_cast<std::uint8_t>(random() % 4 == 0 ? 255 : random());
    }
    return picture;
}

TEST_F(PictureFile, LosslessKindsGiveBackEveryByte)
{
    unsigned seed = 0;
    for (const GUID& format : {PXFormat_RGBA32, PXFormat_RGBA64, PXFormat_Mono8, PXFormat_Mono16}) {
        for (const char* name : {"a.png", "a.TIF", "a.tiff"}) {
            for (const auto& [width, height] :
                 {std::pair{1L, 1L}, {7L, 1L}, {1L, 9L}, {33L, 17L}, {300L, 120L}}) {
                const PicturePtr written = Random(format, width, height, ++seed);
                const bool premultiplied = name[2] != 'p' && seed % 2 == 0;
                written->SetPremultiplied(premultiplied);
                WritePicture(Path(name), *written);
                const PicturePtr read = ReadPicture(Path(name));
                ASSERT_EQ(read->Format(), format);
                ASSERT_EQ(read->Width(), width);
                EXPECT_EQ(PixelsOf(*read), PixelsOf(*written)) << name << " " << width << "x" << height;
                EXPECT_EQ(read->Premultiplied(), premultiplied && written->FormatInfo().channels == 4);
            }
        }
    }
    EXPECT_EQ(FileCount(), 3U);
}

TEST_F(PictureFile, RawHoldsThePixelArrayOfEveryFormat)
{
    for (std::size_t i = 0; i < 27; ++i) {
        const GUID& format = vfILFormatAt(i)->id;
        const PicturePtr written = Random(format, 5, 3, 1);
        WritePicture(Path("a.raw"), *written);
        EXPECT_EQ(Get("a.raw"), PixelsOf(*written));
        EXPECT_EQ(PixelsOf(*ReadPicture(Path("a.raw"), {format, 5, 3})), PixelsOf(*written));
    }
}

TEST_F(PictureFile, HandMadeFilesArriveTheRightWayUp)
{
    const Bytes rgb{255, 0, 0, 0, 255, 0, 0, 0, 255, 10, 20, 30};
    const Bytes rgbExpected{0, 0, 255, 255, 10, 20, 30, 255, 255, 0, 0, 255, 0, 255, 0, 255};
    Bytes tile(16 * 16 * 3);
    std::copy_n(rgb.begin(), 6, tile.begin());
    std::copy_n(rgb.begin() + 6, 6, tile.begin() + 16 * 3);
    struct {
        const char* name;
        Bytes file;
        GUID format;
        Bytes pixels;
    } const cases[] = {
        {"rgb8.png",
         FromHex("89504E470D0A1A0A0000000D4948445200000002000000020802000000FDD49A73000000134944415478DA63F8C"
                 "FC0C000C20C"
                 "FFB944E4001A58033AE2926ED90000000049454E44AE426082"),
         PXFormat_RGBA32, rgbExpected},
        {"gray1.png", // 1 0 1 over 0 1 0
         FromHex("89504E470D0A1A0A0000000D4948445200000003000000020100000000B50F5BB70000000C4944415478DA6358C"
                 "0E000"
                 "00022400E14D16E85E0000000049454E44AE426082"),
         PXFormat_Mono8,
         {0, 255, 0, 255, 0, 255}},
        {"graya16.png", // (0x1234, 0xABCD) over (0x5678, 0x0001)
         FromHex("89504E470D0A1A0A0000000D49484452000000010000000210040000006318A2EF000000124944415478DA63103"
                 "2597D"
                 "9621AC828111000E88028EA819F0910000000049454E44AE426082"),
         PXFormat_RGBA64,
         {0x78, 0x56, 0x78, 0x56, 0x78, 0x56, 1, 0, 0x34, 0x12, 0x34, 0x12, 0x34, 0x12, 0xCD, 0xAB}},
        {"palette2.png", // entries 0 (alpha 7) and 1
         FromHex("89504E470D0A1A0A0000000D4948445200000002000000010203000000894C971900000006504C5445010203040"
                 "50695"
                 "536F480000000174524E5307DE824DC50000000A4944415478DA631000000012001108DEBDC30000000049454E4"
                 "4AE42"
                 "6082"),
         PXFormat_RGBA32,
         {1, 2, 3, 7, 4, 5, 6, 255}},
        {"interlaced.png", // 1 2 over 3 4
         FromHex("89504E470D0A1A0A0000000D494844520000000200000002080000000120DA626E0000000F4944415478DA63606"
                 "46062"
                 "60660100001F000B2A1978130000000049454E44AE426082"),
         PXFormat_Mono8,
         {3, 4, 1, 2}},
        {"strip.tif", MakeTiff(2, 2, 8, 2, 3, rgb), PXFormat_RGBA32, rgbExpected},
        {"tile.tif", MakeTiff(2, 2, 8, 2, 3, tile, {{322, 16}, {323, 16}}), PXFormat_RGBA32, rgbExpected},
        {"gray16.tif", MakeTiff(1, 2, 16, 1, 1, {1, 2, 3, 4}), PXFormat_Mono16, {3, 4, 1, 2}},
        {"graya.tif",
         MakeTiff(1, 2, 8, 1, 2, {50, 60, 70, 80}, {{338, 1}}),
         PXFormat_RGBA32,
         {70, 70, 70, 80, 50, 50, 50, 60}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const PicturePtr picture = ReadPicture(Put("any.name", c.file));
        EXPECT_EQ(picture->Format(), c.format);
        EXPECT_EQ(PixelsOf(*picture), c.pixels);
        EXPECT_EQ(picture->Premultiplied(), std::string(c.name) == "graya.tif");
    }
}

TEST_F(PictureFile, JpegsAreReadTheRightWayUpAndWrittenSo)
{
    const std::vector<Bytes> colours{{250, 10, 10}, {10, 250, 10}, {10, 10, 250}, {200, 200, 40}};
    PicturePtr picture = ReadPicture(Put("a.jpg", MakeJpeg(2, colours, JCS_RGB)));
    for (int pass = 0; pass < 2; ++pass) {
        ASSERT_EQ(picture->Format(), PXFormat_RGBA32);
        for (int block = 0; block < 4; ++block) {
            const std::uint8_t* pixel = picture->Row(block < 2 ? 12 : 4) + 4 * (block % 2 == 0 ? 4 : 12);
            for (std::size_t c = 0; c < 3; ++c) {
                EXPECT_NEAR(pixel[c], colours[static_cast<std::size_t>(block)][c], 12) << block;
            }
            EXPECT_EQ(pixel[3], 255);
        }
        WritePicture(Path("b.jpeg"), *picture, {.jpegQuality = 95});
        picture = ReadPicture(Path("b.jpeg"));
    }
    const PicturePtr gray = ReadPicture(Put("g.jpg", MakeJpeg(1, {{20}, {200}}, JCS_GRAYSCALE)));
    ASSERT_EQ(gray->Format(), PXFormat_Mono8);
    EXPECT_NEAR(*gray->Row(15), 20, 3);
    EXPECT_NEAR(*gray->Row(0), 200, 3);
}

TEST_F(PictureFile, PremultipliedColourIsDividedForPngAndKeptForTiff)
{
    const PicturePtr picture = Picture::Create(PXFormat_RGBA32, 3, 1);
    const Bytes pixels{50, 100, 200, 100, 7, 8, 9, 0, 1, 2, 3, 255};
    std::copy(pixels.begin(), pixels.end(), picture->Pixels());
    picture->SetPremultiplied(true);
    WritePicture(Path("a.png"), *picture);
    // 50 * 255 / 100 = 127.5, up; 200 over alpha 100 is clipped.
    EXPECT_EQ(PixelsOf(*ReadPicture(Path("a.png"))), (Bytes{128, 255, 255, 100, 0, 0, 0, 0, 1, 2, 3, 255}));
    WritePicture(Path("a.tif"), *picture);
    EXPECT_EQ(PixelsOf(*ReadPicture(Path("a.tif"))), pixels);
    EXPECT_EQ(InspectPicture(Path("a.tif")).alpha, AlphaState::Premultiplied);
    EXPECT_EQ(InspectPicture(Path("a.png")).alpha, AlphaState::Straight);

    const PicturePtr deep = Picture::Create(PXFormat_RGBA64, 1, 1);
    const std::uint16_t deepPixel[] = {65535, 20000, 1, 40000};
    std::memcpy(deep->Pixels(), deepPixel, 8);
    deep->SetPremultiplied(true);
    WritePicture(Path("b.png"), *deep);
    std::uint16_t straight[4];
    std::memcpy(straight, ReadPicture(Path("b.png"))->Pixels(), 8);
    EXPECT_THAT(straight, testing::ElementsAre(65535, 32768, 2, 40000));
}

TEST_F(PictureFile, DepthAndChannelsChangeOnRequest)
{
    const Bytes gray16{0x00, 0x80, 0xFF, 0xFF};
    const fs::path path = Put("a.tif", MakeTiff(2, 1, 16, 1, 1, gray16));
    EXPECT_EQ(PixelsOf(*ReadPicture(path, {.format = PXFormat_Mono8})), (Bytes{0x80, 0xFF}));
    EXPECT_EQ(PixelsOf(*ReadPicture(path, {.format = PXFormat_RGBA32})),
              (Bytes{0x80, 0x80, 0x80, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}));
    const PicturePtr eight = Picture::Create(PXFormat_RGBA32, 1, 1);
    *reinterpret_cast<std::uint32_t*>(eight->Pixels()) = 0x04030201;
    WritePicture(Path("b.png"), *eight);
    EXPECT_EQ(PixelsOf(*ReadPicture(Path("b.png"), {.format = PXFormat_RGBA64})),
              (Bytes{1, 1, 2, 2, 3, 3, 4, 4}));
    EXPECT_THAT(MessageOf([&] { ReadPicture(Path("b.png"), {.format = PXFormat_Mono8}); }),
                HasSubstr("cannot be read as Mono8"));
}

TEST_F(PictureFile, WrongFilesAreNamedWithTheRemedy)
{
    const std::string png = "89504E470D0A1A0A0000000D49484452";
    Put("raw.raw", Bytes(10));
    fs::create_directory(Path("folder"));
    Put("folder.png", {});
    const auto tiff = [](int bits, int photometric, int samples, int width = 2) {
        return MakeTiff(width, 2, bits, photometric, samples, Bytes(64));
    };
    Put("text.png", {'h', 'e', 'l', 'l', 'o', ' ', 'y', 'o', 'u'});
    Put("wide.png", FromHex(png + "00011170000000010100000000DA3840E60000000949444154"
                                  "78DA63000000010001B10DB6930000000049454E44AE426082"));
    Put("zero.png", FromHex(png + "00000000000000010800000000D5BCF06B"));
    Put("cmyk.jpg", MakeJpeg(1, {{1, 2, 3, 4}}, JCS_CMYK));
    Put("bilevel.tif", tiff(1, 1, 1));
    Put("white-is-0.tif", tiff(8, 0, 1));
    Put("unnamed.tif", tiff(8, 2, 4));
    Put("wide.tif", tiff(8, 1, 1, 70000));
    Put("short.tif", tiff(8, 1, 1, 1000));
    struct {
        const char* name;
        ReadOptions options;
        const char* text;
    } const cases[] = {
        {"none.png", {}, "no such file"},
        {"folder", {}, "is a folder"},
        {"folder.png", {}, "the file is empty"},
        {"text.png", {}, "not a picture: its first bytes"},
        {"wide.png", {}, "70000x1 is too large"},
        {"zero.png", {}, "damaged or truncated PNG"},
        {"cmyk.jpg", {}, "CMYK"},
        {"bilevel.tif", {}, "bits of 1"},
        {"white-is-0.tif", {}, "photometric) 0"},
        {"unnamed.tif", {}, "does not say that its last channel is alpha"},
        {"wide.tif", {}, "70000x2 is too large"},
        {"short.tif", {}, "damaged or truncated TIFF"},
        {"raw.raw", {}, "need a format and a size"},
        {"raw.raw", {PXFormat_Mono8, 3, 3}, "holds 10 bytes, but Mono8 of 3x3 has 9"},
        {"raw.raw", {PXFormat_RGBA64, 65535, 65535}, "65535x65535 is too large"},
        {"raw.raw", {PXFormat_Mono8, -5, -2}, "not negative"},
    };
    for (const auto& c : cases) {
        const std::string message = MessageOf([&] { ReadPicture(Path(c.name), c.options); });
        EXPECT_THAT(message, testing::StartsWith(Path(c.name).string() + ": "));
        EXPECT_THAT(message, HasSubstr(c.text));
        EXPECT_THAT(message, testing::Not(HasSubstr("\n")));
    }
}

TEST_F(PictureFile, DamagedFilesGiveAnErrorAndNoCrash)
{
    const PicturePtr picture = Random(PXFormat_RGBA64, 21, 13, 3);
    const PicturePtr opaque = Random(PXFormat_Mono8, 40, 30, 4);
    WritePicture(Path("a.png"), *picture);
    WritePicture(Path("a.tif"), *picture);
    WritePicture(Path("a.jpg"), *opaque);
    std::mt19937 random(5);
    for (const std::string name : {"a.png", "a.tif", "a.jpg"}) {
        const Bytes whole = Get(name);
        for (std::size_t length = 0; length < whole.size(); length += 1 + whole.size() / 50) {
            Put("cut", {whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)});
            EXPECT_THROW(ReadPicture(Path("cut")), FileError) << name << " cut to " << length;
        }
        int refused = 0;
        for (int run = 0; run < 160; ++run) {
            Bytes bytes = whole;
            const std::size_t range = run % 2 == 0 ? std::min<std::size_t>(200, bytes.size()) : bytes.size();
            const std::size_t at = run % 4 < 2 ? random() % range : bytes.size() - 1 - random() % range;
            bytes[at] = static_cast<std::uint8_t>(bytes[at] ^ (1U << random() % 8));
            Put("flipped", bytes);
            try {
                ReadPicture(Path("flipped"));
            } catch (const FileError&) {
                ++refused;
            }
        }
        EXPECT_GE(refused, name == "a.png" ? 160 : 8) << name;
    }
}

TEST_F(PictureFile, WhatAFileCannotHoldIsRefusedAndLeavesNothing)
{
    const PicturePtr clear = Picture::Create(PXFormat_RGBA32, 2, 2);
    const PicturePtr deep = Picture::Create(PXFormat_Mono16, 2, 2);
    const PicturePtr video = Picture::Create(PXFormat_YCC422_601, 2, 2);
    const PicturePtr empty = Picture::Create(PXFormat_RGBA32, 0, 0);
    struct {
        const char* name;
        const PicturePtr& picture;
        const char* text;
    } const cases[] = {
        {"a.jpg", clear, "holds no alpha"},          {"a.jpg", deep, "holds 8 bits"},
        {"a.png", video, "goes to .raw files only"}, {"a.png", empty, "no pixels"},
        {"a.gif", clear, "no known kind"},           {"a", clear, "no known kind"},
        {"no/a.png", clear, "does not exist"},       {"", clear, "no known kind"},
    };
    for (const auto& c : cases) {
        EXPECT_THAT(MessageOf([&] { WritePicture(Path(c.name), *c.picture); }), HasSubstr(c.text));
    }
    EXPECT_EQ(FileCount(), 0U);
    fs::create_directory(Path("folder.png"));
    EXPECT_THAT(MessageOf([&] { WritePicture(Path("folder.png"), *clear); }), HasSubstr("no regular file"));
    EXPECT_EQ(FileCount(), 1U);
}

TEST_F(PictureFile, AFullDiskLeavesTheOldFileAndNoOther)
{
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit old{};
    getrlimit(RLIMIT_FSIZE, &old);
    const PicturePtr noise = Random(PXFormat_Mono8, 300, 200, 6);
    for (const char* name : {"a.png", "a.jpg", "a.tif", "a.raw"}) {
        Put(name, {1, 2, 3});
        // 100 bytes fail within the pixels, 1 byte fewer than the whole only when the file is closed.
        const fs::path other = Path(std::string("whole") + (name + 1));
        WritePicture(other, *noise);
        const auto whole = fs::file_size(other);
        fs::remove(other);
        for (const rlim_t limit : {rlim_t{100}, static_cast<rlim_t>(whole - 1)}) {
            const rlimit small{limit, old.rlim_max};
            setrlimit(RLIMIT_FSIZE, &small);
            const std::string message = MessageOf([&] { WritePicture(Path(name), *noise); });
            setrlimit(RLIMIT_FSIZE, &old);
            EXPECT_THAT(message,
                        HasSubstr("a." + std::string(name + 2) + ": cannot be written: File too large"));
            EXPECT_EQ(Get(name), (Bytes{1, 2, 3})) << name;
        }
        fs::remove(Path(name));
        EXPECT_EQ(FileCount(), 0U) << name;
    }
}

TEST_F(PictureFile, SamePathSeesThroughLinksAndDots)
{
    Put("a.png", {1});
    fs::create_symlink(Path("a.png"), Path("b.png"));
    EXPECT_TRUE(SamePath(Path("a.png"), m_folder / "." / "b.png"));
    EXPECT_FALSE(SamePath(Path("a.png"), Path("none.png")));
    WritePicture(Path("b.png"), *Picture::Create(PXFormat_Mono8, 1, 1));
    EXPECT_TRUE(fs::is_symlink(Path("b.png")));
    EXPECT_EQ(ReadPicture(Path("a.png"))->Bytes(), 1U);
}

} // namespace
} // namespace vfil::host
