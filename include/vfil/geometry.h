/// \file
/// Integer boxes and 2-vectors, in which regions and offsets are passed.
#pragma once

#include <vfil/export.h>

#include <cstdint>

class vfILVector2f;

/// Two signed 32-bit components. A float becomes a component by truncation toward zero; values beyond the
/// range saturate, NaN gives 0. Sums wrap to 32 bits by saturation too.
class VFIL_API vfILVector2l {
public:
    vfILVector2l();
    vfILVector2l(long x, long y);
    vfILVector2l(const vfILVector2l& other);
    virtual ~vfILVector2l();

    /// Component \p i: 0 is x, 1 is y. Not range-checked.
    std::int32_t& operator[](int i);
    const std::int32_t& operator[](int i) const;

    vfILVector2l operator+(const vfILVector2l& other) const;
    vfILVector2f operator+(const vfILVector2f& other) const;
    vfILVector2l operator-(const vfILVector2l& other) const;
    vfILVector2f operator-(const vfILVector2f& other) const;
    /// Dot product, computed in 64-bit integers.
    float operator*(const vfILVector2l& other) const;
    float operator*(const vfILVector2f& other) const;
    vfILVector2f operator*(float factor) const;

    vfILVector2l& operator=(const vfILVector2l& other);
    vfILVector2l& operator=(const vfILVector2f& other);
    /// Sets both components.
    vfILVector2l& operator=(float value);
    vfILVector2l& operator+=(const vfILVector2l& other);
    /// Adds the operand truncated toward zero, component by component.
    vfILVector2l& operator+=(const vfILVector2f& other);
    vfILVector2l& operator-=(const vfILVector2l& other);
    vfILVector2l& operator-=(const vfILVector2f& other);
    bool operator==(const vfILVector2l& other) const;

    /// A new copy, owned by the caller. Null when memory runs out.
    vfILVector2l* Clone() const;
    void Copy(const vfILVector2l& other);

private:
    std::int32_t m_v[2];
};

/// Two 32-bit float components. Mixed operations with vfILVector2l give a vfILVector2f.
class VFIL_API vfILVector2f {
public:
    vfILVector2f();
    vfILVector2f(float x, float y);
    vfILVector2f(const vfILVector2f& other);
    virtual ~vfILVector2f();

    /// Component \p i: 0 is x, 1 is y. Not range-checked.
    float& operator[](int i);
    const float& operator[](int i) const;

    vfILVector2f operator+(const vfILVector2f& other) const;
    vfILVector2f operator+(const vfILVector2l& other) const;
    vfILVector2f operator-(const vfILVector2f& other) const;
    vfILVector2f operator-(const vfILVector2l& other) const;
    /// Dot product.
    float operator*(const vfILVector2f& other) const;
    float operator*(const vfILVector2l& other) const;
    vfILVector2f operator*(float factor) const;

    vfILVector2f& operator=(const vfILVector2f& other);
    vfILVector2f& operator=(const vfILVector2l& other);
    /// Sets both components.
    vfILVector2f& operator=(float value);
    vfILVector2f& operator+=(const vfILVector2f& other);
    vfILVector2f& operator+=(const vfILVector2l& other);
    vfILVector2f& operator-=(const vfILVector2f& other);
    vfILVector2f& operator-=(const vfILVector2l& other);
    bool operator==(const vfILVector2f& other) const;

    /// A new copy, owned by the caller. Null when memory runs out.
    vfILVector2f* Clone() const;
    void Copy(const vfILVector2f& other);

private:
    float m_v[2];
};

/// A box of pixels: a size, and the offset of its first pixel. Null when the width or the height is below 1.
class VFIL_API vfILBbox2l {
public:
    /// All zero, a null box.
    vfILBbox2l();
    vfILBbox2l(long offsetX, long offsetY, long sizeX, long sizeY);
    vfILBbox2l(const vfILBbox2l& other);
    virtual ~vfILBbox2l();

    vfILVector2l GetSize() const;
    long GetSizeX() const;
    long GetSizeY() const;
    vfILVector2l GetOffset() const;
    long GetOffsetX() const;
    long GetOffsetY() const;
    void SetSize(const vfILVector2l& size);
    void SetSize(long x, long y);
    void SetOffset(const vfILVector2l& offset);
    void SetOffset(long x, long y);

    /// 1 when the width or the height is below 1.
    int IsNull() const;
    void Copy(const vfILBbox2l& other);
    /// A new copy, owned by the caller. Null when memory runs out.
    vfILBbox2l* Clone() const;

    vfILBbox2l& operator=(const vfILBbox2l& other);
    /// All four numbers are equal.
    bool operator==(const vfILBbox2l& other) const;
    /// The intersection: all zero when either box is null. Boxes that do not touch give a null box that keeps
    /// the larger offsets.
    vfILBbox2l operator&(const vfILBbox2l& other) const;
    vfILBbox2l& operator&=(const vfILBbox2l& other);
    /// The smallest box around both. With one null box it is a copy of the other.
    vfILBbox2l operator|(const vfILBbox2l& other) const;
    vfILBbox2l& operator|=(const vfILBbox2l& other);

private:
    vfILVector2l m_size;
    vfILVector2l m_offset;
};
