/// \file
/// Sharpening by a kernel, everywhere or at edges.

#include "il/loops/edge/edgerun.h"
#include "il/loops/frame/copyinstead.h"
#include "il/loops/frame/ellipse.h"
#include "il/loops/frame/imageview.h"

#include <algorithm>

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
    if (VerifyFrame(GetClassNameW()) != VFIL_SUCCESS) return VFIL_FAILURE;
    if (!HasImageFactory()) {
        return Fail(0x10001, "%s ERROR Verify: Cannot get the image factory\n", GetClassNameW());
    }
    if (m_type != VFIL_SHARPEN_PLAIN && m_type != VFIL_SHARPEN_EDGES) {
        return Fail(0x10025, GetClassNameW());
    }
    if (!(m_degree >= 0 && m_degree <= 1)) {
        return Fail(0x10026, "%s ERROR Verify: Degree of sharpening is not in range [0..1]\n",
                    GetClassNameW());
    }
    if (!(m_edgeSensitivity >= 0 && m_edgeSensitivity <= 1)) {
        return Fail(0x1002A, GetClassNameW());
    }
    return VFIL_SUCCESS;
}

vfILStatus vfILSharpenImg::PrepareData()
{
    vfILVector2l window = WholeRadius();
    // Room for what finds the edges; the ellipse stays.
    if (m_type != VFIL_SHARPEN_PLAIN) window = vfILVector2l(std::max(window[0], 1), std::max(window[1], 1));
    if (BuildKernel(window) != VFIL_SUCCESS) return VFIL_FAILURE;
    return PrepareWindows(window);
}

vfILStatus vfILSharpenImg::CleanData()
{
    m_kernelBuffer.Free();
    m_runKernel = nullptr;
    return vfILConvolveImg::CleanData();
}

/// Fills a window with the inverted disc of the radius. A negative window is left to the frame.
vfILStatus vfILSharpenImg::BuildKernel(const vfILVector2l& windowRadius)
{
    if (windowRadius[0] < 0 || windowRadius[1] < 0) return VFIL_SUCCESS;
    const std::size_t count = CountWindow(windowRadius, sizeof(float));
    if (count != 0) m_runKernel = reinterpret_cast<float*>(m_kernelBuffer.Allocate(count * sizeof(float)));
    if (m_runKernel == nullptr) {
        return Fail(0x10001, "%s ERROR BuildKernel: insufficient memory space\n", GetClassNameW());
    }
    const auto inside =
        static_cast<double>(FillEllipse(m_runKernel, windowRadius, {GetRadiusX(), GetRadiusY()}, -m_degree));
    m_runKernel[count / 2] = static_cast<float>((inside - 1) * double{m_degree} + 1.0);
    return VFIL_SUCCESS;
}

vfILStatus vfILSharpenImg::DoEffect()
{
    return m_type == VFIL_SHARPEN_PLAIN ? SinglePassConvolve(Run(), m_runKernel) : Esharpen();
}

/// Convolves all of the process box into a buffer, from which the edges then take theirs.
vfILStatus vfILSharpenImg::Esharpen()
{
    vfILWindowRun everywhere = Run();
    const vfILBbox2l& box = everywhere.processBox;
    const std::ptrdiff_t rowBytes =
        std::ptrdiff_t{box.GetSizeX()} * ImageView(everywhere.picture).RowPixelBytes();
    vfILRunBuffer buffer;
    unsigned char* pixels = buffer.Allocate(static_cast<std::size_t>(rowBytes * box.GetSizeY()));
    if (pixels == nullptr) {
        return Fail(0x10001, "%s ERROR ESharpen: insufficient memory space\n", GetClassNameW());
    }
    everywhere.output = {pixels, rowBytes, nullptr, 0};
    everywhere.mask = {};
    everywhere.channels = VFIL_MODE_RGBA;
    if (SinglePassConvolve(everywhere, m_runKernel) != VFIL_SUCCESS) return VFIL_FAILURE;
    Run().stopped = everywhere.stopped;
    if (!everywhere.stopped)
        SelectAtEdges({*this, Run(), FormatOf(Run()), m_simdAvailable != 0}, everywhere.output,
                      m_edgeSensitivity);
    return VFIL_SUCCESS;
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
