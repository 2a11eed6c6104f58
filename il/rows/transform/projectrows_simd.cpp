/// \file
/// The kernel that projects the pixels of a line: the vector form. The sums are made one by one, since each
/// is rounded; vectors divide.
#include "il/rows/transform/projectparams.h"
#include "il/rows/vecdouble.h"

namespace vfil {

namespace {

constexpr std::size_t kBlock = 64; ///< a multiple of the lanes

Mask64 AreBefore(F64 w, ProjectSign sign)
{
    const F64 zero = SplatDouble(0);
    if (sign == ProjectSign::Negative) return w < zero;
    if (sign == ProjectSign::Positive) return zero < w;
    return Without(w == w, w == zero);
}

void Project(ProjectLine& line, std::size_t points, double* u, double* v)
{
    double x[kBlock], y[kBlock], w[kBlock];
    const F64 one = SplatDouble(1);
    const F64 nowhere = SplatDouble(__builtin_nan(""));
    for (std::size_t done = 0; done < points; done += kBlock) {
        const std::size_t count = points - done < kBlock ? points - done : kBlock;
        // What a short block leaves is not read by anyone, but divided.
        for (std::size_t i = count; i < kBlock; ++i)
            x[i] = y[i] = w[i] = 0;
        for (std::size_t i = 0; i < count; ++i) {
            x[i] = line.x;
            y[i] = line.y;
            w[i] = line.w;
            line.x += line.stepX;
            line.y += line.stepY;
            line.w += line.stepW;
        }
        for (std::size_t i = 0; i < count; i += kLanes64) {
            const F64 divisor = LoadDoubles(w + i);
            const F64 scale = Select(AreBefore(divisor, line.sign), one / divisor, nowhere);
            StoreDoubles(x + i, LoadDoubles(x + i) * scale);
            StoreDoubles(y + i, LoadDoubles(y + i) * scale);
        }
        std::memcpy(u + done, x, count * sizeof *u);
        std::memcpy(v + done, y, count * sizeof *v);
    }
}

} // namespace

namespace VFIL_LEVEL {

void Fill(ProjectRows& rows)
{
    rows = {.project = Project};
}

} // namespace VFIL_LEVEL
} // namespace vfil
