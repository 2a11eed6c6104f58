/// \file
/// What the conversions between single pairs of formats are made of.
#pragma once

#include "il/loops/frame/rowloop.h"

#include <vfil/models.h>

#include <array>

struct vfILConvertPairs {
    struct Pair {
        const GUID& from;
        const GUID& to;
    };
    const wchar_t* className;
    Pair pairs[2];

    bool Contains(const GUID& from) const { return from == pairs[0].from || from == pairs[1].from; }
    bool Contains(const GUID& from, const GUID& to) const
    {
        return (from == pairs[0].from && to == pairs[0].to) || (from == pairs[1].from && to == pairs[1].to);
    }
};

template <class In, class Out>
inline vfILStatus vfILPairConvertProc::ConvertRows(void (*kernel)(const In*, Out*, std::size_t), long count,
                                                   bool turnOver)
{
    const long last = Run().rows - 1;
    vfil::ForEachRow(*this, Run().rows, [&](long row) {
        kernel(vfil::RowOf<const In>(Run().input, row),
               vfil::RowOf<Out>(Run().output, turnOver ? last - row : row), static_cast<std::size_t>(count));
    });
    return VFIL_SUCCESS;
}

namespace vfil {

/// Where a colour is left as samples.
struct PackedColor {
    std::array<std::uint8_t, 4>& bytes;
    std::array<std::uint16_t, 4>& words;

    /// Leaves it as a pixel of \p format, and gives the pixel; zeros for an unknown format.
    void* Pack(const vfILColor& color, const GUID& format);
};

} // namespace vfil
