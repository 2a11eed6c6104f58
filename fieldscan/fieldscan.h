/// \file
/// How the fields of a clip follow each other in time, from its samples alone.
#pragma once

#include "fieldscan/combs.h"
#include "fieldscan/verdict.h"

#include <array>

namespace vfil::fieldscan {

/// Looks at frames in order. For one thread at a time.
class FieldScan {
public:
    /// The next frame. All have the same size and format.
    void Add(const host::Picture& picture);
    /// What the frames so far tell.
    Finding Result() const;

    long Frames() const { return m_count; }

private:
    struct Frame {
        NarrowLuma luma;
        BlockFigures combs;
    };

    // Sums over blocks, or over pairs of a block.
    struct Sums {
        double own = 0;
        double nextTop = 0;
        double nextBottom = 0;
        double change = 0;
        double twoChange = 0; ///< of two frames
        double count = 0;

        Sums& operator+=(const Sums& other);
        Combs Means() const;
        bool Moves(double leastSpread, double leastRise, double leastGrowth) const;
    };

    void Compare(const Frame& before, const Frame& now);
    std::optional<Combs> Faint() const;

    std::array<Frame, 3> m_frames; ///< frame n is at n % 3
    long m_count = 0;
    std::vector<Pair> m_pairs;
    std::vector<Sums> m_blocks; ///< of pairs in which nothing moves clearly
};

} // namespace vfil::fieldscan
