/// \file
/// Levels of vector instructions, and the table of kernels of each. Included by the sources that hold a
/// family's plain forms.
#pragma once

#include "il/rows/rowparams.h"

#include <array>
#include <cstddef>

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

struct BoxRows;
struct ConvRows;
struct EdgeRows;
struct RankRows;
struct RecursionRows;
struct YccRows;
struct KeyRows;
struct DepthRows;
struct ModelRows;

// Each takes the entries that its level has a vector form of; defined in the *_simd.cpp of the family.
#define VFIL_DECLARE_LEVEL(level)                                                                            \
    namespace level {                                                                                        \
    void Fill(CompRows& rows);                                                                               \
    void Fill(PointRows& rows);                                                                              \
    void Fill(YccRows& rows);                                                                                \
    void Fill(KeyRows& rows);                                                                                \
    void Fill(DepthRows& rows);                                                                              \
    void Fill(ModelRows& rows);                                                                              \
    void Fill(BoxRows& rows);                                                                                \
    void Fill(ConvRows& rows);                                                                               \
    void Fill(EdgeRows& rows);                                                                               \
    void Fill(RankRows& rows);                                                                               \
    void Fill(RecursionRows& rows);                                                                          \
    }
VFIL_DECLARE_LEVEL(sse2)
VFIL_DECLARE_LEVEL(avx2)
VFIL_DECLARE_LEVEL(avx512)
#undef VFIL_DECLARE_LEVEL

/// A family's tables. A level starts as a copy of the level below, so that an entry is never null. A level
/// that the machine lacks stays that copy: even its Fill may use instructions that trap here.
template <class Rows>
class LevelTables {
public:
    explicit LevelTables(const Rows& plain)
    {
        m_tables.fill(plain);
#if defined(__x86_64__)
        Raise(Level::Sse2, sse2::Fill);
        Raise(Level::Avx2, avx2::Fill);
        Raise(Level::Avx512, avx512::Fill);
#endif
    }

    const Rows& At(Level level) const
    {
        return m_tables[static_cast<std::size_t>(level)];
    }

private:
    void Raise(Level level, void (*fill)(Rows&))
    {
        const auto at = static_cast<std::size_t>(level);
        m_tables[at] = m_tables[at - 1];
        if (level <= BestLevel()) fill(m_tables[at]);
    }

    std::array<Rows, kLevels> m_tables;
};

} // namespace vfil
