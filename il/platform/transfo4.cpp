/// \file
/// Transforms of space.

#include <vfil/transfo4.h>

#include <cmath>

namespace {

using Point = HmPoint3<double>;

constexpr double kDegreesOfRadian = 57.295779513082320876798;

struct SineCosine {
    double sine, cosine;
};

/// Exact at multiples of a quarter turn.
SineCosine OfDegrees(double angle)
{
    int quarters = 0;
    const double rest = std::remquo(angle, 90.0, &quarters) / kDegreesOfRadian;
    const double sine = std::sin(rest);
    const double cosine = std::cos(rest);
    const SineCosine turns[] = {{sine, cosine}, {cosine, -sine}, {-sine, -cosine}, {-cosine, sine}};
    return turns[static_cast<unsigned>(quarters) % 4];
}

double ToDegrees(double sine, double cosine)
{
    return std::atan2(sine, cosine) * kDegreesOfRadian;
}

double Dot(const Point& a, const Point& b)
{
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

Point Cross(const Point& a, const Point& b)
{
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

double Length(const Point& v)
{
    return std::hypot(v.x, v.y, v.z);
}

Point Times(const Point& v, double factor)
{
    return {v.x * factor, v.y * factor, v.z * factor};
}

/// Of length 1; a vector without length stays what it is.
Point Normalised(const Point& v)
{
    const double length = Length(v);
    return length > 0 ? Point{v.x / length, v.y / length, v.z / length} : v;
}

/// Some vector of length 1 across a vector of length 1.
Point Across(const Point& v)
{
    const Point axis = std::fabs(v.x) < 0.6 ? Point{1, 0, 0} : Point{0, 1, 0};
    return Normalised(Cross(v, axis));
}

/// Makes three rows at right angles of length 1, in the sense of the axes, of rows that may have no length.
void Complete(Point (&rows)[3])
{
    for (Point& row : rows)
        row = Normalised(row);
    // The first row that stands gives the first direction, the next the second, the rest follows.
    int first = 0;
    while (first < 2 && Length(rows[first]) == 0)
        ++first;
    if (Length(rows[first]) == 0) rows[first] = {0, 0, 1};
    Point& base = rows[first];
    Point& next = rows[(first + 1) % 3];
    Point& last = rows[(first + 2) % 3];
    const Point leaned = Normalised({next.x - base.x * Dot(base, next), next.y - base.y * Dot(base, next),
                                     next.z - base.z * Dot(base, next)});
    if (Length(leaned) > 0) {
        next = leaned;
    } else {
        next = Length(last) > 0 ? Normalised(Cross(last, base)) : Across(base);
    }
    last = Cross(base, next);
}

} // namespace

HmTransfo4::HmTransfo4()
{
    ResetToIdentity();
}

HmTransfo4& HmTransfo4::ResetToIdentity()
{
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j)
            m_elements[4 * i + j] = i == j ? 1 : 0;
    return *this;
}

double* HmTransfo4::GetMatrixPtr()
{
    return m_elements;
}

const double* HmTransfo4::GetMatrixPtr() const
{
    return m_elements;
}

HmTransfo4& HmTransfo4::Translate(double x, double y, double z)
{
    const double step[] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, x, y, z, 1};
    return PostMultiply(HmTransfo4(step));
}

HmTransfo4& HmTransfo4::Scale(double x, double y, double z)
{
    const double step[] = {x, 0, 0, 0, 0, y, 0, 0, 0, 0, z, 0, 0, 0, 0, 1};
    return PostMultiply(HmTransfo4(step));
}

HmTransfo4& HmTransfo4::Rotate(double angle, double x, double y, double z)
{
    const Point n = Normalised({x, y, z});
    if (n.x == 0 && n.y == 0 && n.z == 0) return *this;
    const auto [s, c] = OfDegrees(angle);
    const double k = 1 - c;
    // clang-format off
    const double step[] = {k * n.x * n.x + c,       k * n.x * n.y + s * n.z, k * n.x * n.z - s * n.y, 0,
                           k * n.x * n.y - s * n.z, k * n.y * n.y + c,       k * n.y * n.z + s * n.x, 0,
                           k * n.x * n.z + s * n.y, k * n.y * n.z - s * n.x, k * n.z * n.z + c,       0,
                           0,                       0,                       0,                       1};
    // clang-format on
    return PostMultiply(HmTransfo4(step));
}

HmTransfo4& HmTransfo4::RotateXYZ(const HmPoint3<double>& angles)
{
    return Rotate(angles.x, 1, 0, 0).Rotate(angles.y, 0, 1, 0).Rotate(angles.z, 0, 0, 1);
}

HmTransfo4& HmTransfo4::PostMultiply(const HmTransfo4& other)
{
    const HmTransfo4 before = *this;
    const HmTransfo4 step = other;
    for (int i = 0; i < 4; ++i)
        for (int j = 0; j < 4; ++j) {
            double sum = 0;
            for (int k = 0; k < 4; ++k)
                sum += step.m_elements[4 * i + k] * before.m_elements[4 * k + j];
            m_elements[4 * i + j] = sum;
        }
    return *this;
}

void HmTransfo4::MapInPlace(HmPoint3<double>& point) const
{
    const auto column = [&](int j) {
        return point.x * m_elements[j] + point.y * m_elements[4 + j] + point.z * m_elements[8 + j] +
               m_elements[12 + j];
    };
    point = {column(0), column(1), column(2)};
}

void HmTransfo4::ExtractTransforms(HmPoint3<double>& scale, HmPoint3<double>& rotation,
                                   HmPoint3<double>& translation) const
{
    Point rows[3];
    for (int i = 0; i < 3; ++i)
        rows[i] = {m_elements[4 * i], m_elements[4 * i + 1], m_elements[4 * i + 2]};
    const bool mirrors = Dot(Cross(rows[0], rows[1]), rows[2]) < 0;
    scale = {Length(rows[0]), Length(rows[1]), mirrors ? -Length(rows[2]) : Length(rows[2])};
    translation = {m_elements[12], m_elements[13], m_elements[14]};
    if (mirrors) rows[2] = Times(rows[2], -1);
    Complete(rows);
    const double cosY = std::hypot(rows[2].y, rows[2].z);
    rotation.y = ToDegrees(rows[2].x, cosY);
    // Turned by a quarter about y, the turns about x and z are one; it is all told as x.
    if (cosY < 1e-12) {
        rotation.x = ToDegrees(rows[1].z, rows[1].y);
        rotation.z = 0;
        return;
    }
    rotation.x = ToDegrees(-rows[2].y, rows[2].z);
    rotation.z = ToDegrees(-rows[1].x, rows[0].x);
}
