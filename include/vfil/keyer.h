/// \file
/// Keyers: what a key colour leaves of a picture. The frame of those with two inputs, and those that make the
/// alpha of RGBA pictures.
#pragma once

#include <vfil/frame.h>

/// What a crop leaves of a run: columns that are skipped at both sides, and the rows that stay, counted in
/// the order in which a run treats them, as half-open intervals from `start` to `end`. An interval of (-1,
/// -1) is empty. The second one serves formats that keep each field in a block of its own.
///
/// The numbers are as the box gives them. One that hangs over the picture makes skips below 0 and intervals
/// beyond their block, which are cut where they are used.
struct vfILKeyerCrop {
    long leftSkip = 0;
    long rightSkip = 0;
    long firstStart = 0;
    long firstEnd = 0;
    long secondStart = 0;
    long secondEnd = 0;
};

/// The frame of the keyers with two inputs: A is looked at, B gives the pixels that are written with the
/// matte (one picture may be both). Which input dominates is the host's to say, as with every operator of two
/// inputs; B is the natural choice, for it is what shows around the region.
///
/// The mask and the mode's channels have no effect on a key. Only the keyers of 4:2:2 video heed the crop.
class VFIL_API vfILKeyerBase : public vfILDyadicPixelProc {
public:
    vfILKeyerBase() = default;
    vfILKeyerBase(const vfILKeyerBase& other) = default;
    vfILKeyerBase& operator=(const vfILKeyerBase& other) = default;
    ~vfILKeyerBase() override;
    /// Adds 0x1000A (the crop box begins left of or below the picture, is wider than it, or begins above it;
    /// its height is not held against anything) and 0x10048 (a component of the key colour outside 0 .. 1).
    vfILStatus Verify() override;

    /// \param box The part of the picture that is keyed, in pixels of input A, rows counted from the lowest.
    /// Default all 0: no crop.
    void SetCropBox(const vfILBbox2l& box);
    const vfILBbox2l& GetCropBox() const;
    /// \param color The colour to remove, each component in 0 .. 1; default (0, 0, 0, 0).
    void SetKeyColor(const vfILColor& color);
    const vfILColor& GetKeyColor() const;

protected:
    /// Calls AdjustCrop, which may refuse, before the frame's own.
    vfILStatus AdjustJumps() override;
    /// Computes Crop() for the rows of the run, before the mode's field bits choose among them.
    virtual vfILStatus AdjustCrop();
    /// What the crop box leaves of this run; of use from AdjustJumps on.
    const vfILKeyerCrop& Crop() const { return m_crop; }

private:
    vfILBbox2l m_cropBox;
    vfILColor m_keyColor{0, 0, 0, 0};
    vfILKeyerCrop m_crop;
    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const;
};
