/// \file
/// The register of processors. The command, its help and its completion are made from it.
#pragma once

#include <catalogue/entry.h>

#include <string_view>
#include <vector>

namespace vfil::catalogue {

/// All processors, by family.
const std::vector<Entry>& Entries();

/// The processor of a command name or alias, or null.
const Entry* Find(std::string_view name);

/// The processor that copies.
const Entry& Copier();

} // namespace vfil::catalogue
