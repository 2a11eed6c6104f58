/// \file
/// Transforms of space: a point, and the matrix that moves it.
#pragma once

#include <vfil/export.h>

/// A point or a triple of numbers.
template <class T>
struct HmPoint3 {
    HmPoint3() = default;
    HmPoint3(T px, T py, T pz) : x(px), y(py), z(pz) {}

    T x{};
    T y{};
    T z{};
};

/// A 4 by 4 matrix by which points are moved. A point is a row (x, y, z, 1) that is multiplied from the left,
/// so that the translation stands in the fourth row.
///
/// Each step is put before what the matrix already does: a point meets the last one first. Angles are
/// degrees, right-handed: a positive one turns y towards z about the x axis, z towards x about y, x towards y
/// about z. Numbers are not checked; NaN and infinity spread.
class VFIL_API HmTransfo4 {
public:
    /// The identity.
    HmTransfo4();
    /// \param rowMajor 16 numbers, row after row.
    constexpr explicit HmTransfo4(const double* rowMajor)
    {
        for (int i = 0; i < 16; ++i)
            m_elements[i] = rowMajor[i];
    }
    HmTransfo4(const HmTransfo4& other) = default;
    HmTransfo4& operator=(const HmTransfo4& other) = default;

    HmTransfo4& ResetToIdentity();
    /// The 16 numbers, row after row.
    double* GetMatrixPtr();
    const double* GetMatrixPtr() const;

    HmTransfo4& Translate(double x, double y, double z);
    HmTransfo4& Scale(double x, double y, double z);
    /// Turns about the axis (x, y, z) of any length. An axis of length 0 turns nothing; multiples of a
    /// quarter turn are exact.
    HmTransfo4& Rotate(double angle, double x, double y, double z);
    /// The same as Rotate about x, then about y, then about z: a point meets the last one first.
    HmTransfo4& RotateXYZ(const HmPoint3<double>& angles);
    HmTransfo4& PostMultiply(const HmTransfo4& other);
    /// Moves a point. There is no division by its fourth coordinate.
    void MapInPlace(HmPoint3<double>& point) const;
    /// The three steps of a matrix without shear and projection:
    /// Translate(translation), RotateXYZ(rotation), Scale(scale) of the identity make it again. A matrix that
    /// mirrors has a negative scale in z, the others none; what shear there is, is lost.
    void ExtractTransforms(HmPoint3<double>& scale, HmPoint3<double>& rotation,
                           HmPoint3<double>& translation) const;

private:
    double m_elements[16]{};
};
