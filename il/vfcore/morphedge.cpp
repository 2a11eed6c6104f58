/// \file
/// What dilation adds to a picture.

#include "il/loops/morph/morphrun.h"

#include <utility>

using namespace vfil;

const wchar_t* const vfILMorphologicalEdge::m_ClassName = L"vfILMorphologicalEdge";

vfILMorphologicalEdge::vfILMorphologicalEdge()
{
    Init();
    AllowBands();
}

vfILMorphologicalEdge::vfILMorphologicalEdge(const vfILMorphologicalEdge& other)
    : vfILMorphologicalProc(other), m_factory(other.m_factory)
{
    if (m_factory != nullptr) m_factory->AddRef();
}

// NOLINTNEXTLINE(bugprone-unhandled-self-assignment): the new reference is taken before the old one goes
vfILMorphologicalEdge& vfILMorphologicalEdge::operator=(const vfILMorphologicalEdge& other)
{
    vfILMorphologicalProc::operator=(other);
    if (other.m_factory != nullptr) other.m_factory->AddRef();
    IPXImageFactory* const old = std::exchange(m_factory, other.m_factory);
    if (old != nullptr) old->Release();
    return *this;
}

vfILMorphologicalEdge::~vfILMorphologicalEdge()
{
    if (m_factory != nullptr) m_factory->Release();
}

void vfILMorphologicalEdge::Init()
{
    void* factory = nullptr;
    CoGetClassObject(CLSID_PXImage, CLSCTX_INPROC_SERVER, nullptr, IID_IClassFactory, &factory);
    m_factory = static_cast<IPXImageFactory*>(factory);
    if (m_factory == nullptr) Fail(0x10001, "%s:ERROR Init: Cannot get the Image factory\n", GetClassNameW());
}

const wchar_t* vfILMorphologicalEdge::GetClassNameW() const
{
    return m_ClassName;
}

vfILStatus vfILMorphologicalEdge::Verify()
{
    if (vfILMorphologicalProc::Verify() != VFIL_SUCCESS) return VFIL_FAILURE;
    // Rows are all the room that a run takes today. The class still promises its hosts to ask for no less
    // than open and close do.
    if (m_factory == nullptr)
        return Fail(0x10001, "%s:ERROR Verify: Cannot get the Image factory\n", GetClassNameW());
    return VFIL_SUCCESS;
}

vfILStatus vfILMorphologicalEdge::DoEffect()
{
    Element element;
    if (BuildStructuringElement(element) != VFIL_SUCCESS) return VFIL_FAILURE;
    bool done = true;
    PointFormats::Visit(FormatOf(Run()), [&](auto format) {
        using Format = decltype(format);
        using Sample = typename Format::Sample;
        const long samples = Run().processBox.GetSizeX() * Format::kChannels;
        const auto subtractInput = [this, samples](long row, Sample* results) {
            const auto* input = RowOf<const Sample>(Run().centres, row);
            for (long i = 0, count = samples; i < count; ++i)
                results[i] = static_cast<Sample>(std::max(results[i], input[i]) - input[i]);
        };
        done = RunExtremes<Format>(*this, Run(), element.shape, {true, m_simdAvailable != 0, false},
                                   subtractInput);
    });
    if (done) return VFIL_SUCCESS;
    return Fail(0x10001, "%s:ERROR DoEffect: insufficient memory space\n", GetClassNameW());
}
