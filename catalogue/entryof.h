/// \file
/// What every family makes its entries of.
#pragma once

#include <catalogue/entry.h>
#include <catalogue/names.h>

#include <memory>

namespace vfil::catalogue {

/// A class with defaults that people expect who pick it by name, where they are not the class's own.
///
/// \tparam kSetUp  Sets them on the processor that was just constructed.
template <class P, auto kSetUp>
struct SetUp : P {
    SetUp() { kSetUp(*this); }
};

/// The entry of a class with its name by rule; what is not common to all is the family's to add.
///
/// \tparam P  The class to construct: `className`, or one that derives from it.
template <class P>
Entry EntryOf(const char* className, const char* family, const char* summary)
{
    Entry entry;
    entry.name = CommandName(className);
    entry.className = className;
    entry.family = family;
    entry.summary = summary;
    entry.outputs = {{"result", "the picture to write"}};
    entry.make = [](bool simd) -> std::unique_ptr<Operator> { return std::make_unique<OperatorOf<P>>(simd); };
    return entry;
}

/// A processor that treats whole pictures, in all channels and without a mask; inputs and formats are the
/// caller's to add.
template <class P>
Entry WholePictureEntry(const char* className, const char* family, const char* summary)
{
    Entry entry = EntryOf<P>(className, family, summary);
    entry.fixedChannels = VFIL_MODE_RGBA;
    entry.mask = MaskUse::None;
    entry.whole = true;
    entry.bands = false;
    return entry;
}

} // namespace vfil::catalogue
