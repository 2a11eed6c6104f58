/// \file
/// The frames of two inputs: the pictures, and one output pixel for two input pixels.
#pragma once

#include <vfil/imgproc.h>
#include <vfil/run.h>

/// The frame of two inputs. A lies at (0, 0) of the working plane, B at the input offset. Where they do not
/// overlap the dominant input shows.
class VFIL_API vfILDyadicImgProc : public vfILImgProc {
public:
    vfILDyadicImgProc();
    vfILDyadicImgProc(const vfILDyadicImgProc& other);
    vfILDyadicImgProc& operator=(const vfILDyadicImgProc& other) = default;
    ~vfILDyadicImgProc() override;
    /// Adds 0x10013 .. 0x10016 (A or B missing or without pixels), 0x10017 (the dominant input is neither),
    /// 0x1006C (the output is the mask), 0x10062 and 0x10061 (a top-down format takes equal sizes and no
    /// input offset).
    vfILStatus Verify() override;

    /// \param image Not owned; must outlive the run. A later input of the same kind replaces it.
    void SetInputImgA(IPXImage* image);
    IPXImage* GetInputImgA() const;
    void SetInputImgB(IPXImage* image);
    IPXImage* GetInputImgB() const;
    /// \param image A or B, by the pointer. A picture that is both counts as A.
    void SetDominantInput(IPXImage* image);
    IPXImage* GetDominantInput() const;
    /// \param offset The position of B relative to A; default (0, 0).
    void SetInputOffset(const vfILVector2l& offset);
    const vfILVector2l& GetInputOffset() const;

private:
    void Init();
    vfILStatus VerifyOwnMask();
    vfILStatus VerifyTopDownInputs();

    IPXImage* m_inputImgA;
    IPXImage* m_inputImgB;
    IPXImage* m_dominantInput;
    vfILVector2l m_inputOffset;
    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const;
};

/// What an operator of two layers knows of its run: A is the back, B the front.
struct vfILLayerRun {
    const vfILPixelRun& run;
    const vfILRowWalk& back;
    const vfILRowWalk& front;
    bool dominantFront; ///< B is dominant
    bool fast;          ///< the fast forms of the row loops may be used
};

/// The frame of one output pixel for two input pixels.
class VFIL_API vfILDyadicPixelProc : public vfILDyadicImgProc {
public:
    vfILDyadicPixelProc() = default;
    vfILDyadicPixelProc(const vfILDyadicPixelProc& other) = default;
    vfILDyadicPixelProc& operator=(const vfILDyadicPixelProc& other) = default;
    ~vfILDyadicPixelProc() override;
    /// Adds 0x1000E (an input's format differs from the output's).
    vfILStatus Verify() override;

protected:
    /// Fails, before anything is written, with 0x10001 (no memory for a copy of an input that the run would
    /// overwrite) and 0x10015 or 0x10016 (A or B refuses ReadRegion).
    vfILStatus PrepareData() override;
    vfILStatus ProcessData() override;
    vfILStatus CleanData() override;
    /// Moves the row walks onto the rows that the mode's field bits select.
    virtual vfILStatus AdjustJumps();
    /// Treats the process box. The base applies Operation8 or Operation16 to the samples of RGBA or mono
    /// pictures; unselected channels and a mask of 0 take A.
    virtual vfILStatus DoEffect();
    /// The base returns \p a.
    virtual unsigned char Operation8(unsigned char a, unsigned char b);
    virtual unsigned short Operation16(unsigned short a, unsigned short b);

    /// The state of the run.
    const vfILPixelRun& Run() const { return m_run; }
    vfILLayerRun Layers() const;

private:
    bool IsDominantB() const;

    vfILPixelRun m_run;
    vfILRowWalk m_inputA;
    vfILRowWalk m_inputB;
    vfILRunBuffer m_bufferA;
    vfILRunBuffer m_bufferB;
    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const;
};
