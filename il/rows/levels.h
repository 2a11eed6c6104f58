/// \file
/// Levels of vector instructions, and the table of kernels of each. Included by the sources that hold a
/// family's plain forms.
#pragma once

#include <array>
#include <cstddef>
#include <type_traits>

namespace vfil {

/// Each level has all that the one before it has.
enum class Level { Plain, Sse2, Avx2, Avx512 };
inline constexpr std::size_t kLevels = 4;

/// The highest level that this machine and its system can run.
Level BestLevel();

/// A result of at least so many bytes, such as 1920 x 1080 pixels of 4:2:2, leaves the cache before anyone
/// reads it again. Stores that go around the cache save the read of the lines they fill: 0.22 for 0.31 ns a
/// pixel of two 1920 x 1080 inputs. A run that used such a kernel must end with FinishStreaming.
inline constexpr std::size_t kStreamingBytes = std::size_t{3} << 20;

/// Makes what streaming kernels stored on this thread be seen by other threads before anything it stores
/// later: no lock does that for stores around the cache. Once a run, since each fence waits for memory: once
/// a row took a copy from 0.15 to 0.18 ns a pixel.
void FinishStreaming();

// The levels that have vector sources here, lowest first, as in Level and in cmake/levels.cmake.
#if defined(__x86_64__)
#define VFIL_EACH_LEVEL(what, Rows) what(sse2, Rows) what(avx2, Rows) what(avx512, Rows)
#else
#define VFIL_EACH_LEVEL(what, Rows)
#endif

/// Declares the functions that fill a family's table, one a level: each takes the entries that its level has
/// a vector form of, and is defined in the *_simd.cpp of the family.
#define VFIL_DECLARE_FILL(Rows) VFIL_EACH_LEVEL(VFIL_DECLARE_FILL_AT, Rows)
// NOLINTBEGIN(bugprone-macro-parentheses): Rows is a type
#define VFIL_DECLARE_FILL_AT(level, Rows)                                                                    \
    namespace level {                                                                                        \
    void Fill(Rows& rows);                                                                                   \
    }
// NOLINTEND(bugprone-macro-parentheses)

/// These functions, as LevelTables takes them; null for levels that have no vector sources here.
template <class Rows>
using LevelFills = std::array<void (*)(Rows&), kLevels - 1>;
// clang-format off
#define VFIL_FILLS {VFIL_EACH_LEVEL(VFIL_FILL_AT, )}
// clang-format on
#define VFIL_FILL_AT(level, Rows) level::Fill,

/// Ends the program when one of a table's pointers is null: whoever adds an entry and forgets a form of it
/// learns so from the first test, not from the first picture.
///
/// \param pointers  \p count pointers to functions, of any types.
void RefuseNull(const void* pointers, std::size_t count);

/// A family's tables. A level starts as a copy of the level below, so that an entry is never null. A level
/// that the machine lacks stays that copy: even its Fill may use instructions that trap here.
template <class Rows>
class LevelTables {
    // Nothing but pointers to functions, so that they can be looked through.
    static_assert(std::is_trivially_copyable_v<Rows> && sizeof(Rows) % sizeof(void (*)()) == 0);

public:
    LevelTables(const Rows& plain, const LevelFills<Rows>& fills)
    {
        m_tables[0] = plain;
        RefuseNull(&plain, sizeof(Rows) / sizeof(void (*)()));
        for (std::size_t at = 1; at < kLevels; ++at) {
            m_tables[at] = m_tables[at - 1];
            if (static_cast<Level>(at) > BestLevel()) continue;
            RefuseNull(&fills[at - 1], 1);
            fills[at - 1](m_tables[at]);
            RefuseNull(&m_tables[at], sizeof(Rows) / sizeof(void (*)()));
        }
    }

    const Rows& At(Level level) const { return m_tables[static_cast<std::size_t>(level)]; }

private:
    std::array<Rows, kLevels> m_tables;
};

} // namespace vfil
