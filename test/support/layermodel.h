/// \file
/// What the pixel operators make of one pixel, straight line by line: the models that the library's kernels
/// are compared with. Values are ints; `full` is 255 or 65535 and tells the arithmetic.
#pragma once

#include "support/guardedimage.h"

#include <vfil/composite.h>

namespace vfil::test {

/// The sample arithmetic: sums of products rounded one by one in 8 bits and at full scale, else one rounding
/// of the whole.
struct Arithmetic {
    int full;
    bool fullScale = full == 255;

    /// a * b / full to nearest.
    int Product(int a, int b) const;
    /// (a * b + c * d) / full, clipped.
    int Sum(int a, int b, int c, int d) const;
    /// The weight of a term that stands alone: 1, which in 16 bits is a 65535th unless at full scale.
    int One() const { return fullScale ? full : 1; }

    int Blend(int f, int b, int m) const { return Sum(m, f, full - m, b); }
    int Over(int f, int b, int fAlpha) const { return Sum(One(), f, full - fAlpha, b); }
    int In(int f, int bAlpha) const { return Product(bAlpha, f); }
    int Out(int f, int bAlpha) const { return Product(full - bAlpha, f); }
    int Atop(int f, int b, int fAlpha, int bAlpha) const { return Sum(full - fAlpha, b, bAlpha, f); }
    int Xor(int f, int b, int fAlpha, int bAlpha) const { return Sum(full - fAlpha, b, full - bAlpha, f); }
    int Add(int a, int b) const { return a + b < full ? a + b : full; }
    int AddNoClip(int a, int b) const { return Sum(full - b, a, One(), b); }
    int Difference(int a, int b) const { return (a < b ? b - a : a - b) & (fullScale ? full : 0xFF); }
    /// A strength in 0 .. 1 as a sample.
    int Strength(double strength) const;
};

enum class Layer {
    Over,
    In,
    Out,
    Atop,
    Xor,
    Add,
    AddNoClip,
    Diff,
    Mult,
    Lighter,
    Darker,
    Lum,
    Col,
    NonAdd,
    InvNonAdd
};
inline constexpr int kLayers = static_cast<int>(Layer::InvNonAdd) + 1;

struct LayerSetup {
    Layer layer = Layer::Over;
    int full = 255;
    bool fullScale16 = false;
    double strength = 1.0;
    vfILAlphaMode alphaMode = VFIL_ALPHA_COMPUTED;
    bool aPremultiplied = false;
    bool bPremultiplied = false;
    bool neverPremultiplyBack = false;
    bool dominantB = false;
    unsigned long mode = VFIL_MODE_RGB;
};

/// Front B on back A.
Pixel LayerPixel(const LayerSetup& setup, const Pixel& a, const Pixel& b);
/// What the output is told to be after the run.
bool IsLayerResultPremultiplied(const LayerSetup& setup);

/// The masked mix of vfILCompositeImg; \p mask is the mask's sample.
Pixel CompositePixel(int full, double amount, vfILAlphaMode alphaMode, const Pixel& a, const Pixel& b,
                     int mask);
/// A processed pixel under channel selection and a mask sample (-1 without a mask): the common rule of the
/// frames. Unselected channels take \p input. \p channels is 1 for mono, which knows no selection.
Pixel SelectAndMix(int full, int channels, unsigned long mode, const Pixel& input, const Pixel& processed,
                   int mask);
int Grey(const Pixel& pixel);

/// One row of over on Cb Y Cr Y with an alpha plane. A pixel is its two bytes and its alpha.
std::vector<Pixel> OverRow422(const LayerSetup& setup, const std::vector<Pixel>& a,
                              const std::vector<Pixel>& b);

} // namespace vfil::test
