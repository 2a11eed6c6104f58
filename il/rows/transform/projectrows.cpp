/// \file
/// The kernel that projects the pixels of a line: the plain form.
#include "il/rows/transform/projectrows.h"

#include <limits>

namespace vfil {

namespace {

void Project(ProjectLine& line, std::size_t points, double* u, double* v)
{
    constexpr double kNowhere = std::numeric_limits<double>::quiet_NaN();
    for (std::size_t i = 0; i < points; ++i) {
        const bool isBefore = IsBefore(line.w, line.sign);
        const double scale = isBefore ? 1 / line.w : kNowhere;
        u[i] = line.x * scale;
        v[i] = line.y * scale;
        line.x += line.stepX;
        line.y += line.stepY;
        line.w += line.stepW;
    }
}

} // namespace

VFIL_DECLARE_FILL(ProjectRows)

bool IsBefore(double w, ProjectSign sign)
{
    switch (sign) {
    case ProjectSign::Negative:
        return w < 0;
    case ProjectSign::Positive:
        return w > 0;
    case ProjectSign::Both:
        break;
    }
    return w != 0;
}

const ProjectRows& ProjectRowsAt(Level level)
{
    static const LevelTables<ProjectRows> tables({.project = Project}, VFIL_FILLS);
    return tables.At(level);
}

ProjectKernel FindProjectKernel(bool useVectors)
{
    return ProjectRowsAt(useVectors ? BestLevel() : Level::Plain).project;
}

} // namespace vfil
