/// \file
/// The random sequence of the library, step by step: a multiplicative generator in 64 bits behind a shuffle.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace vfil::test {

class RandomModel {
public:
    /// \param seed 1 .. 2147483646
    explicit RandomModel(std::int64_t seed) : m_state(seed)
    {
        for (std::size_t j = 40; j-- > 0;)
            if (const auto next = Next(); j < m_table.size()) m_table[j] = next;
        m_last = m_table[0];
    }
    /// The next draw, 0 .. 0.99999988.
    float Draw()
    {
        const auto next = Next();
        auto& slot = m_table[static_cast<std::size_t>(m_last / (1 << 26))];
        m_last = slot;
        slot = next;
        return std::min(static_cast<float>(m_last) * 0x1p-31F, 0x1.fffffcp-1F);
    }

private:
    std::int64_t Next() { return m_state = m_state * 16807 % 2147483647; }

    std::int64_t m_state;
    std::array<std::int64_t, 32> m_table{};
    std::int64_t m_last;
};

} // namespace vfil::test
