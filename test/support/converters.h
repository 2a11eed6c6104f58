/// \file
/// The converters by number with the pairs of formats that they take, and how the tests run one.
#pragma once

#include "support/convertmodel.h"
#include "support/processors.h"

#include <vfil/convert.h>
#include <vfil/models.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>

namespace vfil::test {

/// A class, and what its Verify says of a pair of formats.
struct Converter {
    const char* name;
    std::unique_ptr<vfILImgProc> (*make)(bool simd);
    std::unique_ptr<vfILImgProc> (*copy)(const vfILImgProc& of, bool simd, bool assigns);
    unsigned long (*verifyCode)(const FormatCase& from, const FormatCase& to);

    bool Takes(const FormatCase& from, const FormatCase& to) const { return verifyCode(from, to) == 0; }
};

inline constexpr unsigned long kBadInput = 0x10034;
inline constexpr unsigned long kBadPair = 0x1000D;

inline bool IsAmong(const FormatCase& format, std::initializer_list<std::string_view> names)
{
    return std::find(names.begin(), names.end(), format.name) != names.end();
}

/// RGB to YCC: \p whole has four bytes a pixel, \p packed three.
inline unsigned long EncoderCode(const FormatCase& from, const FormatCase& to, std::string_view whole,
                                 std::string_view packed, bool words)
{
    if (words && IsAmong(from, {"RGBA64"})) return IsAmong(to, {"YCCA64"}) ? 0 : kBadPair;
    if (!IsAmong(from, {whole, packed})) return kBadInput;
    if (!to.Is('Y') || to.sampleBytes == 2) return kBadPair;
    return to.Is('P') && from.name != whole ? kBadPair : 0;
}

inline unsigned long DecoderCode(const FormatCase& from, const FormatCase& to, std::string_view whole,
                                 std::string_view packed, bool words)
{
    if (!from.Is('Y')) return kBadInput;
    if (from.sampleBytes == 2) return words && IsAmong(to, {"RGBA64"}) ? 0 : kBadPair;
    return to.name == whole || (to.name == packed && !from.Is('P')) ? 0 : kBadPair;
}

/// Two pairs of formats.
inline unsigned long PairCode(const FormatCase& from, const FormatCase& to, const char* from1,
                              const char* to1, const char* from2, const char* to2)
{
    if (IsAmong(from, {from1})) return IsAmong(to, {to1}) ? 0 : kBadPair;
    if (IsAmong(from, {from2})) return IsAmong(to, {to2}) ? 0 : kBadPair;
    return kBadInput;
}

#define VFIL_CONVERTER(name, rule, ...)                                                                      \
    Converter                                                                                                \
    {                                                                                                        \
#name, Make < name>, Copy < name>,                                                                   \
            [](const FormatCase& from, const FormatCase& to) { return rule(from, to, __VA_ARGS__); }         \
    }
inline const Converter kConverters[] = {
    VFIL_CONVERTER(vfILRGBA2YCCA, EncoderCode, "RGBA32", "RGB24", true),
    VFIL_CONVERTER(vfILBGRA2YCCA, EncoderCode, "BGRA32", "BGR24", false),
    VFIL_CONVERTER(vfILDIB2YCCA, EncoderCode, "Dib32", "Dib24", false),
    VFIL_CONVERTER(vfILYCCA2RGBA, DecoderCode, "RGBA32", "RGB24", true),
    VFIL_CONVERTER(vfILYCCA2BGRA, DecoderCode, "BGRA32", "BGR24", false),
    VFIL_CONVERTER(vfIL16to8, PairCode, "RGBA64", "RGBA32", "Mono16", "Mono8"),
    VFIL_CONVERTER(vfIL8to16, PairCode, "RGBA32", "RGBA64", "Mono8", "Mono16"),
    VFIL_CONVERTER(vfILRGBA2HLSA, PairCode, "RGBA32", "HLSA32", "RGBA64", "HLSA64"),
    VFIL_CONVERTER(vfILHLSA2RGBA, PairCode, "HLSA32", "RGBA32", "HLSA64", "RGBA64"),
    VFIL_CONVERTER(vfILRGB2RGBA, PairCode, "RGB24", "RGBA32", "RGBA32", "RGB24"),
    VFIL_CONVERTER(vfILRGBA2BGRA, PairCode, "RGBA32", "BGRA32", "BGRA32", "RGBA32"),
};
#undef VFIL_CONVERTER

inline void Configure(vfILImgProc& processor, const ConvertSetup& setup)
{
    if (auto* encoder = dynamic_cast<vfILRGB2YCCProc*>(&processor)) {
        encoder->SetDoFiltering(setup.filter);
        encoder->SetDoDithering(setup.dither);
    }
    if (auto* decoder = dynamic_cast<vfILYCC2RGBProc*>(&processor)) decoder->SetDoFiltering(setup.filter);
}

inline std::uint8_t* Data(GuardedImage& image)
{
    void* pixels = nullptr;
    image.GetPixelArray(&pixels);
    return static_cast<std::uint8_t*>(pixels);
}

inline void Fill(GuardedImage& image, const Bytes& bytes)
{
    std::copy(bytes.begin(), bytes.end(), Data(image));
}

/// Any bytes at all.
inline void Scramble(GuardedImage& image, std::mt19937& random)
{
    Bytes bytes(image.Bytes().size());
    std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<std::uint8_t>(random() >> 24); });
    Fill(image, bytes);
}

/// "" when the picture has the bytes and wrote nothing around them.
inline std::string Mismatch(const Bytes& expected, const GuardedImage& image)
{
    if (!image.AreGuardsIntact()) return "wrote outside the pixels";
    const Bytes actual = image.Bytes();
    const auto [e, a] = std::mismatch(expected.begin(), expected.end(), actual.begin(), actual.end());
    if (e == expected.end() && a == actual.end()) return {};
    if (e == expected.end() || a == actual.end()) return "another size";
    return "byte " + std::to_string(e - expected.begin()) + ": expected " + std::to_string(*e) + ", is " +
           std::to_string(*a);
}

/// Runs a converter with each setting on each width up to 67, and on a large picture, for every pair of
/// formats that it takes. \p model gives the output's bytes.
template <class Model>
void CompareWithModel(const Converter& converter, int settings, const Model& model)
{
    std::mt19937 random(31);
    const auto compare = [&](const FormatCase& from, const FormatCase& to, long width, long height,
                             int bits) {
        const ConvertSetup setup{(bits & 2) != 0, (bits & 4) != 0, (bits & 1) != 0};
        SCOPED_TRACE(testing::Message() << converter.name << ' ' << from.name << " to " << to.name << ", "
                                        << width << " x " << height << ", filter " << setup.filter
                                        << " dither " << setup.dither << " fast " << setup.fast);
        GuardedImage in(from.id, width, height), out(to.id, width, height);
        width < 100 ? in.Randomise(random) : Scramble(in, random);
        Scramble(out, random);
        const Bytes expected = model(Conversion{from, to, width, height, setup}, in.Bytes(), out.Bytes());
        auto p = converter.make(setup.fast);
        Connect(*p, &in, nullptr, &out);
        Configure(*p, setup);
        if (width % 3 == 0) p = converter.copy(*p, setup.fast, height % 2);
        ASSERT_EQ(p->Verify(), VFIL_SUCCESS);
        in.asked = out.asked = {};
        ASSERT_EQ(p->Execute(), VFIL_SUCCESS);
        ASSERT_EQ(Mismatch(expected, out), "");
        ASSERT_EQ(in.asked, (GuardedImage::Asked{1, 1, 1, 1, 1}));
        ASSERT_EQ(out.asked, in.asked);
    };
    for (const FormatCase& from : kFormats)
        for (const FormatCase& to : kFormats) {
            if (!converter.Takes(from, to) || testing::Test::HasFatalFailure()) continue;
            for (long width = 1; width <= 67; ++width)
                for (int bits = 0; bits < settings; ++bits)
                    compare(from, to, width, RandomIn(random, 1, 5), bits);
            // results from 4 MiB on are stored in another way
            const long height = (4L << 20) / (2049 * to.pixelBytes) + 2;
            const bool plain = from.model == to.model && from.model != PXColorModel_HLS;
            const bool is709 = from.Is('7') || to.Is('7');
            if (plain || (is709 && !from.Is('S') && !to.Is('S')))
                compare(from, to, 2049, height, settings > 2 ? 3 : 1);
        }
}

} // namespace vfil::test
