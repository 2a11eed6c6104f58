/// \file
/// Runs a kernel and its plain form on equal rows, and compares all they wrote and left alone.
#pragma once

#include "il/rows/levels.h"
#include "support/guardedimage.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <vector>

namespace vfil {

/// Samples rich in both ends of the range.
template <class Sample>
std::vector<Sample> EndRichSamples(std::size_t count, std::mt19937& random)
{
    std::vector<Sample> samples(count);
    for (Sample& sample : samples)
        sample = static_cast<Sample>(test::RandomSample(random, static_cast<Sample>(~Sample{0})));
    return samples;
}

/// A row that starts some bytes past a guard, with a guard behind it as well if it is an output. An input's
/// memory ends with its samples, for the address sanitizer to see.
template <class Sample>
struct PlacedRow {
    std::size_t start;
    std::vector<std::uint8_t> memory;

    PlacedRow(const std::vector<Sample>& samples, std::size_t offset, bool isOutput)
        : start(kGuard + offset),
          memory(start + samples.size() * sizeof(Sample) + (isOutput ? kGuard : 0), 0xA5)
    {
        std::copy(samples.begin(), samples.end(), Data());
    }
    Sample* Data() { return reinterpret_cast<Sample*>(memory.data() + start); }
    bool operator==(const PlacedRow& other) const = default;
    static constexpr std::size_t kGuard = 64;
};

/// Where a run puts its result.
enum class Target { Apart, Back, Front };

/// The place of the rows of a run: bytes past where they could start, and where the result goes.
struct Placement {
    std::size_t back = 0, front = 0, out = 0;
    Target target = Target::Apart;
};

/// Both runs are functions of (back, front, out).
template <class Sample, class Run, class PlainRun>
bool SameRuns(const std::vector<Sample>& back, const std::vector<Sample>& front, const Placement& place,
              Run run, PlainRun plainRun)
{
    struct Rows {
        PlacedRow<Sample> back, front, out;
        bool operator==(const Rows& other) const = default;
    };
    const auto rowsAfter = [&](auto kernel) {
        Rows rows{{back, place.back, place.target == Target::Back},
                  {front, place.front, place.target == Target::Front},
                  {std::vector<Sample>(back.size(), Sample{0x5B}), place.out, true}};
        Sample* const outs[] = {rows.out.Data(), rows.back.Data(), rows.front.Data()};
        kernel(rows.back.Data(), rows.front.Data(), outs[static_cast<int>(place.target)]);
        return rows;
    };
    return rowsAfter(run) == rowsAfter(plainRun);
}

/// Calls check(pixels, placement) for rows of no pixel to more than two vectors, over every alignment of the
/// output, whatever the memory's is; the inputs have other ones.
template <class Sample, class Check>
void ForEachPlacement(Check check)
{
    constexpr std::size_t kMost = 2 * 64 / sizeof(Sample) / 4 + 3;
    for (std::size_t pixels = 0; pixels <= kMost; ++pixels)
        for (const Target target : {Target::Apart, Target::Back, Target::Front})
            check(pixels, Placement{0, 0, 0, target});
    for (std::size_t offset = 0; offset < 64; offset += sizeof(Sample))
        check(kMost - 1,
              Placement{(64 - offset) % 64, 5 * offset % 64, offset, static_cast<Target>(offset / 2 % 3)});
}

/// The levels above the plain one that this machine can run.
inline std::vector<Level> VectorLevels()
{
    std::vector<Level> levels{Level::Sse2, Level::Avx2, Level::Avx512};
    std::erase_if(levels, [](Level level) { return level > BestLevel(); });
    return levels;
}

inline Level Below(Level level)
{
    return static_cast<Level>(static_cast<int>(level) - 1);
}

/// The samples of a pixel on both sides of a kernel.
struct Shape {
    std::size_t in, out;
    bool mayBeInPlace = true;
};

/// Compares a kernel's entries in the table of each level, kernels(level), with the plain form, in rows of no
/// pixel to more than two blocks and over every alignment of the output. Equal shapes are tried in place too.
template <class In, class Out, class Kernels>
void CheckShapedRow(const char* name, Shape shape, Level lowest, Kernels kernels)
{
    constexpr std::size_t kMost = 2 * 64 + 3;
    std::mt19937 random(11);
    const auto plain = kernels(Level::Plain)[0];
    for (const Level level : VectorLevels()) {
        if (level < lowest) continue;
        const auto check = [&](auto kernel, std::size_t pixels, std::size_t offset) {
            const auto samples = EndRichSamples<In>(pixels * shape.in, random);
            PlacedRow<In> in(samples, (64 - offset) % 64 / sizeof(In) * sizeof(In), false);
            PlacedRow<Out> out(std::vector<Out>(pixels * shape.out, Out{0x5B}), offset, true);
            PlacedRow<Out> expected = out;
            kernel(in.Data(), out.Data(), pixels);
            plain(in.Data(), expected.Data(), pixels);
            ASSERT_TRUE(out == expected) << name << ", level " << static_cast<int>(level) << ", pixels "
                                         << pixels << ", at " << offset;
            if constexpr (std::is_same_v<In, Out>) {
                if (shape.in != shape.out || !shape.mayBeInPlace) return;
                PlacedRow<In> place(samples, offset, true);
                kernel(place.Data(), place.Data(), pixels);
                ASSERT_TRUE(place == expected) << name << " in place, pixels " << pixels << ", at " << offset;
            }
        };
        for (const auto kernel : kernels(level)) {
            for (std::size_t pixels = 0; pixels <= kMost; ++pixels)
                check(kernel, pixels, 0);
            for (std::size_t offset = 0; offset < 64; offset += sizeof(Out))
                check(kernel, kMost - offset / 8, offset);
        }
        EXPECT_NE(kernels(level)[1], kernels(Below(level))[1]) << name;
    }
}

} // namespace vfil
