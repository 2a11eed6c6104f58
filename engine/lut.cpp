/// \file
/// Look-up tables: rows of whole numbers, and .cube.
#include "engine/lut.h"
#include "engine/failure.h"
#include "engine/text.h"
#include "engine/values.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <optional>

namespace vfil::engine {

using catalogue::kCurvePoints;
using catalogue::kLutColumns;
using catalogue::Parameter;
using catalogue::Table;

namespace {

constexpr auto kColumns = static_cast<std::size_t>(kLutColumns);
constexpr std::size_t kColours = 3;

// The words of a file line by line, without remarks and empty lines.
class Lines {
public:
    Lines(const Parameter& parameter, std::string path)
        : m_setting(parameter.name), m_path(std::move(path)), m_text(ReadText(m_path))
    {}

    // False behind the last line.
    bool Next()
    {
        while (m_begin < m_text.size()) {
            const std::size_t end = std::min(m_text.find('\n', m_begin), m_text.size());
            const std::string_view line = std::string_view(m_text).substr(m_begin, end - m_begin);
            m_begin = end + 1;
            ++m_number;
            m_words = Split(line.substr(0, line.find('#')), " ,;\t\r");
            if (!m_words.empty()) return true;
        }
        return false;
    }
    const std::vector<std::string>& Words() const { return m_words; }

    [[noreturn]] void Refuse(const std::string& text) const
    {
        throw RequestError(Named(m_setting) + " " + m_path + ":" + std::to_string(std::max(1L, m_number)) +
                           ": " + text);
    }

private:
    std::string m_setting;
    std::string m_path;
    std::string m_text;
    std::size_t m_begin = 0;
    long m_number = 0;
    std::vector<std::string> m_words;
};

std::string Count(std::size_t count, const std::string& what)
{
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

std::string RowsText(std::size_t count)
{
    return Count(count, "row");
}

double Number(const Parameter& parameter, const Lines& lines, const std::string& word)
{
    const auto number = ParseNumber(word);
    const std::string range = NumberText(parameter.minimum) + " .. " + NumberText(parameter.maximum);
    if (!number || *number != std::trunc(*number))
        lines.Refuse("'" + word + "' is not a whole number of " + range);
    if (*number < parameter.minimum || *number > parameter.maximum)
        lines.Refuse(word + " is out of range: numbers are " + range);
    return *number;
}

// A row in all columns: alpha is what it is where nothing is said of it.
void AddRow(const std::vector<double>& row, Table& table)
{
    const auto index = static_cast<double>(table.Rows());
    for (std::size_t c = 0; c < kColumns; ++c) {
        const bool kept = c == kColours && row.size() < kColumns;
        table.numbers.push_back(kept ? index : row[row.size() == 1 ? 0 : c]);
    }
}

void ReadRows(const Parameter& parameter, Lines& lines, Table& table)
{
    const std::string counts = parameter.lut.fewer ? "1, 3 or 4 numbers" : "4 numbers";
    constexpr auto kRows = static_cast<std::size_t>(kCurvePoints);
    std::size_t columns = 0;
    std::size_t rows = 0;
    while (lines.Next()) {
        const std::vector<std::string>& words = lines.Words();
        const std::size_t count = words.size();
        const bool fewer = parameter.lut.fewer && (count == 1 || count == kColours);
        if (count != kColumns && !fewer)
            lines.Refuse("a row of " + Count(count, "number") + "; it takes " + counts);
        if (columns == 0) columns = count;
        if (count != columns) {
            lines.Refuse("a row of " + Count(count, "number") + "; the first one has " +
                         std::to_string(columns));
        }
        std::vector<double> row;
        row.reserve(count);
        for (const std::string& word : words)
            row.push_back(Number(parameter, lines, word));
        if (++rows > kRows) lines.Refuse("there are more than " + RowsText(kRows));
        AddRow(row, table);
    }
    if (rows < kRows)
        lines.Refuse("the table ends after " + RowsText(rows) + "; it needs " + std::to_string(kRows));
}

using Colour = std::array<double, kColours>;

// A 1D table as its file has it.
struct Cube {
    std::size_t size = 0;
    Colour least{0, 0, 0};
    Colour greatest{1, 1, 1};
    std::vector<Colour> rows;
};

Colour ThreeNumbers(const Lines& lines, std::size_t first)
{
    const std::vector<std::string>& words = lines.Words();
    if (words.size() != first + kColours)
        lines.Refuse("there have to be three numbers, of red, green and blue");
    Colour colour{};
    for (std::size_t c = 0; c < kColours; ++c) {
        const auto number = ParseNumber(words[first + c]);
        if (!number) lines.Refuse("'" + words[first + c] + "' is not a number");
        colour[c] = *number;
    }
    return colour;
}

std::size_t CubeSize(const Lines& lines)
{
    constexpr long kMost = 65536;
    const auto size = lines.Words().size() == 2 ? ParseIntegers(lines.Words()[1], ',', 1) : std::nullopt;
    if (!size || size->front() < 2 || size->front() > kMost)
        lines.Refuse("LUT_1D_SIZE is one of 2 .. " + std::to_string(kMost));
    return static_cast<std::size_t>(size->front());
}

void ReadCubeLine(const Lines& lines, Cube& cube)
{
    const std::string& word = lines.Words().front();
    if (word == "TITLE") return;
    if (word == "LUT_1D_SIZE") {
        cube.size = CubeSize(lines);
    } else if (word == "DOMAIN_MIN") {
        cube.least = ThreeNumbers(lines, 1);
    } else if (word == "DOMAIN_MAX") {
        cube.greatest = ThreeNumbers(lines, 1);
    } else if (word == "LUT_3D_SIZE") {
        lines.Refuse("it is a 3D table; a 1D table, of LUT_1D_SIZE, is what will do");
    } else {
        if (cube.size == 0) lines.Refuse("'" + word + "' stands before LUT_1D_SIZE");
        const Colour row = ThreeNumbers(lines, 0);
        if (std::any_of(row.begin(), row.end(), [](double c) { return c < 0 || c > 1; }))
            lines.Refuse("a number is out of range: numbers are 0 .. 1");
        if (cube.rows.size() == cube.size) lines.Refuse("there are more than " + RowsText(cube.size));
        cube.rows.push_back(row);
    }
}

// What a byte becomes, between two rows.
double ByteOf(const Cube& cube, std::size_t colour, long byte)
{
    const double least = cube.least[colour];
    const double x = static_cast<double>(byte) / (kCurvePoints - 1);
    const double share = std::clamp((x - least) / (cube.greatest[colour] - least), 0.0, 1.0);
    const double place = share * static_cast<double>(cube.size - 1);
    const std::size_t low = std::min(static_cast<std::size_t>(place), cube.size - 2);
    const double fraction = place - static_cast<double>(low);
    const double from = cube.rows[low][colour];
    return std::round((kCurvePoints - 1) * (from + fraction * (cube.rows[low + 1][colour] - from)));
}

void ReadCube(Lines& lines, Table& table)
{
    Cube cube;
    while (lines.Next())
        ReadCubeLine(lines, cube);
    if (cube.size == 0) lines.Refuse("there is no LUT_1D_SIZE");
    if (cube.rows.size() < cube.size) {
        lines.Refuse("the table ends after " + RowsText(cube.rows.size()) + "; it needs " +
                     std::to_string(cube.size));
    }
    for (std::size_t c = 0; c < kColours; ++c) {
        // NaN is no number to begin with.
        if (!(cube.least[c] < cube.greatest[c])) lines.Refuse("DOMAIN_MIN is not below DOMAIN_MAX");
    }
    for (long i = 0; i < kCurvePoints; ++i)
        AddRow({ByteOf(cube, 0, i), ByteOf(cube, 1, i), ByteOf(cube, 2, i)}, table);
}

} // namespace

Table ReadLut(const Parameter& parameter, const std::string& path)
{
    Lines lines(parameter, path);
    Table table{.numbers = {}, .columns = kLutColumns, .path = path};
    const bool cube = UpperCase(std::filesystem::path(path).extension().string()) == ".CUBE";
    if (cube && !parameter.lut.cube)
        throw RequestError(Named(parameter.name) + " " + path + ": a .cube file is none for this; it takes " +
                           std::to_string(kCurvePoints) + " rows of 4 numbers");
    if (cube)
        ReadCube(lines, table);
    else
        ReadRows(parameter, lines, table);
    return table;
}

} // namespace vfil::engine
