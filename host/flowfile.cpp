/// \file
/// Files of vectors.
#include "host/flowfile.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <string>

namespace vfil::host {

namespace {

constexpr std::size_t kHeadBytes = 12;
constexpr std::size_t kPairBytes = 8;
constexpr double kMostKnown = 1e9;

std::uint32_t NumberAt(const unsigned char* bytes)
{
    return std::uint32_t{bytes[0]} | std::uint32_t{bytes[1]} << 8 | std::uint32_t{bytes[2]} << 16 |
           std::uint32_t{bytes[3]} << 24;
}

double FloatAt(const unsigned char* bytes)
{
    return double{std::bit_cast<float>(NumberAt(bytes))};
}

std::string SizeName(long width, long height)
{
    return std::to_string(width) + "x" + std::to_string(height);
}

// The size that the head says, when the file is as long as that asks for.
void ReadHead(const std::filesystem::path& path, std::ifstream& file, Flow& flow)
{
    unsigned char head[kHeadBytes];
    file.read(reinterpret_cast<char*>(head), kHeadBytes);
    if (!file) throw FileError(path, "is too short for a file of vectors (.flo)");
    if (std::memcmp(head, "PIEH", 4) != 0)
        throw FileError(path, "is no file of vectors (.flo): it does not begin with PIEH");
    const std::uint32_t width = NumberAt(head + 4);
    const std::uint32_t height = NumberAt(head + 8);
    const auto most = static_cast<std::uint32_t>(kMaxFileSide);
    if (width < 1 || height < 1 || width > most || height > most ||
        std::uint64_t{width} * height * kPairBytes > kMaxFileBytes) {
        throw FileError(path, "says a size of " + std::to_string(width) + "x" + std::to_string(height) +
                                  ", which is none for a picture");
    }
    flow.width = static_cast<long>(width);
    flow.height = static_cast<long>(height);
    const std::uint64_t needed = kHeadBytes + std::uint64_t{width} * height * kPairBytes;
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(path, error);
    if (error) throw FileError(path, "cannot be read: " + error.message());
    if (size == needed) return;
    throw FileError(path, "holds " + std::to_string(size) + " bytes, but vectors for " +
                              SizeName(flow.width, flow.height) + " pixels have " + std::to_string(needed));
}

void TakeVector(const std::filesystem::path& path, const unsigned char* bytes, Flow& flow, long column,
                long row)
{
    const double x = FloatAt(bytes);
    const double y = -FloatAt(bytes + 4);
    if (!(std::abs(x) <= kMostKnown && std::abs(y) <= kMostKnown)) {
        throw FileError(path, "has no vector for the pixel in column " + std::to_string(column) + " of row " +
                                  std::to_string(row) + " from the top");
    }
    const auto index =
        static_cast<std::size_t>(flow.height - 1 - row) * static_cast<std::size_t>(flow.width) +
        static_cast<std::size_t>(column);
    flow.x[index] = x;
    flow.y[index] = y == 0 ? 0 : y; // without the sign that turning it over gave to 0
}

} // namespace

Flow ReadFlow(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file || std::filesystem::is_directory(path)) throw FileError(path, "cannot be read");
    Flow flow;
    ReadHead(path, file, flow);
    const auto columns = static_cast<std::size_t>(flow.width);
    flow.x.resize(columns * static_cast<std::size_t>(flow.height));
    flow.y.resize(flow.x.size());
    std::vector<unsigned char> bytes(columns * kPairBytes);
    for (long row = 0; row < flow.height; ++row) {
        file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        if (!file) throw FileError(path, "cannot be read to its end");
        for (long column = 0; column < flow.width; ++column)
            TakeVector(path, bytes.data() + static_cast<std::size_t>(column) * kPairBytes, flow, column, row);
    }
    return flow;
}

} // namespace vfil::host
