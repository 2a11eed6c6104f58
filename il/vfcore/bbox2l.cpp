/// \file
/// The integer box. Edges are computed in 64 bits, since an offset and a size may sum to more than 32.

#include <vfil/geometry.h>

#include "il/loops/frame/saturate.h"

#include <algorithm>
#include <new>

using vfil::SaturateToInt32;

namespace {

/// The first and the last pixel of a box in one direction.
struct Interval {
    std::int64_t first;
    std::int64_t last;
};

Interval Columns(const vfILBbox2l& box)
{
    return {box.GetOffsetX(), std::int64_t{box.GetOffsetX()} + box.GetSizeX() - 1};
}

Interval Rows(const vfILBbox2l& box)
{
    return {box.GetOffsetY(), std::int64_t{box.GetOffsetY()} + box.GetSizeY() - 1};
}

Interval Common(Interval a, Interval b)
{
    return {std::max(a.first, b.first), std::min(a.last, b.last)};
}

Interval Spanning(Interval a, Interval b)
{
    return {std::min(a.first, b.first), std::max(a.last, b.last)};
}

std::int32_t Length(Interval i)
{
    return SaturateToInt32(std::max<std::int64_t>(i.last - i.first + 1, 0));
}

vfILBbox2l MakeBox(Interval columns, Interval rows)
{
    return {static_cast<long>(columns.first), static_cast<long>(rows.first), Length(columns), Length(rows)};
}

} // namespace

vfILBbox2l::vfILBbox2l() = default;

vfILBbox2l::vfILBbox2l(long offsetX, long offsetY, long sizeX, long sizeY)
    : m_size(sizeX, sizeY), m_offset(offsetX, offsetY)
{}

vfILBbox2l::vfILBbox2l(const vfILBbox2l& other) = default;
vfILBbox2l::~vfILBbox2l() = default;

vfILVector2l vfILBbox2l::GetSize() const
{
    return m_size;
}

long vfILBbox2l::GetSizeX() const
{
    return m_size[0];
}

long vfILBbox2l::GetSizeY() const
{
    return m_size[1];
}

vfILVector2l vfILBbox2l::GetOffset() const
{
    return m_offset;
}

long vfILBbox2l::GetOffsetX() const
{
    return m_offset[0];
}

long vfILBbox2l::GetOffsetY() const
{
    return m_offset[1];
}

void vfILBbox2l::SetSize(const vfILVector2l& size)
{
    m_size = size;
}

void vfILBbox2l::SetSize(long x, long y)
{
    m_size = vfILVector2l(x, y);
}

void vfILBbox2l::SetOffset(const vfILVector2l& offset)
{
    m_offset = offset;
}

void vfILBbox2l::SetOffset(long x, long y)
{
    m_offset = vfILVector2l(x, y);
}

int vfILBbox2l::IsNull() const
{
    return m_size[0] < 1 || m_size[1] < 1;
}

void vfILBbox2l::Copy(const vfILBbox2l& other)
{
    *this = other;
}

vfILBbox2l* vfILBbox2l::Clone() const
{
    return new (std::nothrow) vfILBbox2l(*this);
}

vfILBbox2l& vfILBbox2l::operator=(const vfILBbox2l& other) = default;

bool vfILBbox2l::operator==(const vfILBbox2l& other) const
{
    return m_size == other.m_size && m_offset == other.m_offset;
}

vfILBbox2l vfILBbox2l::operator&(const vfILBbox2l& other) const
{
    if (IsNull() || other.IsNull()) return {};
    return MakeBox(Common(Columns(*this), Columns(other)), Common(Rows(*this), Rows(other)));
}

vfILBbox2l& vfILBbox2l::operator&=(const vfILBbox2l& other)
{
    return *this = *this & other;
}

vfILBbox2l vfILBbox2l::operator|(const vfILBbox2l& other) const
{
    if (IsNull()) return other;
    if (other.IsNull()) return *this;
    return MakeBox(Spanning(Columns(*this), Columns(other)), Spanning(Rows(*this), Rows(other)));
}

vfILBbox2l& vfILBbox2l::operator|=(const vfILBbox2l& other)
{
    return *this = *this | other;
}
