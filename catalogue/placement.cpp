/// \file
/// What most placements say.
#include <catalogue/placement.h>

namespace vfil::catalogue {

std::optional<Objection> Placement::Refuse(long, long) const
{
    return std::nullopt;
}

std::optional<vfILVector2l> Placement::OwnSize() const
{
    return std::nullopt;
}

std::optional<vfILBbox2l> Placement::Fills(long, long) const
{
    return std::nullopt;
}

void Placement::Pad(long)
{}

bool Placement::MayClear() const
{
    return false;
}

} // namespace vfil::catalogue
