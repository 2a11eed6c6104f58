#include "support/layermodel.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace vfil::test {
namespace {

/// A 16-bit quotient: the numerator wraps to 32 bits, as the operators are defined.
int Quotient16(std::uint64_t numerator)
{
    const double value = static_cast<std::uint32_t>(numerator) * 1.5259021896696422e-05;
    return static_cast<int>(std::min(std::floor(value + 0.5), 65535.0));
}

std::uint64_t Times(int a, int b)
{
    return static_cast<std::uint64_t>(a) * static_cast<std::uint64_t>(b);
}

struct Hls {
    double h, l, s;
};

Hls ToHls(double r, double g, double b)
{
    const double high = std::max({r, g, b});
    const double low = std::min({r, g, b});
    const double range = high - low;
    const double sum = high + low;
    const double l = 0.5 * sum;
    if (range == 0.0) return {0.0, l, 0.0};
    const double s = range / (l > 0.5 ? 2.0 - sum : sum);
    double h = (r - g) / range + 4.0;
    if (r == high)
        h = (g - b) / range;
    else if (g == high)
        h = (b - r) / range + 2.0;
    h *= 60.0;
    if (h < 0.0) h += 360.0;
    return {h * (1.0 / 360.0), l, s};
}

std::array<double, 3> FromHls(const Hls& c)
{
    const double v = c.l <= 0.5 ? (c.s + 1.0) * c.l : (c.s + c.l) - c.s * c.l;
    if (v == 0.0) return {0.0, 0.0, 0.0};
    const double h6 = c.h * 6.0;
    const double k = std::floor(h6);
    const double m = 2.0 * c.l - v;
    const double w = (v - m) * (h6 - k);
    const std::array<std::array<double, 3>, 6> sextants{
        {{v, m + w, m}, {v - w, v, m}, {m, v, m + w}, {m, v - w, v}, {m + w, m, v}, {v, m, v - w}}};
    return sextants[static_cast<std::size_t>(k) % 6];
}

/// The lightness of one pixel with the hue, the saturation and the alpha of another.
Pixel LightnessOf(const Pixel& light, const Pixel& colour, int full)
{
    const double scale = 1.0 / full;
    Hls hls = ToHls(colour[0] * scale, colour[1] * scale, colour[2] * scale);
    hls.l = ToHls(light[0] * scale, light[1] * scale, light[2] * scale).l;
    const auto pack = [full](double v) { return static_cast<int>(std::clamp(v * full, 0.0, double(full))); };
    const std::array<double, 3> rgb = FromHls(hls);
    return {pack(rgb[0]), pack(rgb[1]), pack(rgb[2]), pack(colour[3] * scale)};
}

bool TakesWholePixels(Layer layer)
{
    return layer >= Layer::Lum;
}

Pixel WholePixel(Layer layer, const Pixel& a, const Pixel& s, int full)
{
    if (layer == Layer::Lum) return LightnessOf(s, a, full);
    if (layer == Layer::Col) return LightnessOf(a, s, full);
    const bool front = layer == Layer::NonAdd ? Grey(a) < Grey(s) : Grey(s) < Grey(a);
    return front ? s : a;
}

/// The formula of colour channels, and of alpha with f = u, q = aAlpha, s = t times the front's alpha.
int LayerChannel(Layer layer, const Arithmetic& math, int f, int q, int s, int a, int u, int aAlpha)
{
    if (layer == Layer::Over) return math.Over(f, q, u);
    if (layer == Layer::In) return math.In(f, aAlpha);
    if (layer == Layer::Out) return math.Out(f, aAlpha);
    if (layer == Layer::Atop) return math.Atop(f, q, u, aAlpha);
    if (layer == Layer::Xor) return math.Xor(f, q, u, aAlpha);
    if (layer == Layer::Add) return math.Add(s, a);
    if (layer == Layer::AddNoClip) return math.AddNoClip(s, a);
    if (layer == Layer::Diff) return math.Difference(s, a);
    if (layer == Layer::Mult) return math.Product(s, a);
    return layer == Layer::Lighter ? std::max(s, a) : std::min(s, a);
}

} // namespace

int Arithmetic::Product(int a, int b) const
{
    if (!fullScale) return Quotient16(Times(a, b));
    const auto whole = static_cast<std::uint64_t>(full);
    return static_cast<int>((Times(a, b) + whole / 2) / whole);
}

int Arithmetic::Sum(int a, int b, int c, int d) const
{
    return fullScale ? std::min(full, Product(a, b) + Product(c, d)) : Quotient16(Times(a, b) + Times(c, d));
}

int Arithmetic::Strength(double strength) const
{
    return static_cast<int>(std::floor(std::clamp(strength, 0.0, 1.0) * full + 0.5));
}

int Grey(const Pixel& pixel)
{
    return (29 * pixel[0] + 57 * pixel[1] + 11 * pixel[2]) / 97;
}

Pixel LayerPixel(const LayerSetup& setup, const Pixel& a, const Pixel& b)
{
    const Arithmetic math{setup.full, setup.full == 255 || setup.fullScale16};
    const int t = math.Strength(setup.strength);
    const int u = b[3] == setup.full ? t : math.Product(b[3], t);
    Pixel s;
    for (std::size_t c = 0; c < 4; ++c)
        s[c] = math.Product(t, b[c]);

    Pixel out = TakesWholePixels(setup.layer) ? WholePixel(setup.layer, a, s, setup.full) : Pixel{};
    if (!TakesWholePixels(setup.layer)) {
        const bool asItIs =
            setup.aPremultiplied || (setup.layer == Layer::Over && setup.neverPremultiplyBack);
        for (std::size_t c = 0; c < 3; ++c) {
            const int f = math.Product(t, setup.bPremultiplied ? b[c] : math.Product(b[3], b[c]));
            const int q = asItIs ? a[c] : math.Product(a[3], a[c]);
            out[c] = LayerChannel(setup.layer, math, f, q, s[c], a[c], u, a[3]);
        }
        out[3] = LayerChannel(setup.layer, math, u, a[3], s[3], a[3], u, a[3]);
    }
    if (setup.alphaMode != VFIL_ALPHA_COMPUTED) out[3] = setup.alphaMode == VFIL_ALPHA_FULL ? setup.full : 0;

    const unsigned long mode = TakesWholePixels(setup.layer) ? setup.mode | VFIL_MODE_RGB : setup.mode;
    for (std::size_t c = 0; c < 4; ++c)
        if (!(mode & (1UL << c))) out[c] = setup.dominantB ? b[c] : a[c];
    return out;
}

bool IsLayerResultPremultiplied(const LayerSetup& setup)
{
    if (setup.layer == Layer::Over) return setup.neverPremultiplyBack ? setup.aPremultiplied : true;
    if (setup.layer == Layer::In || setup.layer == Layer::Out) return true;
    return setup.aPremultiplied || setup.bPremultiplied;
}

Pixel CompositePixel(int full, double amount, vfILAlphaMode alphaMode, const Pixel& a, const Pixel& b,
                     int mask)
{
    const Arithmetic math{full};
    const int t = math.Strength(amount);
    const int k = mask == full ? t : math.Product(mask, t);
    Pixel out = a;
    for (std::size_t c = 0; c < 3; ++c)
        out[c] = math.Blend(b[c], a[c], k);
    out[3] = a[3] | b[3];
    if (alphaMode != VFIL_ALPHA_COMPUTED) out[3] = alphaMode == VFIL_ALPHA_FULL ? full : 0;
    return out;
}

Pixel SelectAndMix(int full, int channels, unsigned long mode, const Pixel& input, const Pixel& processed,
                   int mask)
{
    Pixel out = input;
    for (std::size_t c = 0; c < static_cast<std::size_t>(channels); ++c)
        if (channels == 1 || mode & (1UL << c))
            out[c] = mask < 0 ? processed[c] : Arithmetic{full}.Blend(processed[c], input[c], mask);
    return out;
}

std::vector<Pixel> OverRow422(const LayerSetup& setup, const std::vector<Pixel>& a,
                              const std::vector<Pixel>& b)
{
    const Arithmetic math{255};
    const auto scaled = [&](int alpha, int v) {
        return v < 0 ? -math.Product(alpha, -v) : math.Product(alpha, v);
    };
    const int t = math.Strength(setup.strength);
    const bool backAsItIs = setup.aPremultiplied || setup.neverPremultiplyBack;
    const auto value = [&](int va, int vb, int aAlpha, int bAlpha) {
        const int f = scaled(t, setup.bPremultiplied ? vb : scaled(bAlpha, vb));
        const int q = backAsItIs ? va : scaled(aAlpha, va);
        return f + scaled(255 - math.Product(bAlpha, t), q);
    };
    std::vector<Pixel> out(a.size());
    for (std::size_t x = 0; x < a.size(); ++x) {
        const std::size_t first = x & ~std::size_t{1};
        out[x][0] = std::clamp(value(a[x][0] - 128, b[x][0] - 128, a[first][2], b[first][2]) + 128, 16, 240);
        out[x][1] = std::clamp(value(a[x][1] - 16, b[x][1] - 16, a[x][2], b[x][2]) + 16, 16, 235);
        const int u = math.Product(b[x][2], t);
        out[x][2] = math.Over(u, a[x][2], u);
        if (setup.alphaMode != VFIL_ALPHA_COMPUTED) out[x][2] = setup.alphaMode == VFIL_ALPHA_FULL ? 255 : 0;
        if (!(setup.mode & VFIL_MODE_ALPHA)) out[x][2] = setup.dominantB ? b[x][2] : a[x][2];
    }
    return out;
}

} // namespace vfil::test
