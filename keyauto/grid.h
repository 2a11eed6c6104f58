/// \file
/// Numbers in rows and columns, and colours as amounts of light.
#pragma once

#include <cstddef>
#include <vector>

namespace vfil::keyauto {

/// Cells in rows, the first row first.
template <class T>
class Grid {
public:
    Grid() = default;
    Grid(long width, long height, T value = T())
        : m_width(width), m_height(height),
          m_cells(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), value)
    {}
    long Width() const { return m_width; }
    long Height() const { return m_height; }
    std::size_t Size() const { return m_cells.size(); }
    bool Contains(long x, long y) const { return x >= 0 && y >= 0 && x < m_width && y < m_height; }
    std::size_t Index(long x, long y) const { return static_cast<std::size_t>(y * m_width + x); }
    T& At(long x, long y) { return m_cells[Index(x, y)]; }
    const T& At(long x, long y) const { return m_cells[Index(x, y)]; }
    T& operator[](std::size_t i) { return m_cells[i]; }
    const T& operator[](std::size_t i) const { return m_cells[i]; }

private:
    long m_width = 0;
    long m_height = 0;
    std::vector<T> m_cells;
};

/// A yes or no a cell.
using Mask = Grid<unsigned char>;

/// A colour as amounts of light, 0 .. 1: sums and mixtures of such are what a lens makes of light.
struct Light {
    float r = 0;
    float g = 0;
    float b = 0;

    float Sum() const { return r + g + b; }
    Light& operator+=(const Light& other)
    {
        r += other.r;
        g += other.g;
        b += other.b;
        return *this;
    }
};

inline Light operator+(Light a, const Light& b)
{
    return a += b;
}

inline Light operator*(const Light& a, float f)
{
    return {a.r * f, a.g * f, a.b * f};
}

inline Light operator-(const Light& a, const Light& b)
{
    return a + b * -1.0F;
}

inline float Dot(const Light& a, const Light& b)
{
    return a.r * b.r + a.g * b.g + a.b * b.b;
}

} // namespace vfil::keyauto
