/// \file
/// The engine's text helpers and words, as the command uses them.
#pragma once

#include "engine/failure.h"
#include "engine/text.h"
#include "engine/words.h"

#include <algorithm>
#include <string>
#include <string_view>

namespace vfil::tool {

using engine::ChannelLetters;
using engine::ChoiceNames;
using engine::DidYouMean;
using engine::FormatNames;
using engine::Join;
using engine::NumberText;
using engine::ParseIntegers;
using engine::RangeText;
using engine::RequestError;
using engine::SizeText;
using engine::UpperCase;

/// The text with a capital at its start.
inline std::string Sentence(std::string_view text)
{
    return UpperCase(text.substr(0, 1)) + std::string(text.substr(std::min<std::size_t>(1, text.size())));
}

} // namespace vfil::tool
