/// \file
/// The kernels of a keyer's rows at each level against the plain form, with parameters by chance.
#pragma once

#include "support/rowcheck.h"

namespace vfil {

inline std::int32_t Any(std::mt19937& random, long low, long high)
{
    return static_cast<std::int32_t>(test::RandomIn(random, low, high));
}

/// Pixels of bytes rich in ends, of any, or of a few, so that runs of one matte come up; where there are so
/// many, with every pair of bytes in two channels.
inline std::vector<std::uint8_t> AnyPixels(std::mt19937& random, std::size_t count)
{
    std::vector<std::uint8_t> bytes = EndRichSamples<std::uint8_t>(4 * count, random);
    const auto kind = random() % 3;
    const std::array<std::uint8_t, 4> few{static_cast<std::uint8_t>(random()), 60, 145, 54};
    for (std::size_t i = 0; kind != 0 && i < 4 * count; ++i)
        bytes[i] = kind == 1 ? static_cast<std::uint8_t>(random()) : few[i % 4];
    const std::size_t one = random() % 4;
    for (std::size_t i = 0; kind == 1 && i + 4 < count; ++i) {
        bytes[4 * i + one] = static_cast<std::uint8_t>(i);
        bytes[4 * i + (one + 1) % 4] = static_cast<std::uint8_t>(i >> 8);
    }
    return bytes;
}

/// \param rows       rows(level) has the two entries of a level, of one input or two.
/// \param anyParams  anyParams(random) makes parameters that the lanes hold.
template <class Rows, class AnyParams>
void CheckKeyRows(const char* name, Level lowest, Rows rows, AnyParams anyParams)
{
    using Byte = std::uint8_t;
    std::mt19937 random(71);
    const auto check = [&](Level level, std::size_t count, const Placement& place) {
        const auto params = anyParams(random);
        const auto a = AnyPixels(random, count);
        const auto b = AnyPixels(random, count);
        const auto with = [&](auto row) {
            return [row, count, &params](const Byte* one, const Byte* two, Byte* out) {
                static_cast<void>(params); // not every row has any
                if constexpr (requires { row(one, two, out, count, params); })
                    row(one, two, out, count, params);
                else if constexpr (requires { row(one, out, count, params); })
                    row(one, out, count, params);
                else
                    row(one, out, count);
            };
        };
        for (const auto row : rows(level))
            ASSERT_TRUE(SameRuns(a, b, place, with(row), with(rows(Level::Plain)[0])))
                << name << ", level " << static_cast<int>(level) << ", count " << count << ", target "
                << static_cast<int>(place.target) << ", at " << place.out;
    };
    for (const Level level : VectorLevels()) {
        if (level < lowest) continue;
        EXPECT_NE(rows(level)[1], rows(Below(level))[1]) << name;
        ForEachPlacement<Byte>([&](std::size_t count, const Placement& place) {
            for (int turn = 0; turn < 6 && !testing::Test::HasFatalFailure(); ++turn)
                check(level, turn % 2 == 0 ? count : 3 * count + 1, place);
        });
        for (int turn = 0; turn < 9 && !testing::Test::HasFatalFailure(); ++turn)
            check(level, 65541, {});
    }
}

} // namespace vfil
