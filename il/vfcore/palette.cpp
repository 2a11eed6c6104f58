/// \file
/// The palette. Only growing allocates, and what the vector then throws ends here.

#include <vfil/color.h>

#include <memory>
#include <new>
#include <stdexcept>

namespace {

/// Runs what may allocate. \return 1; 0 when memory ran out, or the array cannot be that long.
template <class Growth>
int Allocating(Growth growth) noexcept
{
    try {
        growth();
        return 1;
    } catch (const std::bad_alloc&) {
        return 0;
    } catch (const std::length_error&) {
        return 0;
    }
}

} // namespace

vfILPalette::vfILPalette(const vfILPalette& other) noexcept
{
    Copy(other);
}

vfILPalette& vfILPalette::operator=(const vfILPalette& other) noexcept
{
    Copy(other);
    return *this;
}

void vfILPalette::Init() noexcept
{
    std::vector<vfILColor>().swap(m_colors);
}

long vfILPalette::GetSize() const noexcept
{
    return static_cast<long>(m_colors.size());
}

int vfILPalette::SetSize(long size) noexcept
{
    if (size < 0) return 0;
    if (size == 0) {
        Init();
        return 1;
    }
    return Allocating([&] { m_colors.resize(static_cast<std::size_t>(size)); });
}

int vfILPalette::SetAt(long index, const vfILColor& color) noexcept
{
    if (index < 0) return 0;
    const auto i = static_cast<std::size_t>(index);
    if (i >= m_colors.size() && Allocating([&] { m_colors.resize(i + 1); }) == 0) return 0;
    m_colors[i] = color;
    return 1;
}

vfILColor vfILPalette::GetAt(long index) const noexcept
{
    if (index < 0 || index >= GetSize()) return {1, 0, 0, 0};
    return m_colors[static_cast<std::size_t>(index)];
}

int vfILPalette::DelAt(long index) noexcept
{
    if (index < 0 || index >= GetSize()) return 0;
    m_colors.erase(m_colors.begin() + index);
    return 1;
}

void vfILPalette::RemoveAll() noexcept
{
    Init();
}

vfILPalette* vfILPalette::Clone() const noexcept
{
    std::unique_ptr<vfILPalette> clone(new (std::nothrow) vfILPalette);
    if (clone == nullptr || clone->Copy(*this) == 0) return nullptr;
    return clone.release();
}

int vfILPalette::Copy(const vfILPalette& other) noexcept
{
    return Allocating([&] {
        std::vector<vfILColor> copy(other.m_colors);
        m_colors.swap(copy);
    });
}
