/// \file
/// Operators made for tests: with the fast arithmetic on or off, by number, and two that have only a sample
/// operation.
#pragma once

#include "support/layermodel.h"

#include <vfil/composite.h>
#include <vfil/pixel.h>

#include <array>
#include <memory>

namespace vfil::test {

/// An operator whose fast arithmetic is allowed or not, whatever the machine says.
template <class Processor>
class Switched : public Processor {
public:
    template <class... Original>
    explicit Switched(bool simd, const Original&... original) : Processor(original...)
    {
        this->m_simdAvailable = simd ? 1 : 0;
    }
};

/// One sample for one, of which no two are alike.
class ProbeMonadic : public vfILMonadicPixelProc {
public:
    static int Rule(int v, int full) { return (5 * v + 3) & full; }

protected:
    unsigned char Operation8(unsigned char v) override { return static_cast<unsigned char>(Rule(v, 255)); }
    unsigned short Operation16(unsigned short v) override
    {
        return static_cast<unsigned short>(Rule(v, 65535));
    }
};

/// One sample for two, not symmetric.
class ProbeDyadic : public vfILDyadicPixelProc {
public:
    static int Rule(int a, int b, int full) { return (3 * a + 5 * b + 1) & full; }

protected:
    unsigned char Operation8(unsigned char a, unsigned char b) override
    {
        return static_cast<unsigned char>(Rule(a, b, 255));
    }
    unsigned short Operation16(unsigned short a, unsigned short b) override
    {
        return static_cast<unsigned short>(Rule(a, b, 65535));
    }
};

/// The operators by number: those of one input, of two, then the layer operators in the order of Layer.
enum Kind { kInvert, kCopy, kGrayscale, kProbeMonadic, kProbeDyadic, kMix, kFirstLayer };
inline constexpr int kKinds = kFirstLayer + kLayers;

template <class Processor>
std::unique_ptr<vfILImgProc> Make(bool simd)
{
    return std::make_unique<Switched<Processor>>(simd);
}

/// A copy by construction or by assignment.
template <class Processor>
std::unique_ptr<vfILImgProc> Copy(const vfILImgProc& of, bool simd, bool assigns)
{
    const auto& original = dynamic_cast<const Processor&>(of);
    if (!assigns) return std::make_unique<Switched<Processor>>(simd, original);
    auto copy = std::make_unique<Switched<Processor>>(simd);
    static_cast<Processor&>(*copy) = original;
    return copy;
}

struct OperatorClass {
    std::unique_ptr<vfILImgProc> (*make)(bool simd);
    std::unique_ptr<vfILImgProc> (*copy)(const vfILImgProc& of, bool simd, bool assigns);
};
template <class... Processors>
constexpr std::array<OperatorClass, kKinds> ClassesOf()
{
    static_assert(sizeof...(Processors) == kKinds, "a Kind or a Layer without its class");
    return {{{Make<Processors>, Copy<Processors>}...}};
}
inline constexpr auto kOperators =
    ClassesOf<vfILInvertImg, vfILCopyImg, vfILGrayscaleImg, ProbeMonadic, ProbeDyadic, vfILCompositeImg,
              vfILOverImage, vfILInImage, vfILOutImage, vfILAtopImage, vfILXorImage, vfILAddImage,
              vfILAddNoClipImage, vfILDiffImage, vfILMultImage, vfILLighterImage, vfILDarkerImage,
              vfILLumImage, vfILColImage, vfILNonAddImage, vfILInvNonAddImage>();

inline std::unique_ptr<vfILImgProc> MakeProcessor(int kind, bool simd)
{
    return kOperators[static_cast<std::size_t>(kind)].make(simd);
}

/// Connects one input or two, the first of them dominant.
inline void Connect(vfILImgProc& processor, IPXImage* a, IPXImage* b, IPXImage* output)
{
    if (auto* monadic = dynamic_cast<vfILMonadicImgProc*>(&processor)) monadic->SetInputImg(a);
    if (auto* dyadic = dynamic_cast<vfILDyadicImgProc*>(&processor)) {
        dyadic->SetInputImgA(a);
        dyadic->SetInputImgB(b);
        dyadic->SetDominantInput(a);
    }
    processor.SetOutputImg(output);
}

/// Sets what a model's setup holds. The pictures are connected: connecting resets the premultiplied flags.
inline void Configure(vfILCompImg& processor, const LayerSetup& setup)
{
    processor.SetImgAPremultiplied(setup.aPremultiplied);
    processor.SetImgBPremultiplied(setup.bPremultiplied);
    processor.NeverPremultiplyBackImage(setup.neverPremultiplyBack);
    processor.SetExtraTransparency(setup.strength);
    processor.SetAlphaMode(setup.alphaMode);
    processor.SetFullScale16(setup.fullScale16);
    processor.SetProcessingMode(setup.mode);
    processor.SetDominantInput(setup.dominantB ? processor.GetInputImgB() : processor.GetInputImgA());
}

/// An interrupt function that fires after so many polls, and at every later one.
inline int g_pollsLeft = 0;
inline int StopAfterPolls()
{
    return --g_pollsLeft < 0;
}

/// Mostly none of the mode's field bits, else one or both.
inline unsigned long RandomFieldBits(std::mt19937& random)
{
    return random() % 2 ? 0 : (random() % 4) * VFIL_MODE_ODD_ROWS;
}

/// A setup of random switches, strength and selection.
inline LayerSetup RandomSetup(std::mt19937& random, Layer layer, int full)
{
    static constexpr std::array<double, 6> kStrengths{0.0, 0.5, 1.0, 1.0, 1.0, 0.3};
    static constexpr std::array<unsigned long, 4> kModes{VFIL_MODE_RGBA, VFIL_MODE_RGBA, VFIL_MODE_RGB, 0};
    LayerSetup setup;
    setup.layer = layer;
    setup.full = full;
    setup.strength = kStrengths[random() % kStrengths.size()];
    setup.alphaMode = static_cast<vfILAlphaMode>(RandomIn(random, 1, 3));
    setup.aPremultiplied = random() % 2;
    setup.bPremultiplied = random() % 2;
    setup.neverPremultiplyBack = random() % 4 == 0;
    setup.dominantB = random() % 2;
    setup.fullScale16 = random() % 2;
    setup.mode = kModes[random() % kModes.size()];
    if (setup.mode == 0) setup.mode = random() % 16;
    return setup;
}

} // namespace vfil::test
