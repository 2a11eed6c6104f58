/// \file
/// The base of the operators with a structuring element.

#include "il/loops/morph/morphrun.h"

using namespace vfil;

const wchar_t* const vfILMorphologicalProc::m_ClassName = L"vfILMorphologicalProc";

vfILMorphologicalProc::vfILMorphologicalProc() = default;

vfILMorphologicalProc::~vfILMorphologicalProc() = default;

const wchar_t* vfILMorphologicalProc::GetClassNameW() const
{
    return m_ClassName;
}

vfILStatus vfILMorphologicalProc::Verify()
{
    if (VerifyFrame(GetClassNameW()) != VFIL_SUCCESS) return VFIL_FAILURE;
    const bool known =
        m_type == VFIL_STRUCT_RECTANGLE || m_type == VFIL_STRUCT_ELLIPSE || m_type == VFIL_STRUCT_CUSTOM;
    if (!known || (m_type == VFIL_STRUCT_CUSTOM && m_element == nullptr)) {
        return Fail(0x1005B, GetClassNameW());
    }
    if (m_mode != 1 && m_mode != 2) {
        return Fail(0x1005D, GetClassNameW());
    }
    if (m_dontCareCount >= 1) {
        return Fail(0x1005E, GetClassNameW());
    }
    return VFIL_SUCCESS;
}

void vfILMorphologicalProc::SetStructuringElement(vfILStructuralType type, long fill, float rx, float ry,
                                                  long dontCare, long further)
{
    m_type = type;
    m_fill = fill;
    SetRadius(rx, ry);
    m_dontCareCount = dontCare;
    m_further = further;
}

void vfILMorphologicalProc::SetStructuringElement(long* element, long rx, long ry)
{
    m_type = VFIL_STRUCT_CUSTOM;
    m_element = element;
    SetRadius(static_cast<float>(rx), static_cast<float>(ry));
    m_dontCareCount = 0;
    m_further = 0;
}

vfILStructuralType vfILMorphologicalProc::GetStructuringType() const
{
    return m_type;
}

void vfILMorphologicalProc::SetMode(vfILMorphologyMode mode)
{
    m_mode = mode;
}

vfILMorphologyMode vfILMorphologicalProc::GetMode() const
{
    return m_mode;
}

/// A large rectangle or ellipse says no more of the picture than a window of about its size.
vfILStatus vfILMorphologicalProc::PrepareData()
{
    const vfILVector2l radius = WholeRadius();
    return PrepareWindows(m_type == VFIL_STRUCT_CUSTOM
                              ? radius
                              : TaughtRadius({GetEdgeMode(), ViewInput().width, ViewInput().height}, radius));
}

vfILStatus vfILMorphologicalProc::BuildStructuringElement(Element& element)
{
    const vfILVector2l radius = WholeRadius();
    const vfILVector2l window(Run().radiusX, Run().radiusY);
    WindowShape& shape = element.shape;
    bool done = true;
    if (m_type == VFIL_STRUCT_CUSTOM && m_element != nullptr) {
        done = shape.SetEntries(m_element, window);
    } else if (m_type == VFIL_STRUCT_RECTANGLE) {
        if (m_fill != 0) done = shape.SetRectangle(window);
    } else if (m_type == VFIL_STRUCT_ELLIPSE) {
        if (m_fill != 0)
            done = shape.SetEllipse(static_cast<double>(radius[0]), static_cast<double>(radius[1]), window);
    } else {
        return Fail(0x1005D, "%s:ERROR BuildStructuringElement: Invalid structural type specified\n",
                    GetClassNameW());
    }
    if (done) return VFIL_SUCCESS;
    return Fail(0x10001, "%s:ERROR BuildStructuringElement: insufficient memory space\n", GetClassNameW());
}

vfILStatus vfILMorphologicalProc::WriteExtremes(bool largest, const vfILProcessor& polled)
{
    Element element;
    if (BuildStructuringElement(element) != VFIL_SUCCESS) return VFIL_FAILURE;
    bool done = true;
    PointFormats::Visit(FormatOf(Run()), [&](auto format) {
        done = RunExtremes<decltype(format)>(polled, Run(), element.shape,
                                             {largest, m_simdAvailable != 0, Run().streaming},
                                             [](long, auto*) {});
    });
    if (done) return VFIL_SUCCESS;
    return Fail(0x10001, "%s:ERROR DoEffect: insufficient memory space\n", GetClassNameW());
}
