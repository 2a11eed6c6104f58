/// \file
/// The kernel that projects the pixels of a line. Included by the vector sources too.
#pragma once

#include <cstddef>

namespace vfil {

/// Which signs of w a point may have.
enum class ProjectSign { Both, Negative, Positive };

/// A line of points in homogeneous coordinates: the next one, and the way from each to the one after it. They
/// are summed up point by point.
struct ProjectLine {
    double x, y, w;
    double stepX, stepY, stepW;
    ProjectSign sign;
};

/// Writes the next points, divided by w; NaN for a point whose w is 0 or of a sign that is not wanted. The
/// line moves on.
using ProjectKernel = void (*)(ProjectLine& line, std::size_t points, double* u, double* v);

struct ProjectRows {
    ProjectKernel project;
};

} // namespace vfil
