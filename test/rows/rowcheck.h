/// \file
/// Runs a kernel and its plain form on equal rows, and compares all they wrote and left alone.
#pragma once

#include "il/rows/levels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <new>
#include <random>
#include <string>
#include <vector>

namespace vfil {

/// Samples rich in both ends of the range.
template <class Sample>
std::vector<Sample> EndRichSamples(std::size_t count, std::mt19937& random)
{
    std::vector<Sample> samples(count);
    for (Sample& sample : samples) {
        const auto bits = random();
        const auto inner = static_cast<Sample>(bits >> 16);
        const auto full = static_cast<Sample>(~Sample{0});
        sample = bits % 4 == 0 ? Sample{0} : bits % 4 == 1 ? full : inner;
    }
    return samples;
}

/// A row that starts `offset` bytes past a multiple of 64, between guard bytes. An input has none behind it:
/// its memory ends there, for the address sanitizer to see.
template <class Sample>
class PlacedRow {
public:
    PlacedRow(const std::vector<Sample>& samples, std::size_t offset, bool isOutput)
        : m_start(kGuard + offset),
          m_size(m_start + samples.size() * sizeof(Sample) + (isOutput ? kGuard : 0)),
          m_memory(static_cast<std::uint8_t*>(::operator new (m_size, std::align_val_t{kGuard})))
    {
        std::fill_n(m_memory.get(), m_size, std::uint8_t{0xA5});
        std::copy(samples.begin(), samples.end(), Data());
    }
    Sample* Data() { return reinterpret_cast<Sample*>(m_memory.get() + m_start); }
    bool operator==(const PlacedRow& other) const
    {
        return std::equal(m_memory.get(), m_memory.get() + m_size, other.m_memory.get(),
                          other.m_memory.get() + other.m_size);
    }

private:
    static constexpr std::size_t kGuard = 64;
    struct Delete {
        void operator()(std::uint8_t* p) const { ::operator delete (p, std::align_val_t{kGuard}); }
    };
    std::size_t m_start, m_size;
    std::unique_ptr<std::uint8_t, Delete> m_memory;
};

/// Where a run puts its result.
enum class Target { Apart, Back, Front };
constexpr Target kTargets[] = {Target::Apart, Target::Back, Target::Front};

/// Offsets of the rows of a run.
struct Offsets {
    std::size_t back, front, out;
};

template <class Sample>
struct PlacedRows {
    PlacedRow<Sample> back, front, out;

    PlacedRows(const std::vector<Sample>& b, const std::vector<Sample>& f, Offsets offsets, Target target)
        : back(b, offsets.back, target == Target::Back), front(f, offsets.front, target == Target::Front),
          out(std::vector<Sample>(b.size(), Sample{0x5B}), offsets.out, true)
    {}
    bool operator==(const PlacedRows& other) const = default;
};

/// Both runs are functions of (back, front, out).
template <class Sample, class Run, class PlainRun>
bool SameRuns(const std::vector<Sample>& back, const std::vector<Sample>& front, Offsets offsets,
              Target target, Run run, PlainRun plainRun)
{
    const auto treat = [target](PlacedRows<Sample>& rows, auto kernel) {
        auto& out = target == Target::Apart ? rows.out : target == Target::Back ? rows.back : rows.front;
        kernel(rows.back.Data(), rows.front.Data(), out.Data());
    };
    PlacedRows<Sample> actual(back, front, offsets, target);
    PlacedRows<Sample> expected(back, front, offsets, target);
    treat(actual, run);
    treat(expected, plainRun);
    return actual == expected;
}

/// Calls check(pixels, offsets, target) for rows of no pixel to more than two vectors, over every alignment
/// of the output; the inputs have other ones.
template <class Sample, class Check>
void ForEachPlacement(Check check)
{
    constexpr std::size_t kMost = 2 * 64 / sizeof(Sample) / 4 + 3;
    std::size_t turn = 0;
    for (std::size_t pixels = 0; pixels <= kMost; ++pixels)
        for (const Target target : kTargets)
            check(pixels, Offsets{turn++ % 2 * 64, 0, 0}, target);
    for (std::size_t offset = 0; offset < 64; offset += sizeof(Sample))
        check(kMost - 1, Offsets{(64 - offset) % 64, 5 * offset % 64, offset}, kTargets[offset / 2 % 3]);
}

/// The levels above the plain one that this machine can run.
inline std::vector<Level> VectorLevels()
{
    std::vector<Level> levels;
    for (const Level level : {Level::Sse2, Level::Avx2, Level::Avx512}) {
        if (level <= BestLevel()) levels.push_back(level);
    }
    return levels;
}

inline Level Below(Level level)
{
    return static_cast<Level>(static_cast<int>(level) - 1);
}

inline std::string LevelName(Level level)
{
    return std::vector<std::string>{"plain", "sse2", "avx2", "avx512"}[static_cast<std::size_t>(level)];
}

} // namespace vfil
