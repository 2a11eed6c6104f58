/// \file
/// What the edge filters share.

#include "il/loops/edge/edgerun.h"

using namespace vfil;

vfILEdgeProc::vfILEdgeProc()
{
    Init();
}

void vfILEdgeProc::Init()
{
    SetRadius(1.0F);
    AllowBands();
}

/// The kernels read 3 x 3 samples: a host's own radius must not give them fewer, nor move them.
vfILStatus vfILEdgeProc::PrepareData()
{
    return PrepareWindows({1, 1});
}

void vfILEdgeThresholdProc::SetBias(double bias)
{
    m_bias = bias;
}

double vfILEdgeThresholdProc::GetBias() const
{
    return m_bias;
}

void vfILEdgeThresholdProc::SetEdgeSensitivity(double sensitivity)
{
    m_edgeSensitivity = sensitivity;
}

double vfILEdgeThresholdProc::GetEdgeSensitivity() const
{
    return m_edgeSensitivity;
}

vfILStatus vfILEdgeThresholdProc::VerifyBias(const wchar_t* className)
{
    if (m_bias >= 0 && m_bias <= 1) return VFIL_SUCCESS;
    return Fail(0x10029, "%s ERROR Verify: Bias value is not in range [0..1]\n", className);
}

vfILStatus vfILEdgeThresholdProc::VerifySensitivity(const wchar_t* className)
{
    if (m_edgeSensitivity >= 0 && m_edgeSensitivity <= 1) return VFIL_SUCCESS;
    return Fail(0x1002A, "%s ERROR Verify: Edge sensitivity is not in range [0..1]\n", className);
}

vfILStatus vfILEdgeDetectProc::Verify()
{
    if (VerifyFrame(GetClassNameW()) != VFIL_SUCCESS) return VFIL_FAILURE;
    if (m_type != VFIL_EDGE_MAGNITUDE && m_type != VFIL_EDGE_ANGLE) {
        return Fail(0x10049, "%s ERROR Verify: Type of edge detection is unknown\n", GetClassNameW());
    }
    if (VerifyBias(GetClassNameW()) != VFIL_SUCCESS) return VFIL_FAILURE;
    return VerifySensitivity(GetClassNameW());
}

void vfILEdgeDetectProc::SetType(vfILEdgeDetectType type)
{
    m_type = type;
}

vfILEdgeDetectType vfILEdgeDetectProc::GetType() const
{
    return m_type;
}

namespace vfil {

EdgeOps CompassOps(std::uint32_t directions)
{
    EdgeOps ops{{}, 0};
    for (std::size_t i = 0; i < kToOpposite; ++i) {
        const bool ahead = (directions >> i & 1U) != 0;
        const bool back = (directions >> (i + kToOpposite) & 1U) != 0;
        if (!ahead && !back) continue;
        const std::size_t way = !ahead ? kToOpposite : back ? kToPair : 0;
        ops.op[ops.count++] = static_cast<EdgeOp>(i + way);
    }
    return ops;
}

namespace {

/// \p makeRow(windows, results, samples) for each row, the windows being of the format's sample.
template <class MakeRow>
void RunRows(const EdgeRun& run, MakeRow makeRow)
{
    PointFormats::Visit(run.format, [&](auto format) {
        using Format = decltype(format);
        const auto samples =
            static_cast<std::size_t>(run.windows.processBox.GetSizeX()) * std::size_t{Format::kChannels};
        RunWindowRows<Format>(run.processor, run.windows, [&](long row, typename Format::Sample* results) {
            makeRow(WindowsOfRow<Format>(run.windows.windows, row), results, samples);
        });
    });
}

} // namespace

vfILStatus RunEdges(const EdgeRun& run, const EdgeOps& ops, double sensitivity, double bias)
{
    RunRows(run, [&]<class Sample>(const EdgeWindow<Sample>& windows, Sample* results, std::size_t samples) {
        EdgeParams<Sample> params = ThresholdOf<Sample>(sensitivity, bias);
        params.raise = ops.count != 1;
        if (params.raise) std::fill_n(results, samples, Sample{0});
        for (std::size_t i = 0; i < ops.count; ++i)
            FindEdgeRow<Sample>(run.useVectors, ops.op[i])(windows, results, samples, params);
    });
    return VFIL_SUCCESS;
}

vfILStatus RunAngle(const EdgeRun& run, AngleOp op)
{
    RunRows(run, [&]<class Sample>(const EdgeWindow<Sample>& windows, Sample* results, std::size_t samples) {
        FindAngleRow<Sample>(run.useVectors, op)(windows, results, samples);
    });
    return VFIL_SUCCESS;
}

} // namespace vfil
