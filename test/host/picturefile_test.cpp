/// \file
/// Picture files: round trips, files made by hand, damaged and refused files, and what is left behind.

#include <vfil/host/picturefile.h>

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

#include <sys/resource.h>
#include <unistd.h>

namespace vfil::host {
namespace {

namespace fs = std::filesystem;
using Bytes = std::vector<std::uint8_t>;
using testing::HasSubstr;
using testing::ThrowsMessage;

Bytes FromHex(const std::string& hex)
{
    Bytes bytes;
    for (std::size_t i = 0; i < hex.size(); i += 2) {
        bytes.push_back(static_cast<std::uint8_t>(std::stoi(hex.substr(i, 2), nullptr, 16)));
    }
    return bytes;
}

/// A PNG of what stands between its header's name and its end.
Bytes MakePng(const std::string& hex)
{
    return FromHex("89504E470D0A1A0A0000000D49484452" + hex + "0000000049454E44AE426082");
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
    const std::size_t pixelsAt = 10 + 12 * (tags.size() + 2) + 4;
    tags[tiled ? 324 : 273] = static_cast<int>(pixelsAt);
    tags[tiled ? 325 : 279] = static_cast<int>(pixels.size());
    Bytes file{'I', 'I', 42, 0, 8, 0, 0, 0, static_cast<std::uint8_t>(tags.size()), 0};
    for (const auto& [tag, value] : tags) {
        for (const int word : {tag | 4 << 16, 1, value}) {
            for (int shift = 0; shift < 32; shift += 8)
                file.push_back(static_cast<std::uint8_t>(word >> shift));
        }
    }
    file.resize(pixelsAt);
    file.insert(file.end(), pixels.begin(), pixels.end());
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
        std::ofstream(Path(name), std::ios::binary) << std::string(bytes.begin(), bytes.end());
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

PicturePtr Random(const GUID& format, long width, long height, unsigned seed)
{
    PicturePtr picture = Picture::Create(format, width, height);
    std::mt19937 random(seed);
    std::generate_n(picture->Pixels(), picture->Bytes(),
                    [&] { return static_cast<std::uint8_t>(random() % 4 == 0 ? 255 : random()); });
    return picture;
}

TEST_F(PictureFile, LosslessKindsGiveBackEveryByte)
{
    unsigned seed = 0;
    for (const GUID& format : {PXFormat_RGBA32, PXFormat_RGBA64, PXFormat_Mono8, PXFormat_Mono16}) {
        for (const std::string name : {"a.png", "a.TIF", "a.tiff"}) {
            for (const auto& [width, height] : {std::pair{1L, 1L}, {1L, 9L}, {33L, 17L}, {300L, 120L}}) {
                SCOPED_TRACE(name + " " + std::to_string(width));
                const PicturePtr written = Random(format, width, height, ++seed);
                const bool premultiplied = name != "a.png" && seed % 2 == 0;
                written->SetPremultiplied(premultiplied);
                WritePicture(Path(name), *written);
                const PicturePtr read = ReadPicture(Path(name));
                ASSERT_EQ(read->Format(), format);
                EXPECT_EQ(read->Width(), width);
                EXPECT_EQ(PixelsOf(*read), PixelsOf(*written));
                EXPECT_EQ(read->Premultiplied(), premultiplied && written->FormatInfo().channels == 4);
            }
        }
    }
    for (std::size_t i = 0; const vfILFormatInfo* info = vfILFormatAt(i); ++i) {
        const PicturePtr written = Random(info->id, 5, 3, 1);
        WritePicture(Path("a.raw"), *written);
        EXPECT_EQ(Get("a.raw"), PixelsOf(*written));
        EXPECT_EQ(PixelsOf(*ReadPicture(Path("a.raw"), {info->id, 5, 3})), PixelsOf(*written));
    }
    EXPECT_EQ(FileCount(), 4U);
}

TEST_F(PictureFile, HandMadeFilesArriveTheRightWayUp)
{
    const Bytes rgb{255, 0, 0, 0, 255, 0, 0, 0, 255, 10, 20, 30};
    const Bytes rgba{0, 0, 255, 255, 10, 20, 30, 255, 255, 0, 0, 255, 0, 255, 0, 255};
    Bytes tile(16 * 16 * 3);
    std::copy_n(rgb.begin(), 6, tile.begin());
    std::copy_n(rgb.begin() + 6, 6, tile.begin() + 16 * 3);
    const Bytes jpeg = FromHex(
        "FFD8FFDB0043000101010101010101010101010101010101010101010101010101010101010101010101010101010101"
        "0101010101010101010101010101010101010101010101FFC00011080009000103011100021100031100FFC400160001"
        "010100000000000000000000000000090A0BFFC40014100100000000000000000000000000000000FFDA000C03010002"
        "000300003F002BC6BAA404FB4A845BBFFFD9");
    const Bytes gray16 = MakeTiff(1, 2, 16, 1, 1, {0x34, 0x80, 0xFE, 0xFF});
    Bytes column{10, 20, 240, 255}; // 1 pixel of one colour below 8 of another
    for (int i = 0; i < 8; ++i) {
        column.insert(column.end(), {201, 40, 20, 255});
    }
    struct {
        const char* name;
        Bytes file;
        GUID format;
        Bytes pixels;
        ReadOptions options = {};
    } const cases[] = {
        {"rgb8",
         MakePng("00000002000000020802000000FDD49A73000000134944415478DA"
                 "63F8CFC0C000C20CFFB944E4001A58033AE2926ED9"),
         PXFormat_RGBA32, rgba},
        {"graya16", // (0x1234, 0xABCD) over (0x5678, 0x0001)
         MakePng("000000010000000210040000006318A2EF000000124944415478DA"
                 "631032597D9621AC828111000E88028EA819F091"),
         PXFormat_RGBA64,
         {0x78, 0x56, 0x78, 0x56, 0x78, 0x56, 1, 0, 0x34, 0x12, 0x34, 0x12, 0x34, 0x12, 0xCD, 0xAB}},
        {"palette", // entries 0 (alpha 7) and 1
         MakePng("00000002000000010203000000894C971900000006504C544501020304050695536F480000000174524E5307"
                 "DE824DC50000000A4944415478DA631000000012001108DEBDC3"),
         PXFormat_RGBA32,
         {1, 2, 3, 7, 4, 5, 6, 255}},
        {"transparent gray", // 5, which is clear, over 9
         MakePng("00000001000000020800000000BCEAE9FB0000000274524E53000506F939B70000000C4944415478DA"
                 "636065E00400001C000F660092B6"),
         PXFormat_RGBA32,
         {9, 9, 9, 255, 5, 5, 5, 0}},
        {"interlaced", // 1 2 over 3 4
         MakePng("0000000200000002080000000120DA626E0000000F4944415478DA636064606260660100001F000B2A197813"),
         PXFormat_Mono8,
         {3, 4, 1, 2}},
        {"jpeg", jpeg, PXFormat_RGBA32, column},
        {"strip", MakeTiff(2, 2, 8, 2, 3, rgb), PXFormat_RGBA32, rgba},
        {"tile", MakeTiff(2, 2, 8, 2, 3, tile, {{322, 16}, {323, 16}}), PXFormat_RGBA32, rgba},
        {"gray16", gray16, PXFormat_Mono16, {0xFE, 0xFF, 0x34, 0x80}},
        {"16 to 8 bits", gray16, PXFormat_Mono8, {0xFF, 0x80}, {PXFormat_Mono8}},
        {"gray to RGBA",
         gray16,
         PXFormat_RGBA32,
         {255, 255, 255, 255, 128, 128, 128, 255},
         {PXFormat_RGBA32}},
        {"8 to 16 bits",
         MakeTiff(1, 1, 8, 2, 4, {1, 2, 3, 4}, {{338, 2}}),
         PXFormat_RGBA64,
         {1, 1, 2, 2, 3, 3, 4, 4},
         {PXFormat_RGBA64}},
        {"premultiplied",
         MakeTiff(1, 2, 8, 1, 2, {50, 60, 70, 80}, {{338, 1}}),
         PXFormat_RGBA32,
         {70, 70, 70, 80, 50, 50, 50, 60}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const PicturePtr picture = ReadPicture(Put("any.name", c.file), c.options);
        EXPECT_EQ(picture->Format(), c.format);
        EXPECT_EQ(PixelsOf(*picture), c.pixels);
        EXPECT_EQ(picture->Premultiplied(), std::string(c.name) == "premultiplied");
    }
}

TEST_F(PictureFile, JpegsComeBackNearlyTheSame)
{
    for (const GUID& format : {PXFormat_RGBA32, PXFormat_Mono8}) {
        const PicturePtr written = Picture::Create(format, 20, 20);
        for (long y = 0; y < 20; ++y) {
            const std::uint8_t colour[] = {static_cast<std::uint8_t>(10 * y), 100, 180, 255};
            written->FillRegion(colour, 0, y, 20, 1);
        }
        WritePicture(Path("a.jpeg"), *written, {.jpegQuality = 100});
        const PicturePtr read = ReadPicture(Path("a.jpeg"));
        ASSERT_EQ(read->Format(), format);
        EXPECT_THAT(PixelsOf(*read), testing::Pointwise(testing::FloatNear(8), PixelsOf(*written)));
    }
}

TEST_F(PictureFile, PremultipliedColourIsDividedForPngAndKeptForTiff)
{
    struct {
        GUID format;
        Bytes pixels;
        Bytes straight;
    } const cases[] = {
        // 50 * 255 / 100 = 127.5, up; 200 over alpha 100 is clipped.
        {PXFormat_RGBA32, {50, 100, 200, 100, 7, 8, 9, 0}, {128, 255, 255, 100, 0, 0, 0, 0}},
        // 65535, 20000 and 1 over alpha 40000.
        {PXFormat_RGBA64, {255, 255, 0x20, 0x4E, 1, 0, 0x40, 0x9C}, {255, 255, 0, 0x80, 2, 0, 0x40, 0x9C}},
    };
    for (const auto& c : cases) {
        const long width = 8 / vfILFindFormat(c.format)->pixelBytes;
        const PicturePtr picture = Picture::Create(c.format, width, 1);
        std::copy(c.pixels.begin(), c.pixels.end(), picture->Pixels());
        picture->SetPremultiplied(true);
        WritePicture(Path("a.png"), *picture);
        WritePicture(Path("a.tif"), *picture);
        EXPECT_EQ(PixelsOf(*ReadPicture(Path("a.png"))), c.straight);
        EXPECT_EQ(PixelsOf(*ReadPicture(Path("a.tif"))), c.pixels);
    }
}

TEST_F(PictureFile, WrongFilesAreNamedWithTheRemedy)
{
    const auto tiff = [](int bits, int photometric, int samples, int width = 2) {
        return MakeTiff(width, 2, bits, photometric, samples, Bytes(64));
    };
    struct {
        const char* name;
        Bytes file;
        const char* text;
        ReadOptions options = {};
    } const cases[] = {
        {"empty.png", {}, "the file is empty"},
        {"text.png", {'h', 'e', 'l', 'l', 'o', ' ', 'y', 'o', 'u'}, "not a picture: its first bytes"},
        {"wide.png",
         MakePng("00011170000000010100000000DA3840E60000000949444154"
                 "78DA63000000010001B10DB693"),
         "70000x1 is too large"},
        {"zero.png", MakePng("00000000000000010800000000D5BCF06B"), "damaged or truncated PNG"},
        {"cmyk.jpg",
         FromHex("FFD8FFC00014080008000804011100021100031100041100FFDA000E040100020003000400003F00"), "CMYK"},
        {"bilevel.tif", tiff(1, 1, 1), "bits of 1"},
        {"white-is-0.tif", tiff(8, 0, 1), "photometric) 0"},
        {"unnamed.tif", tiff(8, 2, 4), "does not say that its last channel is alpha"},
        {"wide.tif", tiff(8, 1, 1, 70000), "70000x2 is too large"},
        {"short.tif", tiff(8, 1, 1, 1000), "damaged or truncated TIFF"},
        {"rgba.tif", tiff(8, 2, 3), "cannot be read as Mono8", {PXFormat_Mono8}},
        {"a.raw", Bytes(10), "need a format and a size"},
        {"b.raw", Bytes(10), "holds 10 bytes, but Mono8 of 3x3 has 9", {PXFormat_Mono8, 3, 3}},
        {"c.raw", Bytes(10), "65535x65535 is too large", {PXFormat_RGBA64, 65535, 65535}},
        {"d.raw", Bytes(10), "not negative", {PXFormat_Mono8, -5, -2}},
    };
    for (const auto& c : cases) {
        const fs::path path = Put(c.name, c.file);
        EXPECT_THAT([&] { ReadPicture(path, c.options); },
                    ThrowsMessage<FileError>(testing::AllOf(testing::StartsWith(path.string() + ": "),
                                                            HasSubstr(c.text), Not(HasSubstr("\n")))));
    }
}

TEST_F(PictureFile, DamagedFilesGiveAnErrorAndNoCrash)
{
    std::mt19937 random(5);
    for (const std::string name : {"a.png", "a.tif", "a.jpg"}) {
        WritePicture(Path(name), *Random(name == "a.jpg" ? PXFormat_Mono8 : PXFormat_RGBA64, 31, 23, 3));
        const Bytes whole = Get(name);
        for (std::size_t less = 1; less <= whole.size(); less += 1 + whole.size() / 50) {
            const fs::path cut = Put("cut", {whole.begin(), whole.end() - static_cast<long>(less)});
            EXPECT_THROW(ReadPicture(cut), FileError) << name << " without " << less << " bytes";
        }
        int refused = 0;
        for (int run = 0; run < 160; ++run) {
            Bytes bytes = whole;
            // Every other time near an end, where the headers are.
            const std::size_t range = run % 2 == 0 ? 200 : bytes.size();
            const std::size_t at = run % 4 < 2 ? random() % range : bytes.size() - 1 - random() % range;
            bytes[at] = static_cast<std::uint8_t>(bytes[at] ^ (1U << random() % 8));
            try {
                ReadPicture(Put("flipped", bytes));
            } catch (const FileError&) {
                ++refused;
            }
        }
        EXPECT_GE(refused, name == "a.png" ? 160 : 8) << name;
    }
}

TEST_F(PictureFile, WhatAFileCannotHoldIsRefusedAndLeavesNothing)
{
    struct {
        const char* name;
        GUID format;
        long side;
        const char* text;
    } const cases[] = {
        {"a.jpg", PXFormat_RGBA32, 2, "holds no alpha"},
        {"a.jpg", PXFormat_Mono16, 2, "holds 8 bits"},
        {"a.png", PXFormat_YCC422_601, 2, "goes to .raw files only"},
        {"a.png", PXFormat_RGBA32, 0, "no pixels"},
        {"a", PXFormat_RGBA32, 2, "no known kind"},
    };
    for (const auto& c : cases) {
        const PicturePtr picture = Picture::Create(c.format, c.side, c.side);
        EXPECT_THAT([&] { WritePicture(Path(c.name), *picture); },
                    ThrowsMessage<FileError>(HasSubstr(c.text)));
        EXPECT_EQ(FileCount(), 0U) << c.name;
    }
}

TEST_F(PictureFile, AFullDiskLeavesTheOldFileAndNoOther)
{
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit old{};
    getrlimit(RLIMIT_FSIZE, &old);
    const PicturePtr noise = Random(PXFormat_Mono8, 300, 200, 6);
    for (const std::string name : {"a.png", "a.jpg", "a.tif", "a.raw"}) {
        WritePicture(Path(name), *noise);
        const auto whole = fs::file_size(Path(name));
        Put(name, {1, 2, 3});
        // 100 bytes fail within the pixels, 1 byte fewer than the whole only when the file is closed.
        for (const rlim_t limit : {rlim_t{100}, static_cast<rlim_t>(whole - 1)}) {
            const rlimit small{limit, old.rlim_max};
            setrlimit(RLIMIT_FSIZE, &small);
            EXPECT_THAT([&] { WritePicture(Path(name), *noise); },
                        ThrowsMessage<FileError>(HasSubstr(name + ": cannot be written: File too large")));
            setrlimit(RLIMIT_FSIZE, &old);
            EXPECT_EQ(Get(name), (Bytes{1, 2, 3})) << name;
        }
    }
    EXPECT_EQ(FileCount(), 4U);
}

TEST_F(PictureFile, ALinkIsWrittenThrough)
{
    fs::create_symlink(Put("a.png", {1}), Path("b.png"));
    EXPECT_TRUE(SamePath(Path("a.png"), m_folder / "." / "b.png"));
    WritePicture(Path("b.png"), *Picture::Create(PXFormat_Mono8, 1, 1));
    EXPECT_TRUE(fs::is_symlink(Path("b.png")));
    EXPECT_EQ(ReadPicture(Path("a.png"))->Bytes(), 1U);
}

} // namespace
} // namespace vfil::host
