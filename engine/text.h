/// \file
/// Text helpers: joining, numbers, and what a misspelt word may have meant.
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vfil::engine {

std::string Join(const std::vector<std::string>& parts, std::string_view separator);

/// The parts between any of the separators, without empty ones.
std::vector<std::string> Split(std::string_view text, std::string_view separators);

std::string UpperCase(std::string_view text);

/// A finite decimal number that is the whole of \p text.
std::optional<double> ParseNumber(std::string_view text);

/// Exactly \p count numbers with \p separator between them.
std::optional<std::vector<double>> ParseNumbers(std::string_view text, char separator, std::size_t count);

/// The same for whole numbers of 32 bits.
std::optional<std::vector<long>> ParseIntegers(std::string_view text, char separator, std::size_t count);

/// Red, green, blue and alpha of "#rrggbb", "R,G,B" or "R,G,B,A"; alpha is 1 unless it is given.
std::optional<std::array<double, 4>> ParseColour(std::string_view text);

/// The shortest decimal text of a number.
std::string NumberText(double value);

/// "10,20,100,50"
std::string NumberList(const std::vector<long>& numbers);

/// Insertions, deletions, substitutions and swaps of neighbours that turn one word into the other.
std::size_t EditDistance(std::string_view a, std::string_view b);

/// "; did you mean 'over'?" for the candidate nearest to \p word, or "" when none is near.
std::string DidYouMean(std::string_view word, const std::vector<std::string>& candidates);

} // namespace vfil::engine
