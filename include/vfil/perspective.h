/// \file
/// Perspective: a homography, and the card that a camera sees.
#pragma once

#include <vfil/transfo4.h>
#include <vfil/transform.h>

/// Which sign of the homogeneous coordinate w a point of the output may have.
enum vfILClipMode : int {
    VFIL_CLIP_NONE = 0,     ///< both
    VFIL_CLIP_NEGATIVE = 1, ///< w < 0 only
    VFIL_CLIP_POSITIVE = 2, ///< w > 0 only
};

/// The projective map of nine coefficients: x' = (c0 x + c1 y + c2) / d and y' = (c3 x + c4 y + c5) / d,
/// where d = c6 x + c7 y + c8. All are 0 at first.
///
/// The way back is the adjugate, so that the sign of its w depends on that of the determinant: for what lies
/// before a camera both have the same sign. A point whose w the clip mode refuses, or whose w is 0, is the
/// default colour. A matrix times a factor is the same map, but for types 5 to 7 small ones lose pixels, as
/// their tolerances are absolute: about 1 for the largest coefficient is right.
class VFIL_API vfILPerspectiveTransform : public vfILMonadicTransformProc {
public:
    vfILPerspectiveTransform();
    vfILPerspectiveTransform(const vfILPerspectiveTransform& other) = default;
    vfILPerspectiveTransform& operator=(const vfILPerspectiveTransform& other) = default;
    ~vfILPerspectiveTransform() override;
    /// Adds 0x1000F (an interpolation type that is none of 1 to 7) and 0x1000D (a format that is neither RGBA
    /// nor mono). A singular matrix fails with 0x10010. The clip mode is not checked.
    vfILStatus Verify() override;

protected:
    /// Always succeeds.
    vfILStatus SetUpCoefficients() override;
    /// Where d is 0, the result is (0, 0).
    void TransformPointXY(float& x, float& y) override;
    /// Leaves a point without a source as its numerators are.
    void InvertTransformPointXY(float& x, float& y) override;
    int InvertTransformPointXYZ(float& x, float& y, float& w) override;
    void TransformLineWithNearestNeighborInterpolation(const vfILVector2f& start, long width,
                                                       unsigned char* output) override;
    void TransformLineWithBilinearInterpolation(const vfILVector2f& start, long width,
                                                unsigned char* output) override;
    void TransformLineWithBicubicInterpolation(const vfILVector2f& start, long width,
                                               unsigned char* output) override;
    /// 4 and 0, or 4 and 4 when both signs of w are valid.
    void GetNumClipPlanes(unsigned long& first, unsigned long& second) override;
    void GetClipPlaneCoefficients(unsigned long i, long width, long height, double& a, double& b, double& c,
                                  double& d) override;

public:
    /// \param mode Default VFIL_CLIP_NONE, which other values count as.
    void SetClipMode(vfILClipMode mode);
    vfILClipMode GetClipMode() const;

private:
    void ProjectLineOf(vfILInterpolationType type, const vfILVector2f& start, long width,
                       unsigned char* output);

    float m_forward[9] = {};
    float m_adjugate[9] = {};
    vfILClipMode m_clipMode = VFIL_CLIP_NONE;
    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const;
};

/// A picture as a card in space before a camera. Lengths are pixels, angles degrees (HmTransfo4), all 0 at
/// first: without a CameraPosZ the map is singular.
///
/// SetCoefficients() makes the map of a card that stays flat, facing the camera, and is translated.
class VFIL_API vfILTransfoPerspProj : public vfILPerspectiveTransform {
public:
    vfILTransfoPerspProj();
    vfILTransfoPerspProj(const vfILTransfoPerspProj& other) = default;
    vfILTransfoPerspProj& operator=(const vfILTransfoPerspProj& other) = default;
    ~vfILTransfoPerspProj() override;
    vfILStatus Verify() override;

    using vfILMonadicTransformProc::SetCoefficients;
    /// Computes the coefficients, with VFIL_CLIP_POSITIVE. It is a step, not a state: the local scale becomes
    /// 1, rotation and centre 0, LocalTransZ the camera's, and the stabilising translation is added to
    /// LocalTransX and LocalTransY at each call.
    void SetCoefficients();
    /// 1 when all four corners of the region of interest are projected from behind the camera.
    int BehindCam() const;
    /// 1 when the face of the card, placed by all of its parameters as they are now, looks at the camera. Its
    /// size is that of the input, 0 without one.
    int FacesCam() const;

    double GetLocalScaleX() const { return m_localScale.x; }
    double GetLocalScaleY() const { return m_localScale.y; }
    double GetLocalScaleZ() const { return m_localScale.z; }
    void SetLocalScaleX(double scale) { m_localScale.x = scale; }
    void SetLocalScaleY(double scale) { m_localScale.y = scale; }
    void SetLocalScaleZ(double scale) { m_localScale.z = scale; }
    double GetLocalRotateX() const { return m_localRotate.x; }
    double GetLocalRotateY() const { return m_localRotate.y; }
    double GetLocalRotateZ() const { return m_localRotate.z; }
    void SetLocalRotateX(double angle) { m_localRotate.x = angle; }
    void SetLocalRotateY(double angle) { m_localRotate.y = angle; }
    void SetLocalRotateZ(double angle) { m_localRotate.z = angle; }
    double GetLocalTransX() const { return m_localTrans.x; }
    double GetLocalTransY() const { return m_localTrans.y; }
    double GetLocalTransZ() const { return m_localTrans.z; }
    void SetLocalTransX(double distance) { m_localTrans.x = distance; }
    void SetLocalTransY(double distance) { m_localTrans.y = distance; }
    void SetLocalTransZ(double distance) { m_localTrans.z = distance; }
    /// The point that the card is scaled and turned about, from its middle.
    double GetLocalCenterX() const { return m_localCenter.x; }
    double GetLocalCenterY() const { return m_localCenter.y; }
    double GetLocalCenterZ() const { return m_localCenter.z; }
    void SetLocalCenterX(double position) { m_localCenter.x = position; }
    void SetLocalCenterY(double position) { m_localCenter.y = position; }
    void SetLocalCenterZ(double position) { m_localCenter.z = position; }

    double GetStabTransX() const { return m_stabTrans.x; }
    double GetStabTransY() const { return m_stabTrans.y; }
    double GetStabTransZ() const { return m_stabTrans.z; }
    void SetStabTransX(double distance) { m_stabTrans.x = distance; }
    void SetStabTransY(double distance) { m_stabTrans.y = distance; }
    void SetStabTransZ(double distance) { m_stabTrans.z = distance; }
    double GetStabCenterX() const { return m_stabCenter.x; }
    double GetStabCenterY() const { return m_stabCenter.y; }
    double GetStabCenterZ() const { return m_stabCenter.z; }
    void SetStabCenterX(double position) { m_stabCenter.x = position; }
    void SetStabCenterY(double position) { m_stabCenter.y = position; }
    void SetStabCenterZ(double position) { m_stabCenter.z = position; }
    double GetStabRotateX() const { return m_stabRotate.x; }
    double GetStabRotateY() const { return m_stabRotate.y; }
    double GetStabRotateZ() const { return m_stabRotate.z; }
    void SetStabRotateX(double angle) { m_stabRotate.x = angle; }
    void SetStabRotateY(double angle) { m_stabRotate.y = angle; }
    void SetStabRotateZ(double angle) { m_stabRotate.z = angle; }
    double GetStabScaleX() const { return m_stabScale.x; }
    double GetStabScaleY() const { return m_stabScale.y; }
    double GetStabScaleZ() const { return m_stabScale.z; }
    void SetStabScaleX(double scale) { m_stabScale.x = scale; }
    void SetStabScaleY(double scale) { m_stabScale.y = scale; }
    void SetStabScaleZ(double scale) { m_stabScale.z = scale; }

    void SetCameraPosX(double position) { m_cameraPos.x = position; }
    void SetCameraPosY(double position) { m_cameraPos.y = position; }
    /// The distance at which the card has its own size.
    void SetCameraPosZ(double position) { m_cameraPos.z = position; }
    /// Stored, and of no effect.
    void SetCameraAngle(double angle) { m_cameraAngle = angle; }
    /// \param use Not 0: the stabilising group takes part in FacesCam.
    void SetGlobalUse(int use) { m_globalUse = use; }

private:
    using Point = HmPoint3<double>;

    bool PointBehindCam(long x, long y) const;
    bool ComputeParameters(long width, long height, Point& scale, Point& rotation, Point& translation) const;
    static Point GetNormal(const Point& rotation);

    Point m_localScale, m_localRotate, m_localTrans, m_localCenter;
    Point m_stabTrans, m_stabCenter, m_stabRotate, m_stabScale;
    Point m_cameraPos;
    double m_cameraAngle = 0;
    int m_globalUse = 0;
    static const wchar_t* const m_ClassName;
    const wchar_t* GetClassNameW() const;
};
