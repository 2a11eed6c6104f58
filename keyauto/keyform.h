/// \file
/// The keyers that may be chosen, as functions of a point.
#pragma once

#include "keyauto/screen.h"
#include "keyauto/simplex.h"
#include "keyauto/trial.h"

#include <vector>

namespace vfil::keyauto {

/// A keyer of the catalogue whose parameters are to be found.
struct KeyForm {
    const char* keyer;                                              ///< its name
    Point steps;                                                    ///< of a first search along each axis
    std::vector<Point> (*starts)(const Screen& screen);             ///< where searches may begin
    Settings (*settings)(const Screen& screen, const Point& point); ///< rounded to what a text shows
};

/// All of them.
const std::vector<KeyForm>& KeyForms();

} // namespace vfil::keyauto
