/// \file
/// Erosion and dilation by a structuring element, and what is made of the two.
///
/// Each channel takes the smallest or the largest of the samples below the element's entries. All classes
/// here take RGBA and mono pictures of 8 and 16 bits.
#pragma once

#include <vfil/spatial.h>

/// The shape of a structuring element.
enum vfILStructuralType : int {
    VFIL_STRUCT_RECTANGLE = 1, ///< the whole window
    VFIL_STRUCT_ELLIPSE = 2,   ///< what of the window is in the ellipse of the two whole radii
    VFIL_STRUCT_CUSTOM = 3,    ///< the caller's entries that are not 0
};

/// Of no effect beyond Verify, which takes 1 and 2.
enum vfILMorphologyMode : int {};

/// The base of the operators with a structuring element. A host has to call SetStructuringElement and
/// SetMode: Verify refuses both defaults.
class VFIL_API vfILMorphologicalProc : public vfILMonadicSpatialProc {
public:
    vfILMorphologicalProc();
    vfILMorphologicalProc(const vfILMorphologicalProc& other) = default;
    vfILMorphologicalProc& operator=(const vfILMorphologicalProc& other) = default;
    ~vfILMorphologicalProc() override;
    /// Adds 0x1000D (a format that is neither RGBA nor mono), 0x1005B (the element's type, or a null
    /// element), 0x1005D (mode), 0x1005E (a don't-care count above 0).
    vfILStatus Verify() override;

    /// A rectangle or an ellipse. With a fill of 0 the element is empty, and the output is the input.
    ///
    /// \param rx        As in SetRadius, and so is \p ry; the element takes the whole parts.
    /// \param dontCare  A count that Verify wants below 1.
    /// \param further   Stored, of no effect.
    void SetStructuringElement(vfILStructuralType type, long fill, float rx, float ry, long dontCare,
                               long further);
    /// An element of the caller's, who keeps it until the last run is over.
    ///
    /// \param element  (2 rx + 1) * (2 ry + 1) entries by rows, the row of the lowest y first. Any value but
    /// 0
    ///                 is in the element. A later SetRadius needs an array of that size.
    void SetStructuringElement(long* element, long rx, long ry);
    vfILStructuralType GetStructuringType() const;
    void SetMode(vfILMorphologyMode mode);
    vfILMorphologyMode GetMode() const;

protected:
    class Element; ///< the element's shape in a run
    class Stage;   ///< an operator within an operator

    vfILStatus PrepareData() override;
    /// What the type and the radii say. Fails with 0x1005D for an unknown type, and with 0x10001.
    vfILStatus BuildStructuringElement(Element& element);
    /// Writes the smallest or the largest samples below the element. The interrupt is \p polled's.
    vfILStatus WriteExtremes(bool largest, const vfILProcessor& polled);

private:
    const long* m_element = nullptr; ///< the caller's
    long m_fill = 0;
    vfILStructuralType m_type{};
    vfILMorphologyMode m_mode{};
    long m_dontCareCount = 0;
    long m_further = 0;
    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const;
};

/// The smallest samples below the element: dark parts grow.
class VFIL_API vfILErodeImg : public vfILMorphologicalProc {
public:
    vfILErodeImg();

protected:
    vfILStatus DoEffect() override;
};

/// The largest samples below the element: bright parts grow.
class VFIL_API vfILDilateImg : public vfILMorphologicalProc {
public:
    vfILDilateImg();

protected:
    vfILStatus DoEffect() override;
};

/// The base of two stages with the same element: the first makes a picture of the input's size, from the
/// host's picture class (CLSID_PXImage), to which the edge mode applies again. Mask and channel selection mix
/// the second stage's result with the input.
class VFIL_API vfILMorphologicalChain : public vfILMorphologicalProc {
public:
    vfILMorphologicalChain(const vfILMorphologicalChain& other);
    vfILMorphologicalChain& operator=(const vfILMorphologicalChain& other);
    ~vfILMorphologicalChain() override;

protected:
    explicit vfILMorphologicalChain(bool firstLargest);
    /// Runs the first stage. Fails with 0x10001 when the picture cannot be had.
    vfILStatus PrepareData() override;
    vfILStatus CleanData() override;
    vfILStatus DoEffect() override;

private:
    vfILStatus CreateIntermediate();
    vfILStatus RunFirstStage();

    bool m_firstLargest;
    IPXImage* m_intermediate = nullptr;
    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const;
};

/// Erosion, then dilation: removes bright parts that the element does not fit in.
class VFIL_API vfILOpenImg : public vfILMorphologicalChain {
public:
    vfILOpenImg();
};

/// Dilation, then erosion: removes dark parts that the element does not fit in.
class VFIL_API vfILCloseImg : public vfILMorphologicalChain {
public:
    vfILCloseImg();
};

/// How much dilation brightens a sample; 0 where it darkens one, which an element without its centre can.
class VFIL_API vfILMorphologicalEdge : public vfILMorphologicalProc {
public:
    /// Gets the host's factory of pictures, and stores 0x10001 when there is none.
    vfILMorphologicalEdge();
    vfILMorphologicalEdge(const vfILMorphologicalEdge& other);
    vfILMorphologicalEdge& operator=(const vfILMorphologicalEdge& other);
    ~vfILMorphologicalEdge() override;
    /// Adds 0x10001: there was no factory of pictures at construction.
    vfILStatus Verify() override;

protected:
    vfILStatus DoEffect() override;

private:
    void Init();

    IPXImageFactory* m_factory = nullptr;
    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const;
};
