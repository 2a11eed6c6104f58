/// \file
/// The masked mix.

#include "il/loops/layer/comploop.h"

#include <vfil/composite.h>

using namespace vfil;

const wchar_t* const vfILCompositeImg::m_ClassName = L"vfILCompositeImg";

vfILCompositeImg::vfILCompositeImg()
{
    Init();
}

vfILCompositeImg::vfILCompositeImg(const vfILCompositeImg& other) = default;

vfILCompositeImg::~vfILCompositeImg() = default;

void vfILCompositeImg::Init()
{
    m_alpha = 1.0;
    m_alphaMode = VFIL_ALPHA_COMPUTED;
}

const wchar_t* vfILCompositeImg::GetClassNameW() const
{
    return m_ClassName;
}

vfILStatus vfILCompositeImg::Verify()
{
    SetProcessingMode(GetProcessingMode() | VFIL_MODE_RGBA);
    SetDominantInput(GetInputImgA());
    if (vfILDyadicPixelProc::Verify() != VFIL_SUCCESS) return VFIL_FAILURE;
    if (!RgbaFormats::Contains(OutputFormat())) return Fail(0x1000D, GetClassNameW());
    if (GetMaskImg() == nullptr) return Fail(0x10059, GetClassNameW());
    if (!(m_alpha >= 0.0 && m_alpha <= 1.0)) return Fail(0x10012, GetClassNameW());
    if (m_alphaMode != VFIL_ALPHA_ZERO && m_alphaMode != VFIL_ALPHA_FULL &&
        m_alphaMode != VFIL_ALPHA_COMPUTED) {
        return Fail(0x1005A, GetClassNameW());
    }
    return VFIL_SUCCESS;
}

double vfILCompositeImg::GetAlpha() const
{
    return m_alpha;
}

void vfILCompositeImg::SetAlpha(double amount)
{
    m_alpha = amount;
}

vfILAlphaMode vfILCompositeImg::GetAlphaMode() const
{
    return m_alphaMode;
}

void vfILCompositeImg::SetAlphaMode(vfILAlphaMode mode)
{
    m_alphaMode = mode;
}

namespace {

template <class Sample>
vfILStatus RunMix(const vfILProcessor& processor, const vfILLayerRun& layers, double amount, AlphaRule alpha)
{
    const MixParams<Sample> params{AmountToSample<Sample>(amount), alpha};
    const MixRow<Sample> mixPixels = FindMixRow<Sample>(layers.fast, layers.run.streaming);
    const auto pixels = static_cast<std::size_t>(layers.run.processBox.GetSizeX());
    ForEachRow(processor, layers.run.rows, [&](long row) {
        const MaskRow<Sample> mask(layers.run, row);
        mixPixels(RowOf<const Sample>(layers.back, row), RowOf<const Sample>(layers.front, row), mask.samples,
                  mask.step, RowOf<Sample>(layers.run.output, row), pixels, params);
    });
    return VFIL_SUCCESS;
}

} // namespace

vfILStatus vfILCompositeImg::DoEffect()
{
    if (GetMaskImg() == nullptr) return VFIL_SUCCESS;
    const bool joinAlphas = m_alphaMode == VFIL_ALPHA_COMPUTED;
    return RgbaFormats::RunByDepth(
        FormatOf(Run()), [&] { return joinAlphas ? Over32OrWithMask() : Over32FillWithMask(); },
        [&] { return joinAlphas ? Over64OrWithMask() : Over64FillWithMask(); });
}

vfILStatus vfILCompositeImg::Over32OrWithMask()
{
    return RunMix<std::uint8_t>(*this, Layers(), m_alpha, AlphaRule::Computed);
}

vfILStatus vfILCompositeImg::Over32FillWithMask()
{
    return RunMix<std::uint8_t>(*this, Layers(), m_alpha, ToAlphaRule(m_alphaMode));
}

vfILStatus vfILCompositeImg::Over64OrWithMask()
{
    return RunMix<std::uint16_t>(*this, Layers(), m_alpha, AlphaRule::Computed);
}

vfILStatus vfILCompositeImg::Over64FillWithMask()
{
    return RunMix<std::uint16_t>(*this, Layers(), m_alpha, ToAlphaRule(m_alphaMode));
}
