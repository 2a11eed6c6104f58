/// \file
/// Text helpers.
#include "engine/text.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>

namespace vfil::engine {

namespace {

/// \param base Of a whole number, when it is not 10.
template <class Number, class... Base>
std::optional<Number> ParseWhole(std::string_view text, Base... base)
{
    Number value{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base...);
    if (error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return value;
}

std::optional<long> ParseInteger(std::string_view text)
{
    const auto value = ParseWhole<std::int32_t>(text);
    if (!value) return std::nullopt;
    return *value;
}

template <class Number, class Parse>
std::optional<std::vector<Number>> ParseList(std::string_view text, char separator, std::size_t count,
                                             Parse parse)
{
    std::vector<Number> values;
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t end = i + 1 < count ? text.find(separator) : text.size();
        if (end == std::string_view::npos) return std::nullopt;
        const std::optional<Number> value = parse(text.substr(0, end));
        if (!value) return std::nullopt;
        values.push_back(*value);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return values;
}

} // namespace

std::string Join(const std::vector<std::string>& parts, std::string_view separator)
{
    std::string text;
    for (const std::string& part : parts) {
        if (!text.empty()) text += separator;
        text += part;
    }
    return text;
}

std::vector<std::string> Split(std::string_view text, std::string_view separators)
{
    std::vector<std::string> parts;
    std::size_t begin = 0;
    while ((begin = text.find_first_not_of(separators, begin)) != std::string_view::npos) {
        const std::size_t end = std::min(text.find_first_of(separators, begin), text.size());
        parts.emplace_back(text.substr(begin, end - begin));
        begin = end;
    }
    return parts;
}

std::string UpperCase(std::string_view text)
{
    std::string upper(text);
    for (char& c : upper)
        c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return upper;
}

std::optional<double> ParseNumber(std::string_view text)
{
    const auto value = ParseWhole<double>(text);
    return value && std::isfinite(*value) ? value : std::nullopt;
}

std::optional<std::vector<double>> ParseNumbers(std::string_view text, char separator, std::size_t count)
{
    return ParseList<double>(text, separator, count, ParseNumber);
}

std::optional<std::vector<long>> ParseIntegers(std::string_view text, char separator, std::size_t count)
{
    return ParseList<long>(text, separator, count, ParseInteger);
}

std::optional<std::array<double, 4>> ParseColour(std::string_view text)
{
    if (!text.starts_with('#')) {
        auto numbers = ParseNumbers(text, ',', 3);
        if (numbers) numbers->push_back(1);
        if (!numbers) numbers = ParseNumbers(text, ',', 4);
        if (!numbers) return std::nullopt;
        return std::array{(*numbers)[0], (*numbers)[1], (*numbers)[2], (*numbers)[3]};
    }
    std::array<double, 4> colour{0, 0, 0, 1};
    if (text.size() != 7) return std::nullopt;
    for (std::size_t i = 0; i < 3; ++i) {
        const auto byte = ParseWhole<std::uint8_t>(text.substr(1 + 2 * i, 2), 16);
        if (!byte) return std::nullopt;
        colour[i] = *byte / 255.0;
    }
    return colour;
}

std::string NumberText(double value)
{
    char buffer[32];
    const auto [end, error] = std::to_chars(buffer, buffer + sizeof buffer, value);
    return error == std::errc() ? std::string(buffer, end) : std::string("?");
}

std::string NumberList(const std::vector<long>& numbers)
{
    std::vector<std::string> texts(numbers.size());
    std::transform(numbers.begin(), numbers.end(), texts.begin(),
                   [](long number) { return std::to_string(number); });
    return Join(texts, ",");
}

std::size_t EditDistance(std::string_view a, std::string_view b)
{
    std::vector<std::vector<std::size_t>> distance(a.size() + 1, std::vector<std::size_t>(b.size() + 1));
    for (std::size_t i = 0; i <= a.size(); ++i) {
        for (std::size_t j = 0; j <= b.size(); ++j) {
            if (i == 0 || j == 0) {
                distance[i][j] = i + j;
                continue;
            }
            const std::size_t substitution = distance[i - 1][j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
            std::size_t least = std::min({distance[i - 1][j] + 1, distance[i][j - 1] + 1, substitution});
            const bool swapped = i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1];
            if (swapped) least = std::min(least, distance[i - 2][j - 2] + 1);
            distance[i][j] = least;
        }
    }
    return distance[a.size()][b.size()];
}

std::string DidYouMean(std::string_view word, const std::vector<std::string>& candidates)
{
    // A third of the letters may be wrong: more would offer words that have nothing to do with it.
    std::size_t least = std::max<std::size_t>(1, word.size() / 3) + 1;
    const std::string* best = nullptr;
    for (const std::string& candidate : candidates) {
        const std::size_t distance = EditDistance(word, candidate);
        if (distance >= least) continue;
        least = distance;
        best = &candidate;
    }
    return best ? "; did you mean '" + *best + "'?" : std::string();
}

} // namespace vfil::engine
