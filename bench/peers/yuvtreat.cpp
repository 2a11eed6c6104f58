/// \file
/// Colour correction by libyuv: factors of 64ths, and no added numbers.
#include "bench/frames.h"

#include <libyuv.h>

#include <array>

namespace bench {

namespace {

constexpr int kRow = kWidth * 4;
constexpr int kColumns = kWidth;
constexpr int kRows = kHeight;

constexpr std::array<std::int8_t, 16> kMatrix = {58, 9, -6, 0, -4, 62, 3, 0, 8, -10, 63, 0, 0, 0, 0, 61};

void CorrectRows(const Frame& frame, std::size_t first, int rows)
{
    libyuv::ARGBColorMatrix(frame.back->Pixels() + first * kRow, kRow, frame.out->Pixels() + first * kRow,
                            kRow, kMatrix.data(), kColumns, rows);
}

void AddYuvTreat()
{
    Add(std::string(kCorrect) + kByMatrix, "libyuv",
        [](const Frame& frame) { CorrectRows(frame, 0, kRows); });
    std::array<std::uint8_t, 1024> tables{};
    for (std::size_t i = 0; i < tables.size(); ++i)
        tables[i] = static_cast<std::uint8_t>(255 - i / 4);
    // Row by row: what the first step wrote is in the cache when the second one asks for it.
    Add(std::string(kCorrect) + kByTables, "libyuv", [tables](const Frame& frame) {
        for (std::size_t row = 0; row < kHeight; ++row) {
            CorrectRows(frame, row, 1);
            libyuv::ARGBColorTable(frame.out->Pixels() + row * kRow, kRow, tables.data(), 0, 0, kColumns, 1);
        }
    });
}

const Source s_source(AddYuvTreat);

} // namespace
} // namespace bench
