/// \file
/// Sums over two mattes.
#include "score/score.h"

#include <cstdlib>
#include <stdexcept>

namespace vfil::score {

namespace {

constexpr double kPerByte = 257; // coverage in 8-bit units

void CheckSizes(const Matte& matte, const Matte& truth)
{
    if (matte.width != truth.width || matte.height != truth.height)
        throw std::invalid_argument("the mattes differ in size");
}

std::optional<double> Quotient(double sum, std::uint64_t count)
{
    if (count == 0) return std::nullopt;
    return sum / static_cast<double>(count);
}

// Whole numbers hold the sums of a row exactly: 65535 pixels of 65535 squared stay below 2^48.
Score CompareRow(const std::uint16_t* matte, const std::uint16_t* truth, long width)
{
    Score row;
    std::uint64_t squares = 0;
    std::uint64_t differences = 0;
    std::uint64_t edgeDifferences = 0;
    for (long x = 0; x < width; ++x) {
        const std::int64_t m = matte[x];
        const std::int64_t t = truth[x];
        const auto difference = static_cast<std::uint64_t>(std::abs(m - t));
        squares += difference * difference;
        differences += difference;
        const bool edge = 100 * t > 5 * kSolid && 100 * t < 95 * kSolid;
        row.edgePixels += edge;
        edgeDifferences += edge ? difference : 0;
        row.screenPixels += t == 0;
        row.screenLeft += t == 0 && 100 * m > 2 * kSolid;
        row.solidPixels += t == kSolid;
        row.solidLost += t == kSolid && 100 * m < 98 * kSolid;
    }
    row.pixels = static_cast<std::uint64_t>(width);
    row.squares = static_cast<double>(squares) / (kPerByte * kPerByte);
    row.differences = static_cast<double>(differences) / kPerByte;
    row.edgeDifferences = static_cast<double>(edgeDifferences) / kPerByte;
    return row;
}

} // namespace

Score& Score::operator+=(const Score& other)
{
    pixels += other.pixels;
    squares += other.squares;
    differences += other.differences;
    edgePixels += other.edgePixels;
    edgeDifferences += other.edgeDifferences;
    screenPixels += other.screenPixels;
    screenLeft += other.screenLeft;
    solidPixels += other.solidPixels;
    solidLost += other.solidLost;
    return *this;
}

std::optional<double> Score::MeanSquaredError() const
{
    return Quotient(squares, pixels);
}

std::optional<double> Score::EdgeError() const
{
    return Quotient(edgeDifferences, edgePixels);
}

std::optional<double> Score::ScreenLeftShare() const
{
    return Quotient(static_cast<double>(screenLeft), screenPixels);
}

std::optional<double> Score::SolidLostShare() const
{
    return Quotient(static_cast<double>(solidLost), solidPixels);
}

Score Compare(const Matte& matte, const Matte& truth)
{
    CheckSizes(matte, truth);
    Score score;
    for (long y = 0; y < matte.height; ++y)
        score += CompareRow(matte.Row(y), truth.Row(y), matte.width);
    return score;
}

host::PicturePtr Differences(const Matte& matte, const Matte& truth)
{
    CheckSizes(matte, truth);
    host::PicturePtr picture = host::Picture::Create(PXFormat_Mono8, matte.width, matte.height);
    for (long y = 0; y < matte.height; ++y) {
        std::uint8_t* to = picture->Row(matte.height - 1 - y);
        for (long x = 0; x < matte.width; ++x) {
            const long difference = matte.Row(y)[x] - truth.Row(y)[x];
            const long steps = (std::labs(difference) * 127 + kSolid - 1) / kSolid;
            to[x] = static_cast<std::uint8_t>(difference < 0 ? 128 - steps : 128 + steps);
        }
    }
    return picture;
}

} // namespace vfil::score
