/// \file
/// Keyers of the catalogue, tried on a picture.
#pragma once

#include "catalogue/catalogue.h"
#include <vfil/host/picture.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace vfil::keyauto {

/// Values of parameters, by name.
using Settings = std::vector<std::pair<std::string, catalogue::Value>>;

/// A keyer that works on one picture again and again.
class Trial {
public:
    /// \param keyer   The name of a keyer of RGBA32 that the catalogue has.
    /// \param picture RGBA32.
    /// \throws std::runtime_error when there is no keyer of that name
    Trial(const std::string& keyer, host::PicturePtr picture);

    /// The picture with the matte as its alpha; holds until the next call.
    ///
    /// \param settings Of parameters that the keyer has, within their ranges.
    /// \throws std::runtime_error when the keyer refuses
    const host::PicturePtr& Run(const Settings& settings);

private:
    const catalogue::Entry& m_entry;
    host::PicturePtr m_picture;
    host::PicturePtr m_output;
    std::unique_ptr<catalogue::Operator> m_operator;
};

} // namespace vfil::keyauto
