/// \file
/// Filters that replace a pixel by one of its neighbours, chosen by the rank of its brightness.
///
/// The window is the ellipse of the two radii, fractions included; by default 1, which is a cross of five
/// pixels. A pixel is copied whole, so that no new colours appear. Brightness is (29 R + 57 G + 11 B) / 97,
/// truncated, of RGBA pixels, and the sample of mono ones. All classes here take RGBA and mono pictures of 8
/// and 16 bits.
#pragma once

#include <vfil/spatial.h>

/// The brightest pixel, of several the first by rows, lowest y first.
class VFIL_API vfILMaxRankImg : public vfILMonadicSpatialProc {
public:
    vfILMaxRankImg();
    /// Adds 0x1000D (a format that is neither RGBA nor mono).
    vfILStatus Verify() override;

protected:
    vfILStatus PrepareData() override;
    vfILStatus DoEffect() override;

private:
    // Each treats the pictures of its samples' size, and leaves the others alone. False when memory is short.
    bool MaxRank8();
    bool MaxRank16();
    vfILStatus OutOfMemory();

    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const;
};

/// The darkest pixel, of several the first by rows, lowest y first.
class VFIL_API vfILMinRankImg : public vfILMonadicSpatialProc {
public:
    vfILMinRankImg();
    /// Adds 0x1000D (a format that is neither RGBA nor mono).
    vfILStatus Verify() override;

protected:
    vfILStatus PrepareData() override;
    vfILStatus DoEffect() override;

private:
    // Each treats the pictures of its samples' size, and leaves the others alone. False when memory is short.
    bool MinRank8();
    bool MinRank16();
    vfILStatus OutOfMemory();

    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const;
};

/// The pixel whose brightness is at position count / 2 of the window's, in ascending order. Of several pixels
/// of that brightness it is the one that a selection sort from the bright end leaves there, which takes the
/// last of equal pixels first.
class VFIL_API vfILMedianRankImg : public vfILMonadicSpatialProc {
public:
    vfILMedianRankImg();
    /// Adds 0x1000D (a format that is neither RGBA nor mono).
    vfILStatus Verify() override;

protected:
    vfILStatus DoEffect() override;

private:
    // Each treats the pictures of its samples' size, and leaves the others alone. False when memory is short.
    bool MedianRank8();
    bool MedianRank16();

    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const;
};

/// The median where the pixel's brightness is far from the median's, else the pixel.
class VFIL_API vfILSelectiveRankImg : public vfILMonadicSpatialProc {
public:
    vfILSelectiveRankImg();
    /// Adds 0x1000D (a format that is neither RGBA nor mono), 0x10046 (threshold).
    vfILStatus Verify() override;

    /// \param threshold  The difference that is still kept, of the full brightness, rounded to a brightness.
    ///                   Default 0.1. Verify refuses values outside 0 .. 1 and NaN (0x10046).
    void SetThreshold(double threshold);
    double GetThreshold() const;

protected:
    vfILStatus DoEffect() override;

private:
    // Each treats the pictures of its samples' size, and leaves the others alone. False when memory is short.
    bool Process8();
    bool Process16();

    double m_threshold = 0.1;
    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const;
};
