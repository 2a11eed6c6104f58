/// \file
/// Where a geometric operator puts its picture.
#pragma once

#include <vfil/geometry.h>

#include <optional>
#include <string>

namespace vfil::catalogue {

/// The edges of what a picture covers, in pixels with the centres of pixels on whole numbers.
struct Extent {
    double left;
    double bottom;
    double right;
    double top;
};

/// A parameter that makes no sense, by itself or beside the others.
struct Objection {
    std::string parameter;
    std::string text; ///< what is wrong with it
};

/// What a geometric operator knows of its output before there is one. Sizes are those of the input.
class Placement {
public:
    virtual ~Placement() = default;

    /// What the parameters make impossible, if anything.
    virtual std::optional<Objection> Refuse(long width, long height) const;
    /// What the picture covers; nothing where it is not to be seen, or reaches to the horizon.
    virtual std::optional<Extent> Covers(long width, long height) const = 0;
    /// The canvas that the parameters ask for, if they do.
    virtual std::optional<vfILVector2l> OwnSize() const;
    /// The pixels that the picture fills from edge to edge, where it does so with whole ones.
    virtual std::optional<vfILBbox2l> Fills(long width, long height) const;
    /// From now on the input has so many pixels around the picture that repeat its edges.
    virtual void Pad(long pixels);
    /// Whether the parameters make pixels of the picture clear.
    virtual bool MayClear() const;
    /// Whether a canvas of another size than the picture's lies around the middle of the picture. Else it
    /// begins at 0,0.
    virtual bool IsCentred() const = 0;

protected:
    Placement() = default;
    Placement(const Placement&) = default;
    Placement& operator=(const Placement&) = default;
};

} // namespace vfil::catalogue
