/// \file
/// The brightest or darkest pixels of rows, for RunFold: the first by rows of several.
#pragma once

#include "il/loops/frame/runarray.h"
#include "il/rows/pixarith.h"
#include "il/rows/rank/rankrows.h"

#include <vfil/spatial.h>

namespace vfil {

/// Overlapping runs do no harm: where a pixel of the second run is the first to have the best key, the first
/// run has no such key.
template <class Format>
class PixelRows {
public:
    using Sample = typename Format::Sample;
    using Row = KeyedPixels;
    struct Target {
        operator KeyedPixels() const { return {keys, pixels}; }
        std::uint32_t* keys;
        std::uint8_t* pixels;
    };

    PixelRows(const vfILWindowRun& run, bool brightest, bool useVectors)
        : m_run(run), m_brightest(brightest), m_keyRow(FindRankCases<Sample>(useVectors).key),
          m_pick(FindPickRow(useVectors))
    {}

    /// False when memory is short.
    bool Allocate(std::size_t slots, std::size_t rows, long pixels)
    {
        m_pixels = static_cast<std::size_t>(pixels);
        m_rowWords = m_pixels * kWords;
        // One row more for the keys of a result, which nobody reads.
        if (!m_brightness.Allocate(m_pixels) || !m_inputKeys.Allocate((slots + 1) * m_rowWords) ||
            !m_buffer.Allocate(2 * rows * m_rowWords))
            return false;
        m_resultKeys = m_inputKeys.Data() + slots * m_rowWords;
        return true;
    }
    Target Buffer(std::size_t index)
    {
        std::uint32_t* const keys = m_buffer.Data() + 2 * index * m_rowWords;
        return {keys, reinterpret_cast<std::uint8_t*>(keys + m_rowWords)};
    }

    void Enter(long row, std::size_t slot)
    {
        m_keyRow(RowOf<const Sample>(m_run.windows, row), m_brightness.Data(), m_pixels);
        const auto flip = m_brightest ? Sample{0} : Arith<Sample>::kFull;
        std::uint32_t* keys = m_inputKeys.Data() + slot * m_rowWords;
        for (std::size_t i = 0; i < m_pixels; ++i)
            for (std::size_t word = 0; word < kWords; ++word)
                keys[i * kWords + word] = static_cast<std::uint32_t>(m_brightness[i] ^ flip);
    }
    Row Input(long row, std::size_t slot) const
    {
        return {m_inputKeys.Data() + slot * m_rowWords, RowOf<const std::uint8_t>(m_run.windows, row)};
    }
    static Row Shift(Row row, long pixels)
    {
        const std::ptrdiff_t words = pixels * static_cast<std::ptrdiff_t>(kWords);
        return {row.keys + words, row.pixels + 4 * words};
    }
    void Combine(const Row* rows, std::size_t count, Target out, long pixels) const
    {
        m_pick(rows, count, out.keys, out.pixels, static_cast<std::size_t>(pixels) * kWords);
    }
    void WriteResults(const Row* rows, std::size_t count, Sample* results, long pixels) const
    {
        Combine(rows, count, {m_resultKeys, reinterpret_cast<std::uint8_t*>(results)}, pixels);
    }

private:
    static constexpr std::size_t kWords = sizeof(Sample); ///< 32-bit words in a pixel of four samples

    const vfILWindowRun& m_run;
    bool m_brightest;
    BrightnessRow<Sample> m_keyRow;
    PickRow m_pick;
    std::size_t m_pixels = 0, m_rowWords = 0;
    RunArray<Sample> m_brightness;
    RunArray<std::uint32_t> m_inputKeys; ///< by slots
    std::uint32_t* m_resultKeys = nullptr;
    RunArray<std::uint32_t> m_buffer;
};

} // namespace vfil
