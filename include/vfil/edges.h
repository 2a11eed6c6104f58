/// \file
/// Filters that find edges, make a relief of them, or sharpen them.
///
/// All treat each channel by itself, of RGBA and mono pictures of 8 and 16 bits. M is the full value, 255 or
/// 65535. The row y = 0 of a picture is its southernmost one.
#pragma once

#include <vfil/convolve.h>

/// Bits of a compass filter's directions.
enum vfILDirection : unsigned long {
    VFIL_DIRECTION_EAST = 1,
    VFIL_DIRECTION_NORTH_EAST = 2,
    VFIL_DIRECTION_NORTH = 4,
    VFIL_DIRECTION_NORTH_WEST = 8,
    VFIL_DIRECTION_WEST = 16,
    VFIL_DIRECTION_SOUTH_WEST = 32,
    VFIL_DIRECTION_SOUTH = 64,
    VFIL_DIRECTION_SOUTH_EAST = 128,
};

enum vfILEdgeDetectType : int {
    VFIL_EDGE_MAGNITUDE = 1, ///< |Gx| + |Gy|
    /// atan2(Gy, Gx) in 0 .. 360 degrees, scaled to 0 .. M; 0 without a gradient. Neither sensitivity nor
    /// bias has an effect.
    VFIL_EDGE_ANGLE = 2,
};

enum vfILLaplaceType : int {
    VFIL_LAPLACE_SQUARE = 1,  ///< 8 times the centre less its eight neighbours
    VFIL_LAPLACE_DIAMOND = 2, ///< 4 times the centre less its four neighbours at the sides
};

/// What these filters share. The window is 3 x 3 whatever radius is set; the default radius is 1.
class VFIL_API vfILEdgeProc : public vfILMonadicSpatialProc {
protected:
    vfILEdgeProc();
    vfILStatus PrepareData() override;

private:
    void Init();
};

/// What the filters with a threshold share. A response above (1 - sensitivity) * M, once it is limited to M,
/// gives the response and bias * M, up to M; any other gives 0. So sensitivity 1 passes all that is above 0,
/// and sensitivity 0 nothing.
class VFIL_API vfILEdgeThresholdProc : public vfILEdgeProc {
public:
    /// \param bias 0 .. 1, default 0. Verify refuses others and NaN (0x10029).
    void SetBias(double bias);
    double GetBias() const;
    /// \param sensitivity 0 .. 1, default 1. Verify refuses others and NaN (0x1002A).
    void SetEdgeSensitivity(double sensitivity);
    double GetEdgeSensitivity() const;

protected:
    vfILEdgeThresholdProc() = default;
    vfILStatus VerifyBias(const wchar_t* className);
    vfILStatus VerifySensitivity(const wchar_t* className);

private:
    double m_bias = 0.0;
    double m_edgeSensitivity = 1.0;
};

/// Compass gradients: the sum of the samples that lie in a direction, less the sum of those that lie
/// opposite. Of several directions the largest result stays.
class VFIL_API vfILGradientImg : public vfILEdgeThresholdProc {
public:
    /// Adds 0x1000D, 0x10028 (directions), 0x1002A, 0x10029.
    vfILStatus Verify() override;

protected:
    vfILStatus DoEffect() override;

public:
    /// \param directions Bits of vfILDirection, default VFIL_DIRECTION_EAST. Verify refuses none and other
    ///                   bits (0x10028).
    void SetDirection(unsigned long directions);
    unsigned long GetDirection() const;

private:
    unsigned long m_directions = VFIL_DIRECTION_EAST;
    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const;
};

/// The sums of vfILGradientImg without a threshold: they are only limited to 0 .. M.
class VFIL_API vfILEmbossImg : public vfILEdgeProc {
public:
    /// Adds 0x1000D, 0x10028 (directions).
    vfILStatus Verify() override;

protected:
    vfILStatus DoEffect() override;

public:
    /// \param directions As in vfILGradientImg.
    void SetDirection(unsigned long directions);
    unsigned long GetDirection() const;

private:
    unsigned long m_directions = VFIL_DIRECTION_EAST;
    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const;
};

/// What the detectors of edges share: a gradient (Gx, Gy) of each sample, shown as its magnitude or as its
/// angle.
class VFIL_API vfILEdgeDetectProc : public vfILEdgeThresholdProc {
public:
    /// Adds 0x1000D, 0x10049 (type), 0x10029, 0x1002A.
    vfILStatus Verify() override;
    /// \param type Default VFIL_EDGE_MAGNITUDE. Verify refuses unknown values (0x10049).
    void SetType(vfILEdgeDetectType type);
    vfILEdgeDetectType GetType() const;

protected:
    vfILEdgeDetectProc() = default;

private:
    virtual const wchar_t* GetClassNameW() const = 0;

    vfILEdgeDetectType m_type = VFIL_EDGE_MAGNITUDE;
};

/// Gx is the sum of the eastern column less that of the western one, Gy the sum of the southern row less that
/// of the northern one.
class VFIL_API vfILRobertsImg : public vfILEdgeDetectProc {
protected:
    vfILStatus DoEffect() override;

private:
    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const override;
};

/// Gx is the eastern column less the western one, Gy the northern row less the southern one. The middle of a
/// column or row counts half, rounded down: this is less than its corners, and not twice as much.
class VFIL_API vfILSobelImg : public vfILEdgeDetectProc {
protected:
    vfILStatus DoEffect() override;

private:
    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const override;
};

/// What a pixel is above its neighbours. The threshold looks at the response as it is, so that dark lines
/// give 0.
class VFIL_API vfILLaplaceImg : public vfILEdgeThresholdProc {
public:
    /// Adds 0x1000D, 0x10027 (type), 0x10029, 0x1002A.
    vfILStatus Verify() override;

protected:
    vfILStatus DoEffect() override;

public:
    /// \param type Default VFIL_LAPLACE_SQUARE. Verify refuses unknown values (0x10027).
    void SetType(vfILLaplaceType type);
    vfILLaplaceType GetType() const;

private:
    vfILLaplaceType m_type = VFIL_LAPLACE_SQUARE;
    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const;
};

enum vfILSharpenType : int {
    VFIL_SHARPEN_PLAIN = 1, ///< everywhere
    /// Samples whose edge, as vfILSobelImg measures it, passes the threshold of the edge sensitivity: see
    /// vfILEdgeThresholdProc. The others stay.
    VFIL_SHARPEN_EDGES = 2,
};

/// Adds to a picture what a blur of an ellipse takes from it. Of the kernel's n weights inside the ellipse
/// all are -degree, but the middle one is (n - 1) * degree + 1, so that their sum is 1. The kernel is made
/// anew by each run: what SetKernel sets has no effect, while its radius is the ellipse's.
class VFIL_API vfILSharpenImg : public vfILConvolveImg {
public:
    vfILSharpenImg() = default;
    vfILSharpenImg(const vfILSharpenImg& other) = default;
    vfILSharpenImg& operator=(const vfILSharpenImg& other) = default;
    ~vfILSharpenImg() override;
    /// With degree 0, and where both radii are below 1, as they are by default, copies the picture: the mask
    /// is not looked at.
    vfILStatus Execute() override;
    /// Adds to the checks of the frame 0x1000D (a format that is neither RGBA nor mono), 0x10001 (the host
    /// has registered no class of pictures), 0x10025 (type), 0x10026 (degree), 0x1002A (edge sensitivity).
    vfILStatus Verify() override;

protected:
    vfILStatus PrepareData() override;
    vfILStatus CleanData() override;
    vfILStatus DoEffect() override;

public:
    /// The kernel has no factors.
    int IsKernelSeparable() override;

    /// \param type Default VFIL_SHARPEN_PLAIN. Verify refuses unknown types (0x10025).
    void SetType(vfILSharpenType type);
    vfILSharpenType GetType() const;
    /// \param degree 0 .. 1, default 1. Verify refuses others and NaN (0x10026).
    void SetDegree(float degree);
    float GetDegree() const;
    /// \param sensitivity 0 .. 1, default 1; of VFIL_SHARPEN_EDGES. Verify refuses others and NaN (0x1002A).
    void SetEdgeSensitivity(double sensitivity);
    double GetEdgeSensitivity() const;

private:
    vfILStatus BuildKernel(const vfILVector2l& windowRadius);
    vfILStatus Esharpen();

    vfILSharpenType m_type = VFIL_SHARPEN_PLAIN;
    float m_degree = 1;
    double m_edgeSensitivity = 1.0;
    vfILRunBuffer m_kernelBuffer;
    float* m_runKernel = nullptr; ///< in that buffer, from PrepareData to CleanData
    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const;
};
