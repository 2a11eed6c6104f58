/// \file
/// The exported colour-space matrices, computed by the compiler: each is a chain of steps, applied to the
/// unit vectors.

#include <vfil/color.h>
#include <vfil/treat.h>

namespace {

/// Three components and the constant 1, or 0 while a coefficient is taken.
struct Vector {
    double v[3];
    double one;
};

using Matrix = vfILColorMatrix;

template <class Step>
constexpr Matrix ToMatrix(Step step)
{
    constexpr Vector kUnits[4] = {{{1, 0, 0}, 0}, {{0, 1, 0}, 0}, {{0, 0, 1}, 0}, {{0, 0, 0}, 1}};
    Matrix m{};
    for (std::size_t in = 0; in < 4; ++in) {
        const Vector result = step(kUnits[in]);
        for (std::size_t out = 0; out < 3; ++out)
            m[4 * in + out] = result.v[out];
    }
    m[15] = 1;
    return m;
}

/// Red, green and blue to full-range YCC and back by the luma weights of red and blue. Greys come out exact:
/// luma is green plus weighted differences, which are 0 for them.
struct Weights {
    double red;
    double blue;

    constexpr Vector ToYcc(const Vector& rgb) const
    {
        const auto [r, g, b] = rgb.v;
        const double y = g + red * (r - g) + blue * (b - g);
        return {{y, (b - y) / (2 * (1 - blue)), (r - y) / (2 * (1 - red))}, rgb.one};
    }
    constexpr Vector ToRgb(const Vector& ycc) const
    {
        const auto [y, cb, cr] = ycc.v;
        const double redLessY = 2 * (1 - red) * cr;
        const double blueLessY = 2 * (1 - blue) * cb;
        const double greenLessY = -(red * redLessY + blue * blueLessY) / (1 - red - blue);
        return {{y + redLessY, y + greenLessY, y + blueLessY}, ycc.one};
    }
};

constexpr Weights k601{0.299, 0.114};
constexpr Weights k709{0.2126, 0.0722};

/// The 601 pair in the five decimals in which it is published. The matrices between 601 and RGB are these and
/// not k601; those between 601 and 709 are k601, so that they undo each other.
constexpr Vector Rounded601ToYcc(const Vector& rgb)
{
    const auto [r, g, b] = rgb.v;
    return {{0.299 * r + 0.587 * g + 0.114 * b, -0.16874 * r - 0.33126 * g + 0.5 * b,
             0.5 * r - 0.41869 * g - 0.08131 * b},
            rgb.one};
}

constexpr Vector Rounded601ToRgb(const Vector& ycc)
{
    const auto [y, cb, cr] = ycc.v;
    return {{y + 1.402 * cr, y - 0.34414 * cb - 0.71414 * cr, y + 1.772 * cb}, ycc.one};
}

/// Full range to studio range and back, in units of 1/255.
constexpr Vector ToStudio(const Vector& ycc)
{
    const auto [y, cb, cr] = ycc.v;
    return {
        {(219 * y + 16 * ycc.one) / 255, (224 * cb + 128 * ycc.one) / 255, (224 * cr + 128 * ycc.one) / 255},
        ycc.one};
}

constexpr Vector FromStudio(const Vector& ycc)
{
    const auto [y, cb, cr] = ycc.v;
    return {
        {(255 * y - 16 * ycc.one) / 219, (255 * cb - 128 * ycc.one) / 224, (255 * cr - 128 * ycc.one) / 224},
        ycc.one};
}

constexpr Matrix kRgbTo601 = ToMatrix(Rounded601ToYcc);
constexpr Matrix kRgbToStudio601 = ToMatrix([](const Vector& v) { return ToStudio(Rounded601ToYcc(v)); });
constexpr Matrix kRgbTo709 = ToMatrix([](const Vector& v) { return k709.ToYcc(v); });
constexpr Matrix kRgbToStudio709 = ToMatrix([](const Vector& v) { return ToStudio(k709.ToYcc(v)); });
constexpr Matrix k601ToRgb = ToMatrix(Rounded601ToRgb);
constexpr Matrix kStudio601ToRgb = ToMatrix([](const Vector& v) { return Rounded601ToRgb(FromStudio(v)); });
constexpr Matrix k709ToRgb = ToMatrix([](const Vector& v) { return k709.ToRgb(v); });
constexpr Matrix kStudio709ToRgb = ToMatrix([](const Vector& v) { return k709.ToRgb(FromStudio(v)); });
constexpr Matrix k601To709 = ToMatrix([](const Vector& v) { return k709.ToYcc(k601.ToRgb(v)); });
constexpr Matrix k709To601 = ToMatrix([](const Vector& v) { return k601.ToYcc(k709.ToRgb(v)); });
constexpr Matrix kStudio601To709 =
    ToMatrix([](const Vector& v) { return ToStudio(k709.ToYcc(k601.ToRgb(FromStudio(v)))); });
constexpr Matrix kStudio709To601 =
    ToMatrix([](const Vector& v) { return ToStudio(k601.ToYcc(k709.ToRgb(FromStudio(v)))); });

} // namespace

constinit const vfILColorMatrix s_dfArrayRGBAtoYCCA = kRgbTo601;
constinit const vfILColorMatrix s_dfArrayRGBAtoYCCAOffset = kRgbToStudio601;
constinit const vfILColorMatrix s_dfArrayRGBAtoYCCA709 = kRgbTo709;
constinit const vfILColorMatrix s_dfArrayRGBAtoYCCA709Offset = kRgbToStudio709;
constinit const vfILColorMatrix s_dfArrayYCCAtoRGBA = k601ToRgb;
constinit const vfILColorMatrix s_dfArrayYCCAOffsettoRGBA = kStudio601ToRgb;
constinit const vfILColorMatrix s_dfArrayYCCA709toRGBA = k709ToRgb;
constinit const vfILColorMatrix s_dfArrayYCCA709OffsettoRGBA = kStudio709ToRgb;
constinit const vfILColorMatrix s_dfArrayYCCA601toYCCA709 = k601To709;
constinit const vfILColorMatrix s_dfArrayYCCA709toYCCA601 = k709To601;
constinit const vfILColorMatrix s_dfArrayYCCA601OffsettoYCCA709Offset = kStudio601To709;
constinit const vfILColorMatrix s_dfArrayYCCA709OffsettoYCCA601Offset = kStudio709To601;

constinit const HmTransfo4 s_HmTransfoRGB2YCC(kRgbTo601.data());
constinit const HmTransfo4 s_HmTransfoYCC2RGB(k601ToRgb.data());
constinit const HmTransfo4 s_HmTransfoRGB2YCC709(kRgbTo709.data());
constinit const HmTransfo4 s_HmTransfoYCC7092RGB(k709ToRgb.data());
