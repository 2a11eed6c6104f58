/// \file
/// The front over the back.

#include "il/loops/layer/comploop.h"

#include <vfil/composite.h>

#include <type_traits>

using namespace vfil;

namespace {

/// 4:2:2 with an alpha plane.
template <const GUID& kFormat>
struct YuvaFormat {
    static constexpr const GUID& kId = kFormat;
};

using OverFormats =
    FormatList<Rgba8, Rgba16, YuvaFormat<PXFormat_YCCA422_601>, YuvaFormat<PXFormat_YCCA422_709>>;

} // namespace

const wchar_t* const vfILOverImage::m_ClassName = L"vfILOverImage";

const wchar_t* vfILOverImage::GetClassNameW() const
{
    return m_ClassName;
}

vfILStatus vfILOverImage::Verify()
{
    if (vfILCompImg::Verify() == VFIL_SUCCESS) return VFIL_SUCCESS;
    // The one refusal that this operator takes back: it knows the 4:2:2 formats with alpha too.
    const bool refusedFormat = GetLastError().GetErrorCode() == 0x1000D;
    return refusedFormat && OverFormats::Contains(OutputFormat()) ? VFIL_SUCCESS : VFIL_FAILURE;
}

bool vfILOverImage::IsBackPremultiplied() const
{
    return GetImgAPremultiplied() != 0 || IsNeverPremultiplyBackImage() != 0;
}

vfILStatus vfILOverImage::DoEffect()
{
    vfILStatus status = VFIL_SUCCESS;
    OverFormats::Visit(FormatOf(Run()), [&](auto format) {
        using Format = decltype(format);
        if constexpr (std::is_same_v<Format, Rgba8>) {
            status = DoEffect8();
        } else if constexpr (std::is_same_v<Format, Rgba16>) {
            status = Process16();
        } else {
            status = DoEffectYUVA422();
        }
        SetOutputPremultiplied(IsNeverPremultiplyBackImage() != 0 ? GetImgAPremultiplied() : 1);
    });
    return status;
}

vfILStatus vfILOverImage::DoEffect8()
{
    const bool frontPremultiplied = GetImgBPremultiplied() != 0;
    if (m_simdAvailable != 0) {
        if (frontPremultiplied) return IsBackPremultiplied() ? Process8FPBP_MMX() : Process8FPBNP_MMX();
        return IsBackPremultiplied() ? Process8FNPBP_MMX() : Process8FNPBNP_MMX();
    }
    if (frontPremultiplied && IsBackPremultiplied() && IsAllChannelProcessed() != 0 &&
        GetExtraTransparency() == 1.0) {
        return GetAlphaMode() == VFIL_ALPHA_COMPUTED ? Process8FPBPAC() : Process8FPBPNAC();
    }
    return Process8();
}

namespace {

/// Whether the colour of front and back is taken as premultiplied.
struct OverCase {
    bool frontPremultiplied;
    bool backPremultiplied;
};

template <class Sample>
vfILStatus RunOver(const vfILCompImg& processor, const vfILLayerRun& layers, OverCase premultiplied,
                   Poll poll = Poll::EachRow)
{
    LayerParams<Sample> params = LayerParamsOf<Sample>(processor, layers);
    params.frontPremultiplied = premultiplied.frontPremultiplied;
    params.backPremultiplied = premultiplied.backPremultiplied;
    RunLayerRows<LayerOp::Over>(processor, layers, params, poll);
    return VFIL_SUCCESS;
}

/// All channels of premultiplied pictures at full strength.
vfILStatus RunWholeOver8(const vfILCompImg& processor, const vfILLayerRun& layers, AlphaRule alpha)
{
    RunLayerRows<LayerOp::Over, std::uint8_t>(processor, layers,
                                              {.strength = 255,
                                               .frontPremultiplied = true,
                                               .backPremultiplied = true,
                                               .alpha = alpha,
                                               .channels = kAllChannels,
                                               .dominantIsFront = false,
                                               .streaming = layers.run.streaming});
    return VFIL_SUCCESS;
}

vfILStatus RunOverYuva(const vfILCompImg& processor, const vfILLayerRun& layers, OverCase premultiplied,
                       bool fast)
{
    YuvaParams params{};
    params.strength = AmountToSample<std::uint8_t>(processor.GetExtraTransparency());
    params.frontPremultiplied = premultiplied.frontPremultiplied;
    params.backPremultiplied = premultiplied.backPremultiplied;
    params.alpha = ToAlphaRule(processor.GetAlphaMode());
    params.alphaProcessed = processor.IsAlphaChannelProcessed() != 0;
    params.dominantIsFront = layers.dominantFront;
    const OverYuvaRow treatPixels = FindOverYuvaRow(fast);
    const vfILRowWalk& back = layers.back;
    const vfILRowWalk& front = layers.front;
    const vfILRowWalk& out = layers.run.output;
    const auto pixels = static_cast<std::size_t>(layers.run.processBox.GetSizeX());
    ForEachRow(processor, layers.run.rows, [&](long row) {
        treatPixels(back.first + row * back.step, back.plane + row * back.planeStep,
                    front.first + row * front.step, front.plane + row * front.planeStep,
                    out.first + row * out.step, out.plane + row * out.planeStep, pixels, params);
    });
    return VFIL_SUCCESS;
}

} // namespace

vfILStatus vfILOverImage::Process8()
{
    return RunOver<std::uint8_t>(*this, Layers(), {GetImgBPremultiplied() != 0, IsBackPremultiplied()},
                                 Poll::Never);
}

vfILStatus vfILOverImage::Process16()
{
    return RunOver<std::uint16_t>(*this, Layers(), {GetImgBPremultiplied() != 0, IsBackPremultiplied()});
}

vfILStatus vfILOverImage::Process8FPBP_MMX()
{
    return RunOver<std::uint8_t>(*this, Layers(), {true, true});
}

vfILStatus vfILOverImage::Process8FNPBP_MMX()
{
    return RunOver<std::uint8_t>(*this, Layers(), {false, true});
}

vfILStatus vfILOverImage::Process8FPBNP_MMX()
{
    return RunOver<std::uint8_t>(*this, Layers(), {true, false});
}

vfILStatus vfILOverImage::Process8FNPBNP_MMX()
{
    return RunOver<std::uint8_t>(*this, Layers(), {false, false});
}

vfILStatus vfILOverImage::Process8FPBPAC()
{
    return RunWholeOver8(*this, Layers(), AlphaRule::Computed);
}

vfILStatus vfILOverImage::Process8FPBPNAC()
{
    return RunWholeOver8(*this, Layers(), ToAlphaRule(GetAlphaMode()));
}

vfILStatus vfILOverImage::DoEffectYUVA422()
{
    if (m_simdAvailable != 0) return ProcessYUVA422_Intrinsics();
    if (GetImgBPremultiplied() != 0 && IsBackPremultiplied() && GetExtraTransparency() == 1.0) {
        return ProcessYUVA422_FPBP();
    }
    return ProcessYUVA422();
}

vfILStatus vfILOverImage::ProcessYUVA422()
{
    return RunOverYuva(*this, Layers(), {GetImgBPremultiplied() != 0, IsBackPremultiplied()}, false);
}

vfILStatus vfILOverImage::ProcessYUVA422_FPBP()
{
    return RunOverYuva(*this, Layers(), {true, true}, false);
}

vfILStatus vfILOverImage::ProcessYUVA422_Intrinsics()
{
    return RunOverYuva(*this, Layers(), {GetImgBPremultiplied() != 0, IsBackPremultiplied()}, true);
}
