/// \file
/// The frames of one input: the picture, and one output pixel for one input pixel.
#pragma once

#include <vfil/imgproc.h>
#include <vfil/run.h>

/// The frame of one input.
class VFIL_API vfILMonadicImgProc : public vfILImgProc {
public:
    vfILMonadicImgProc();
    vfILMonadicImgProc(const vfILMonadicImgProc& other);
    vfILMonadicImgProc& operator=(const vfILMonadicImgProc& other) = default;
    ~vfILMonadicImgProc() override;
    /// Adds 0x1000B (no input), 0x1000C (input without pixels), 0x1006C (the output is the mask, other than
    /// an input masked by a channel of its own that is not processed), 0x10062 (sizes differ in a top-down
    /// format).
    vfILStatus Verify() override;

    /// \param image Not owned; must outlive the run.
    void SetInputImg(IPXImage* image);
    IPXImage* GetInputImg() const;

private:
    void Init();

    IPXImage* m_inputImg;
    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const;
};

/// The frame of one output pixel for one input pixel. A leaf that overrides only Operation8 and Operation16
/// is a whole operator on RGBA and mono pictures: mask, channel selection, fields and interruption are the
/// frame's.
class VFIL_API vfILMonadicPixelProc : public vfILMonadicImgProc {
public:
    vfILMonadicPixelProc() = default;
    vfILMonadicPixelProc(const vfILMonadicPixelProc& other) = default;
    vfILMonadicPixelProc& operator=(const vfILMonadicPixelProc& other) = default;
    ~vfILMonadicPixelProc() override;
    /// Adds 0x1000E (input and output formats differ).
    vfILStatus Verify() override;

protected:
    /// Fails, before anything is written, with 0x10001 (no memory for a copy of an input that the run would
    /// overwrite) and 0x1000C (the input refuses ReadRegion).
    vfILStatus PrepareData() override;
    vfILStatus ProcessData() override;
    vfILStatus CleanData() override;
    /// Treats the process box. The base applies Operation8 or Operation16 to every sample of an RGBA or mono
    /// picture.
    virtual vfILStatus DoEffect();
    /// Moves the row walks onto the rows that the mode's field bits select.
    virtual vfILStatus AdjustJumps();
    /// One 8-bit sample for one. The base returns its argument.
    virtual unsigned char Operation8(unsigned char value);
    /// One 16-bit sample for one. The base returns its argument.
    virtual unsigned short Operation16(unsigned short value);

    /// The state of the run.
    const vfILPixelRun& Run() const { return m_run; }
    const vfILRowWalk& InputWalk() const { return m_input; }

private:
    vfILPixelRun m_run;
    vfILRowWalk m_input;
    vfILRunBuffer m_buffer;
    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const;
};
