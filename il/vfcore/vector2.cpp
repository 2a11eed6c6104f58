/// \file
/// The 2-vectors. Integer sums run in 64 bits and saturate; mixed operations widen to float.

#include <vfil/geometry.h>

#include "il/loops/frame/saturate.h"

#include <new>

using vfil::SaturateToInt32;
using vfil::TruncateToInt32;

namespace {

std::int32_t Sum(std::int64_t a, std::int64_t b)
{
    return SaturateToInt32(a + b);
}

std::int32_t Difference(std::int64_t a, std::int64_t b)
{
    return SaturateToInt32(a - b);
}

vfILVector2f Widened(const vfILVector2l& v)
{
    return {static_cast<float>(v[0]), static_cast<float>(v[1])};
}

vfILVector2l Truncated(const vfILVector2f& v)
{
    return {TruncateToInt32(v[0]), TruncateToInt32(v[1])};
}

} // namespace

vfILVector2l::vfILVector2l() : m_v{0, 0}
{}

vfILVector2l::vfILVector2l(long x, long y) : m_v{SaturateToInt32(x), SaturateToInt32(y)}
{}

vfILVector2l::vfILVector2l(const vfILVector2l& other) = default;
vfILVector2l::~vfILVector2l() = default;

std::int32_t& vfILVector2l::operator[](int i)
{
    return m_v[i];
}

const std::int32_t& vfILVector2l::operator[](int i) const
{
    return m_v[i];
}

vfILVector2l vfILVector2l::operator+(const vfILVector2l& other) const
{
    return {Sum(m_v[0], other.m_v[0]), Sum(m_v[1], other.m_v[1])};
}

vfILVector2f vfILVector2l::operator+(const vfILVector2f& other) const
{
    return Widened(*this) + other;
}

vfILVector2l vfILVector2l::operator-(const vfILVector2l& other) const
{
    return {Difference(m_v[0], other.m_v[0]), Difference(m_v[1], other.m_v[1])};
}

vfILVector2f vfILVector2l::operator-(const vfILVector2f& other) const
{
    return Widened(*this) - other;
}

float vfILVector2l::operator*(const vfILVector2l& other) const
{
    const std::int64_t x = std::int64_t{m_v[0]} * other.m_v[0];
    const std::int64_t y = std::int64_t{m_v[1]} * other.m_v[1];
    // Two products of 2^62 make 2^63, which is too much for a signed sum. A negative product is at least 2^31
    // - 2^62.
    if (x > 0 && y > 0)
        return static_cast<float>(static_cast<std::uint64_t>(x) + static_cast<std::uint64_t>(y));
    return static_cast<float>(x + y);
}

float vfILVector2l::operator*(const vfILVector2f& other) const
{
    return Widened(*this) * other;
}

vfILVector2f vfILVector2l::operator*(float factor) const
{
    return Widened(*this) * factor;
}

vfILVector2l& vfILVector2l::operator=(const vfILVector2l& other) = default;

vfILVector2l& vfILVector2l::operator=(const vfILVector2f& other)
{
    return *this = Truncated(other);
}

vfILVector2l& vfILVector2l::operator=(float value)
{
    m_v[0] = m_v[1] = TruncateToInt32(value);
    return *this;
}

vfILVector2l& vfILVector2l::operator+=(const vfILVector2l& other)
{
    return *this = *this + other;
}

vfILVector2l& vfILVector2l::operator+=(const vfILVector2f& other)
{
    return *this += Truncated(other);
}

vfILVector2l& vfILVector2l::operator-=(const vfILVector2l& other)
{
    return *this = *this - other;
}

vfILVector2l& vfILVector2l::operator-=(const vfILVector2f& other)
{
    return *this -= Truncated(other);
}

bool vfILVector2l::operator==(const vfILVector2l& other) const
{
    return m_v[0] == other.m_v[0] && m_v[1] == other.m_v[1];
}

vfILVector2l* vfILVector2l::Clone() const
{
    return new (std::nothrow) vfILVector2l(*this);
}

void vfILVector2l::Copy(const vfILVector2l& other)
{
    *this = other;
}

vfILVector2f::vfILVector2f() : m_v{0, 0}
{}

vfILVector2f::vfILVector2f(float x, float y) : m_v{x, y}
{}

vfILVector2f::vfILVector2f(const vfILVector2f& other) = default;
vfILVector2f::~vfILVector2f() = default;

float& vfILVector2f::operator[](int i)
{
    return m_v[i];
}

const float& vfILVector2f::operator[](int i) const
{
    return m_v[i];
}

vfILVector2f vfILVector2f::operator+(const vfILVector2f& other) const
{
    return {m_v[0] + other.m_v[0], m_v[1] + other.m_v[1]};
}

vfILVector2f vfILVector2f::operator+(const vfILVector2l& other) const
{
    return *this + Widened(other);
}

vfILVector2f vfILVector2f::operator-(const vfILVector2f& other) const
{
    return {m_v[0] - other.m_v[0], m_v[1] - other.m_v[1]};
}

vfILVector2f vfILVector2f::operator-(const vfILVector2l& other) const
{
    return *this - Widened(other);
}

float vfILVector2f::operator*(const vfILVector2f& other) const
{
    return m_v[0] * other.m_v[0] + m_v[1] * other.m_v[1];
}

float vfILVector2f::operator*(const vfILVector2l& other) const
{
    return *this * Widened(other);
}

vfILVector2f vfILVector2f::operator*(float factor) const
{
    return {m_v[0] * factor, m_v[1] * factor};
}

vfILVector2f& vfILVector2f::operator=(const vfILVector2f& other) = default;

vfILVector2f& vfILVector2f::operator=(const vfILVector2l& other)
{
    return *this = Widened(other);
}

vfILVector2f& vfILVector2f::operator=(float value)
{
    m_v[0] = m_v[1] = value;
    return *this;
}

vfILVector2f& vfILVector2f::operator+=(const vfILVector2f& other)
{
    return *this = *this + other;
}

vfILVector2f& vfILVector2f::operator+=(const vfILVector2l& other)
{
    return *this += Widened(other);
}

vfILVector2f& vfILVector2f::operator-=(const vfILVector2f& other)
{
    return *this = *this - other;
}

vfILVector2f& vfILVector2f::operator-=(const vfILVector2l& other)
{
    return *this -= Widened(other);
}

bool vfILVector2f::operator==(const vfILVector2f& other) const
{
    return m_v[0] == other.m_v[0] && m_v[1] == other.m_v[1];
}

vfILVector2f* vfILVector2f::Clone() const
{
    return new (std::nothrow) vfILVector2f(*this);
}

void vfILVector2f::Copy(const vfILVector2f& other)
{
    *this = other;
}
