/// \file
/// Finds how to key a plate.
#pragma once

#include "keyauto/trial.h"

#include <stdexcept>
#include <string>
#include <vector>

namespace vfil::keyauto {

/// There is nothing to key: no screen, or nothing before it.
class NothingToKey : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A keyer with its parameters.
struct Key {
    std::string keyer; ///< a name of the catalogue
    Settings settings; ///< all that matter
    double distance =
        0; ///< from the matte that the plate suggests, in squares of 8-bit steps; less is better
};

/// What was found of a plate.
struct Finding {
    bool blue = false;       ///< a blue screen; else a green one
    catalogue::Value screen; ///< its colour: red, green, blue, each 0 .. 1
    double screenShare = 0;  ///< of the picture that shows the screen and nothing else, 0 .. 1
    double solidShare = 0;   ///< of the picture that is surely subject
    double edgeWidth = 0;    ///< of the subject's edges, in pixels
    std::vector<Key> keys;   ///< the best of each keyer, the best of all first
};

/// The keyers that FindKey knows.
std::vector<std::string> Keyers();

/// Finds the screen by the histogram of hues, then what of the picture is surely screen and surely subject,
/// what the cells between are mixed of, and at last the parameters whose matte comes nearest to that.
///
/// \param picture RGBA32; its alpha does not count.
/// \param keyer   One of Keyers(); "" for all.
/// \return with one key at least; the same for the same picture
/// \throws NothingToKey
Finding FindKey(const host::PicturePtr& picture, const std::string& keyer = "");

} // namespace vfil::keyauto
