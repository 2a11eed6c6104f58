/// \file
/// Two operators with the same structuring element, one after the other.

#include "il/loops/frame/imageview.h"
#include "il/loops/morph/morphrun.h"

#include <limits>

using namespace vfil;

/// Works for another operator, whose parameters it takes and whose interrupt stops it.
class vfILMorphologicalProc::Stage : public vfILMorphologicalProc {
public:
    Stage(vfILMorphologicalProc& owner, bool largest)
        : vfILMorphologicalProc(owner), m_owner(owner), m_largest(largest)
    {
        m_simdAvailable = owner.m_simdAvailable;
        Run() = {};
        AllowBands();
    }

    /// Mixes the results with the owner's input instead of this stage's. Both treat the same box.
    void MixWithOwnersInput() { m_ownersInput = true; }
    /// Runs, and leaves what it fails with to the owner. The owner is stopped where this was.
    vfILStatus RunForOwner()
    {
        const vfILStatus status = Execute();
        if (status == VFIL_SUCCESS) {
            m_owner.Run().stopped = m_stopped;
            return VFIL_SUCCESS;
        }
        const unsigned long code = GetLastError().GetErrorCode();
        return m_largest
                   ? m_owner.Fail(code,
                                  "vfILDilateImg::Execute - Morphological processor execution failed!!!",
                                  m_owner.GetClassNameW())
                   : m_owner.Fail(code, "vfILErodeImg::Execute - Morphological processor execution failed!!!",
                                  m_owner.GetClassNameW());
    }

protected:
    vfILStatus DoEffect() override
    {
        if (m_ownersInput) {
            const vfILWindowRun& owners = m_owner.Run();
            const long above = Run().processBox.GetOffsetY() - owners.processBox.GetOffsetY();
            Run().centres = owners.centres;
            Run().centres.first += above * owners.centres.step;
        }
        Run().channels = m_owner.Run().channels;
        const vfILStatus status = WriteExtremes(m_largest, m_owner);
        m_stopped = Run().stopped;
        return status;
    }

private:
    vfILMorphologicalProc& m_owner;
    bool m_largest;
    bool m_ownersInput = false;
    bool m_stopped = false;
};

const wchar_t* const vfILMorphologicalChain::m_ClassName = L"vfILMorphologicalChain";

vfILMorphologicalChain::vfILMorphologicalChain(bool firstLargest) : m_firstLargest(firstLargest)
{}

vfILMorphologicalChain::vfILMorphologicalChain(const vfILMorphologicalChain& other)
    : vfILMorphologicalProc(other), m_firstLargest(other.m_firstLargest)
{}

// NOLINTNEXTLINE(bugprone-unhandled-self-assignment): no member of this class is assigned
vfILMorphologicalChain& vfILMorphologicalChain::operator=(const vfILMorphologicalChain& other)
{
    // The picture belongs to a run, and the order of the stages to the class.
    vfILMorphologicalProc::operator=(other);
    return *this;
}

vfILMorphologicalChain::~vfILMorphologicalChain() = default;

const wchar_t* vfILMorphologicalChain::GetClassNameW() const
{
    return m_ClassName;
}

vfILStatus vfILMorphologicalChain::PrepareData()
{
    // Nothing here reads the neighbours of the input's pixels: the stages do.
    const vfILStatus status = PrepareWindows({0, 0});
    if (status != VFIL_SUCCESS || Run().maskedBox.IsNull()) return status;
    return CreateIntermediate() == VFIL_SUCCESS ? RunFirstStage() : VFIL_FAILURE;
}

vfILStatus vfILMorphologicalChain::CreateIntermediate()
{
    const ImageView input(GetInputImg());
    const GUID format = FormatOf(GetInputImg());
    void* picture = nullptr;
    CoCreateInstance(CLSID_PXImage, nullptr, CLSCTX_INPROC_SERVER, IID_IPXImage, &picture);
    m_intermediate = static_cast<IPXImage*>(picture);
    if (m_intermediate == nullptr || FAILED(m_intermediate->SetFormat(&format)) ||
        FAILED(m_intermediate->SetDimensions(input.width, input.height))) {
        return Fail(0x10001, "%s:ERROR DoEffect: insufficient memory space\n", GetClassNameW());
    }
    return VFIL_SUCCESS;
}

vfILStatus vfILMorphologicalChain::RunFirstStage()
{
    constexpr long kEverywhere = std::numeric_limits<std::int32_t>::max();
    Stage stage(*this, m_firstLargest);
    stage.SetOutputImg(m_intermediate);
    stage.SetROI(ImageView(GetInputImg()).Box());
    stage.SetOutputOffset({0, 0});
    stage.SetMask({0, 0, kEverywhere, kEverywhere}, nullptr, PXImageChannel_MONO);
    return stage.RunForOwner();
}

vfILStatus vfILMorphologicalChain::DoEffect()
{
    if (Run().stopped) return VFIL_SUCCESS;
    const vfILBbox2l& target = Run().processBox;
    Stage stage(*this, !m_firstLargest);
    stage.SetInputImg(m_intermediate);
    stage.SetROI(Run().maskedBox);
    stage.SetOutputOffset({target.GetOffsetX(), target.GetOffsetY()});
    stage.SetProcessingMode(GetProcessingMode());
    stage.MixWithOwnersInput();
    return stage.RunForOwner();
}

vfILStatus vfILMorphologicalChain::CleanData()
{
    if (m_intermediate != nullptr) m_intermediate->Release();
    m_intermediate = nullptr;
    return vfILMorphologicalProc::CleanData();
}
