/// \file
/// Sharpening by a kernel, everywhere or at edges.

#include "il/loops/edge/edgerun.h"
#include "il/loops/frame/copyinstead.h"
#include "il/loops/frame/imageview.h"
#include "il/loops/frame/saturate.h"

#include <algorithm>
#include <limits>
#include <utility>

using namespace vfil;

namespace {

/// The host can make pictures.
bool HasImageFactory()
{
    void* factory = nullptr;
    CoGetClassObject(CLSID_PXImage, CLSCTX_INPROC_SERVER, nullptr, IID_IClassFactory, &factory);
    if (factory == nullptr) return false;
    static_cast<IPXImageFactory*>(factory)->Release();
    return true;
}

/// Puts the sharpened sample where the result so far is an edge, and the centre elsewhere. Both are read
/// before the choice, so that the loop becomes one of vectors.
template <class Sample>
void TakeAtEdges(const Sample* sharpened, const Sample* centres, Sample* results, std::size_t samples)
{
    for (std::size_t i = 0; i < samples; ++i) {
        const Sample sharp = sharpened[i];
        const Sample centre = centres[i];
        results[i] = results[i] != 0 ? sharp : centre;
    }
}

} // namespace

const wchar_t* const vfILSharpenImg::m_ClassName = L"vfILSharpenImg";

const wchar_t* vfILSharpenImg::GetClassNameW() const
{
    return m_ClassName;
}

vfILSharpenImg::~vfILSharpenImg() = default;

vfILStatus vfILSharpenImg::Execute()
{
    const bool reaches = GetRadiusX() >= 1 || GetRadiusY() >= 1;
    return m_degree != 0 && reaches ? vfILConvolveImg::Execute() : CopyInstead(*this);
}

vfILStatus vfILSharpenImg::Verify()
{
    float weight = 1; // for a kernel, which is made by the run
    SetKernel(&weight, GetRadius());
    const vfILStatus status = vfILConvolveImg::Verify();
    SetKernel(nullptr, GetRadius());
    if (status != VFIL_SUCCESS) return status;
    if (!HasImageFactory()) {
        return Fail(0x10001, "%s ERROR Verify: Cannot get the image factory\n", GetClassNameW());
    }
    if (m_type != VFIL_SHARPEN_PLAIN && m_type != VFIL_SHARPEN_EDGES) {
        return Fail(0x10025, "%s ERROR Verify: Type of sharpening is unknown\n", GetClassNameW());
    }
    if (!(m_degree >= 0 && m_degree <= 1)) {
        return Fail(0x10026, "%s ERROR Verify: Degree of sharpening is not in range [0..1]\n",
                    GetClassNameW());
    }
    if (!(m_edgeSensitivity >= 0 && m_edgeSensitivity <= 1)) {
        return Fail(0x1002A, "%s ERROR Verify: Edge sensitivity is not in range [0..1]\n", GetClassNameW());
    }
    return VFIL_SUCCESS;
}

vfILStatus vfILSharpenImg::PrepareData()
{
    const vfILVector2f radius = GetRadius();
    vfILVector2f windowRadius = radius;
    if (m_type != VFIL_SHARPEN_PLAIN) { // room for what finds the edges; the ellipse stays
        const auto reachOne = [](float r) { return r >= 1 ? r : 1.0F; };
        windowRadius = vfILVector2f(reachOne(radius[0]), reachOne(radius[1]));
    }
    if (BuildKernel(windowRadius) != VFIL_SUCCESS) return VFIL_FAILURE;
    SetRadius(windowRadius);
    const vfILStatus status = vfILConvolveImg::PrepareData();
    SetRadius(radius);
    return status;
}

vfILStatus vfILSharpenImg::CleanData()
{
    SetKernel(nullptr, GetRadius());
    m_kernelBuffer.Free();
    return vfILConvolveImg::CleanData();
}

/// Fills a window with the inverted disc of the radius. A negative or too large radius is left to the frame.
vfILStatus vfILSharpenImg::BuildKernel(const vfILVector2f& windowRadius)
{
    const std::int64_t rx = TruncateToInt32(windowRadius[0]);
    const std::int64_t ry = TruncateToInt32(windowRadius[1]);
    if (rx < 0 || ry < 0) return VFIL_SUCCESS;
    constexpr auto kMost = std::numeric_limits<std::ptrdiff_t>::max() / std::ptrdiff_t{sizeof(float)};
    const bool fits = 2 * rx + 1 <= kMost / (2 * ry + 1);
    const std::int64_t count = fits ? (2 * rx + 1) * (2 * ry + 1) : kMost;
    auto* kernel =
        reinterpret_cast<float*>(m_kernelBuffer.Allocate(static_cast<std::size_t>(count) * sizeof(float)));
    if (kernel == nullptr) {
        return Fail(0x10001, "%s ERROR BuildKernel: insufficient memory space\n", GetClassNameW());
    }
    const float squareX = GetRadiusX() * GetRadiusX();
    const float squareY = GetRadiusY() * GetRadiusY();
    std::int64_t inside = 0;
    float* weight = kernel;
    for (std::int64_t y = -ry; y <= ry; ++y)
        for (std::int64_t x = -rx; x <= rx; ++x) {
            const auto fx = static_cast<float>(x);
            const auto fy = static_cast<float>(y);
            const bool isInside = fx * fx * squareY + fy * fy * squareX <= squareX * squareY;
            *weight++ = isInside ? -m_degree : 0.0F;
            inside += isInside;
        }
    kernel[count / 2] = static_cast<float>(static_cast<double>(inside - 1) * double{m_degree} + 1.0);
    SetKernel(kernel, GetRadius());
    return VFIL_SUCCESS;
}

vfILStatus vfILSharpenImg::DoEffect()
{
    return m_type == VFIL_SHARPEN_PLAIN ? vfILConvolveImg::DoEffect() : Esharpen();
}

/// Convolves all of the process box into a buffer, from which the edges then take theirs.
vfILStatus vfILSharpenImg::Esharpen()
{
    vfILWindowRun& run = Run();
    const vfILBbox2l& box = run.processBox;
    const std::ptrdiff_t rowBytes =
        std::ptrdiff_t{box.GetSizeX()} * ImageView(GetOutputImg()).RowPixelBytes();
    vfILRunBuffer buffer;
    unsigned char* pixels = buffer.Allocate(static_cast<std::size_t>(rowBytes * box.GetSizeY()));
    if (pixels == nullptr) {
        return Fail(0x10001, "%s ERROR ESharpen: insufficient memory space\n", GetClassNameW());
    }
    const vfILRowWalk sharpened{pixels, rowBytes, nullptr, 0};
    const vfILRowWalk output = std::exchange(run.output, sharpened);
    const vfILRowWalk mask = std::exchange(run.mask, {});
    const unsigned long mode = GetProcessingMode();
    SetProcessingMode(mode | VFIL_MODE_RGBA);
    const vfILStatus status = vfILConvolveImg::DoEffect();
    SetProcessingMode(mode);
    run.output = output;
    run.mask = mask;
    if (status == VFIL_SUCCESS && !run.stopped) SelectEdges(sharpened);
    return status;
}

void vfILSharpenImg::SelectEdges(const vfILRowWalk& sharpened)
{
    PointFormats::Visit(OutputFormat(), [&](auto format) {
        using Format = decltype(format);
        using Sample = typename Format::Sample;
        vfILWindowRun& run = Run();
        vfILRowWalk corners = run.centres; // of the windows of 3 x 3
        corners.first -= corners.step + std::ptrdiff_t{sizeof(Sample)} * Format::kChannels;
        const auto findEdges = FindEdgeRow<Sample>(m_simdAvailable != 0, EdgeOp::Sobel);
        const auto threshold = ThresholdOf<Sample>(m_edgeSensitivity, 0.0);
        const auto samples = static_cast<std::size_t>(run.processBox.GetSizeX() * Format::kChannels);
        RunWindowRows<Format>(*this, run, [&](long row, Sample* results) {
            findEdges(WindowsOfRow<Format>(corners, row), results, samples, threshold);
            TakeAtEdges(RowOf<const Sample>(sharpened, row), RowOf<const Sample>(run.centres, row), results,
                        samples);
        });
    });
}

int vfILSharpenImg::IsKernelSeparable()
{
    return 0;
}

void vfILSharpenImg::SetType(vfILSharpenType type)
{
    m_type = type;
}

vfILSharpenType vfILSharpenImg::GetType() const
{
    return m_type;
}

void vfILSharpenImg::SetDegree(float degree)
{
    m_degree = degree;
}

float vfILSharpenImg::GetDegree() const
{
    return m_degree;
}

void vfILSharpenImg::SetEdgeSensitivity(double sensitivity)
{
    m_edgeSensitivity = sensitivity;
}

double vfILSharpenImg::GetEdgeSensitivity() const
{
    return m_edgeSensitivity;
}
