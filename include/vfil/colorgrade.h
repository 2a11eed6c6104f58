/// \file
/// Colour ramps.
#pragma once

#include <vfil/imgproc.h>
#include <vfil/run.h>

/// How a ramp runs over the picture.
enum vfILRampType : int {
    VFIL_RAMP_LINEAR = 1, ///< along a vector
    VFIL_RAMP_RADIAL = 2, ///< away from a point
    VFIL_RAMP_SQUARE = 3, ///< between four corners
};

/// Paints a ramp of colours over the region of its output; it has no input. RGBA and mono, 8 and 16 bits;
/// mono takes the red channel.
///
/// Linear and radial ramps go through colour stops of weights 0 .. 99, hundredths of the way: with n colours,
/// as many as the length of the vector rounded up, the stop of weight w is number n * w / 100. Before the
/// first stop and behind the last the colour is theirs. Without a stop the ramp is opaque black; with one it
/// has that colour. Samples are rounded half to even, but half away from zero where there is no run.
/// Coordinates are those of the region of interest, y up. The mask is of no use here, nor is the default
/// colour. All channels are processed, which is the default here.
class VFIL_API vfILColorGradeImg : public vfILImgProc {
public:
    vfILColorGradeImg();
    /// Copies the parameters and stops.
    vfILColorGradeImg(const vfILColorGradeImg& other);
    vfILColorGradeImg& operator=(const vfILColorGradeImg& other);
    ~vfILColorGradeImg() override;
    /// Runs Verify, PrepareData and ProcessData, and CleanData in every case. Fails with 0x10001 when there
    /// is no memory for a row and the table of colours, or when that would have more than 2 to the power
    /// of 26.
    vfILStatus Execute() override;
    /// Fails with, in this order, 0x20002 (not all channels are selected), 0x10002 and 0x10003 (no output, or
    /// one without pixels), 0x1000D (a format that is neither RGBA nor mono), 0x1000A (the region hangs over
    /// the output), 0x1003E (an unknown type), 0x1003F (a linear vector of no length; a radial one that is
    /// shorter than 2 along both axes), 0x10045 (a ratio not above 0), 0x10047 (an invert flag other than 0
    /// and 1), 0x10041, 0x10042, 0x10043, 0x10040 (a component outside 0 .. 1 of the lower left, lower right,
    /// upper right, upper left colour), 0x10044 (of a stop's).
    vfILStatus Verify() override;

    vfILRampType GetType() const;
    /// Default VFIL_RAMP_LINEAR.
    void SetType(vfILRampType type);
    /// Puts a stop, in the place of one of the same weight.
    /// \param weight 0 .. 99; others are ignored.
    void SetColor(vfILColor color, long weight);
    /// \return the colour of a stop; opaque black where there is none
    vfILColor GetColor(long weight) const;
    /// \return 1 when there was a stop; else 0
    int DelColor(long weight);
    /// \return 1 when there is a stop of this weight; else 0
    int IsWeightOccupied(long weight) const;
    /// (x, y) is where the ramp begins, or its centre; (dx, dy) its direction and length, which is the radius
    /// of a radial one. All 0 by default. Numbers beyond 32 bits saturate.
    void SetVector(long x, long y, long dx, long dy);
    /// A null pointer skips that one.
    void GetVector(long* x, long* y, long* dx, long* dy) const;
    /// \return the direction of the vector in whole degrees, 0 .. 359: 90 when it points up, 270 when it
    ///         points down or has no length, 0 before SetVector
    unsigned short GetAngle() const;
    double GetRatio() const;
    /// \param ratio By which distances along y count in a radial ramp, above 0. Default 1.
    void SetRatio(double ratio);
    unsigned char GetInvertFlag() const;
    /// \param flag 1 reads the stops from the other end: weight w as 99 - w. Default 0.
    void SetInvertFlag(unsigned char flag);
    // The corners of a square ramp: lower left, lower right, upper right, upper left. Opaque black by
    // default.
    const vfILColor& GetColorLL() const;
    void SetColorLL(const vfILColor& color);
    const vfILColor& GetColorLR() const;
    void SetColorLR(const vfILColor& color);
    const vfILColor& GetColorUR() const;
    void SetColorUR(const vfILColor& color);
    const vfILColor& GetColorUL() const;
    void SetColorUL(const vfILColor& color);

protected:
    vfILStatus PrepareData() override;
    vfILStatus ProcessData() override;
    vfILStatus CleanData() override;

private:
    struct Way;

    static constexpr long kWeights = 100;

    int ViewIntersectsGrade() const;
    int ViewIntersectsCircle() const;
    vfILStatus RenderLinear();
    vfILStatus RenderRadial();
    vfILStatus RenderSquare();
    vfILStatus RenderConstant(vfILColor& color);
    void CopyParameters(const vfILColorGradeImg& other);
    Way WayOf() const;
    bool MakeTable();

    vfILRampType m_type = VFIL_RAMP_LINEAR;
    bool m_isStop[kWeights] = {};
    vfILColor m_stops[kWeights];
    std::int32_t m_x = 0, m_y = 0, m_dx = 0, m_dy = 0;
    std::uint16_t m_angle = 0;
    double m_ratio = 1;
    unsigned char m_invertFlag = 0;
    vfILColor m_colorLL, m_colorLR, m_colorUR, m_colorUL;
    // Of a run.
    vfILPictureView m_output;
    vfILBbox2l m_targetBox;
    vfILRunBuffer m_table;
    const unsigned char* m_entries = nullptr; ///< of the table, a pixel each
    unsigned char* m_twinRow = nullptr;       ///< memory of one row
    double m_lastEntry = 0;
    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const;
};
