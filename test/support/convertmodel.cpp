#include "support/convertmodel.h"

#include <vfil/color.h>

#include <algorithm>
#include <cmath>

namespace vfil::test {
namespace {

/// Weights of R G B for Y, Cb and Cr: BT.601, BT.709.
using EncodeSet = std::array<Triple, 3>;
constexpr EncodeSet kEncode16[] = {{{{16829, 33039, 6416}, {-9714, -19070, 28784}, {28784, -24104, -4681}}},
                                   {{{11966, 40254, 4064}, {-6596, -22189, 28784}, {28784, -26145, -2639}}}};
constexpr EncodeSet kEncode15[] = {{{{8414, 16519, 3208}, {-4857, -9535, 14392}, {14392, -12052, -2340}}},
                                   {{{5983, 20127, 2032}, {-3298, -11094, 14392}, {14392, -13073, -1320}}}};

/// Weights of Y Cb Cr and 1 for R, G and B.
using DecodeSet = std::array<std::array<int, 4>, 3>;
constexpr DecodeSet kDecode16[] = {
    {{{76309, 0, 104597, -14576620}, {76309, -25675, -53279, 8917902}, {76309, 132201, 0, -18109946}}},
    {{{76309, 0, 117489, -16226779}, {76309, -13975, -34925, 5071050}, {76309, 138438, 0, -18908287}}}};
/// The same of Y Cb Cr and 256, scaled by 2^14, 2^14 and 2^13.
constexpr DecodeSet kDecode14[] = {
    {{{19077, 0, 26149, -14235}, {19077, -6419, -13320, 8709}, {9539, 16525, 0, -8843}}},
    {{{19077, 0, 29372, -15846}, {19077, -3494, -8731, 4952}, {9539, 17305, 0, -9233}}}};
constexpr Triple kDecodeShift14{14, 14, 13};

constexpr Triple kOffset{16, 128, 128};

int Dot(const Triple& weights, const Triple& v)
{
    return weights[0] * v[0] + weights[1] * v[1] + weights[2] * v[2];
}

Triple Sum(const Triple& a, const Triple& b)
{
    return {a[0] + b[0], a[1] + b[1], a[2] + b[2]};
}

Triple GetRgb(const FormatCase& format, const std::uint8_t* pixel)
{
    const std::size_t red = RedIndex(format);
    return {pixel[red], pixel[1], pixel[2 - red]};
}

void PutRgb(const FormatCase& format, const Triple& rgb, int alpha, std::uint8_t* pixel)
{
    const std::size_t red = RedIndex(format);
    pixel[red] = static_cast<std::uint8_t>(rgb[0]);
    pixel[1] = static_cast<std::uint8_t>(rgb[1]);
    pixel[2 - red] = static_cast<std::uint8_t>(rgb[2]);
    if (format.pixelBytes == 4) pixel[3] = static_cast<std::uint8_t>(alpha);
}

/// Y0 Cb Y1 Cr in the order of a format. Its own inverse.
template <class Value>
std::array<Value, 4> Ordered(const FormatCase& format, const std::array<Value, 4>& pair)
{
    return format.Is('C') ? std::array<Value, 4>{pair[1], pair[0], pair[3], pair[2]} : pair;
}

/// Y0 Cb Y1 Cr of the pair that begins with a pixel.
std::array<std::uint8_t, 4> PairAt(const FormatCase& format, const Bytes& picture, long pixel)
{
    std::array<std::uint8_t, 4> pair{};
    std::copy_n(picture.data() + pixel * 2, 4, pair.begin());
    return Ordered(format, pair);
}

struct LumaWeights {
    double red;
    double blue;
};
constexpr LumaWeights kLuma[] = {{0.299, 0.114}, {0.2126, 0.0722}};

} // namespace

void PairEncoder::StartRow(RandomModel& random)
{
    const double chroma = m_setup.filter ? 131071.0 : 65535.0;
    for (const std::size_t sample : {0U, 1U, 2U})
        m_residue[sample] = static_cast<int>(random.Draw() * (sample == 0 ? 65535.0 : chroma) + 0.5);
}

int PairEncoder::Quantise(std::size_t sample, int sum, int shift)
{
    const int whole = sum + (m_setup.dither ? m_residue[sample] & ((1 << shift) - 1) : 1 << (shift - 1));
    m_residue[sample] = whole;
    return (whole >> shift) + kOffset[sample];
}

std::array<int, 4> PairEncoder::Encode(const Triple& left, const Triple& right)
{
    const bool fast = m_setup.fast && !m_setup.dither;
    const EncodeSet& set = (fast ? kEncode15 : kEncode16)[m_709];
    const int shift = fast ? 15 : 16;
    const Triple chroma = m_setup.filter ? Sum(left, right) : left;
    const int chromaShift = shift + (m_setup.filter ? 1 : 0);
    const int y0 = Quantise(0, Dot(set[0], left), shift);
    const int y1 = Quantise(0, Dot(set[0], right), shift);
    return {y0, Quantise(1, Dot(set[1], chroma), chromaShift), y1,
            Quantise(2, Dot(set[2], chroma), chromaShift)};
}

Triple EncodePixel(bool is709, const Triple& rgb)
{
    const EncodeSet& set = kEncode16[is709];
    const auto sample = [&](std::size_t i) { return ((Dot(set[i], rgb) + 0x8000) >> 16) + kOffset[i]; };
    return {sample(0), sample(1), sample(2)};
}

Triple DecodePixel(bool is709, bool fast, const Triple& ycc)
{
    Triple rgb{};
    for (std::size_t c = 0; c < 3; ++c) {
        const auto& weights = (fast ? kDecode14 : kDecode16)[is709][c];
        const int sum = Dot({weights[0], weights[1], weights[2]}, ycc) + weights[3] * (fast ? 256 : 1);
        rgb[c] = std::clamp(sum >> (fast ? kDecodeShift14[c] : 16), 0, 255);
    }
    return rgb;
}

RealTriple EncodeExactly(bool is709, const Triple& rgb)
{
    const auto [kr, kb] = kLuma[is709];
    const double y = kr * rgb[0] + (1 - kr - kb) * rgb[1] + kb * rgb[2];
    const double scale = 224.0 / 255 / 2;
    return {16 + 219.0 / 255 * y, 128 + scale * (rgb[2] - y) / (1 - kb),
            128 + scale * (rgb[0] - y) / (1 - kr)};
}

RealTriple DecodeExactly(bool is709, const Triple& ycc)
{
    const auto [kr, kb] = kLuma[is709];
    const double y = (ycc[0] - 16) * 255 / 219.0;
    const double red = y + (ycc[2] - 128) * 2 * (1 - kr) * 255 / 224;
    const double blue = y + (ycc[1] - 128) * 2 * (1 - kb) * 255 / 224;
    const double green = (y - kr * red - kb * blue) / (1 - kr - kb);
    return {std::clamp(red, 0.0, 255.0), std::clamp(green, 0.0, 255.0), std::clamp(blue, 0.0, 255.0)};
}

std::vector<long> RowsFromBottom(const FormatCase& format, long height)
{
    const int even = format.Is('E') ? 1 : 0;
    long first = ((height + even) >> 1) - 1;
    long second = height - 1;
    std::vector<long> rows;
    for (long y = 0; y < height; ++y)
        rows.push_back(format.Is('S') && y % 2 != even ? first-- : second--);
    return rows;
}

std::size_t RedIndex(const FormatCase& format)
{
    return std::strncmp(format.name, "BGR", 3) == 0 || std::strncmp(format.name, "Dib", 3) == 0 ? 2 : 0;
}

Bytes ToYcc(const Conversion& conversion, const Bytes& input, Bytes output)
{
    const auto& [from, to, width, height, setup] = conversion;
    if (!to.IsSubsampled()) return ThroughColor(from, to, input);
    const std::vector<long> rows = RowsFromBottom(to, height);
    PairEncoder encoder(to.Is('7'), {setup.filter, setup.dither, setup.fast && from.pixelBytes == 4});
    RandomModel random(0x49960a8f);
    const std::uint8_t* pixel = input.data();
    for (const long row : rows) {
        encoder.StartRow(random);
        for (long x = 0; x < width; ++x, pixel += from.pixelBytes) {
            if (to.Is('P'))
                output[static_cast<std::size_t>((height * 2 + row) * width + x)] =
                    from.pixelBytes == 4 ? pixel[3] : 255;
            if (x % 2 == 0) continue;
            const auto pair = encoder.Encode(GetRgb(from, pixel - from.pixelBytes), GetRgb(from, pixel));
            std::copy_n(Ordered(to, pair).begin(), 4, output.data() + (row * width + x - 1) * 2);
        }
    }
    return output;
}

Bytes ToRgb(const Conversion& conversion, const Bytes& input, Bytes output)
{
    const auto& [from, to, width, height, setup] = conversion;
    if (!from.IsSubsampled()) return ThroughColor(from, to, input);
    const long paired = width / 2 * 2;
    std::uint8_t* pixel = output.data();
    for (const long row : RowsFromBottom(from, height))
        for (long x = 0; x < width; ++x, pixel += to.pixelBytes) {
            if (x == paired) continue;
            const auto pair = PairAt(from, input, row * width + x / 2 * 2);
            Triple ycc{pair[x % 2 == 0 ? 0 : 2], pair[1], pair[3]};
            if (setup.filter && x % 2 == 1 && x + 1 < paired) {
                const auto next = PairAt(from, input, row * width + x + 1);
                ycc[1] = (pair[1] + next[1] + 1) >> 1;
                ycc[2] = (pair[3] + next[3] + 1) >> 1;
            }
            const int alpha =
                from.Is('P') ? input[static_cast<std::size_t>((height * 2 + row) * width + x)] : 255;
            PutRgb(to, DecodePixel(from.Is('7'), setup.fast && to.pixelBytes == 4, ycc), alpha, pixel);
        }
    return output;
}

Bytes ThroughColor(const FormatCase& from, const FormatCase& to, const Bytes& input)
{
    const auto model = [](const FormatCase& f) {
        return f.model == 0 ? PXColorModel_RGB : PXColorModel(f.model);
    };
    Bytes output;
    for (auto pixel = input.begin(); pixel != input.end(); pixel += from.pixelBytes) {
        std::array<std::uint8_t, 8> in{};
        std::array<std::uint8_t, 8> out{};
        std::array<unsigned short, 4> words{};
        std::copy_n(pixel, from.pixelBytes, in.begin());
        std::swap(in[0], in[RedIndex(from)]);
        vfILColor color;
        if (from.sampleBytes == 2) {
            std::memcpy(words.data(), in.data(), 8);
            color.SetColorAs64(words.data(), model(from));
            color.GetColorAs64(words.data(), model(to));
            std::memcpy(out.data(), words.data(), 8);
        } else {
            from.pixelBytes == 4 ? color.SetColorAs32(in.data(), model(from))
                                 : color.SetColorAs24(in.data(), model(from));
            color.GetColorAs32(out.data(), model(to));
        }
        std::swap(out[0], out[RedIndex(to)]);
        output.insert(output.end(), out.begin(), out.begin() + to.pixelBytes);
    }
    return output;
}

} // namespace vfil::test
