/// \file
/// What follows of the combs of a clip.
#pragma once

#include <optional>
#include <vector>

namespace vfil::fieldscan {

/// How the two fields of frames follow each other in time.
enum class Order {
    Unknown, ///< nothing moves that would tell
    Progressive,
    Top,
    Bottom,
    Mixed, ///< not the same everywhere
};

/// "unknown", "progressive", "top", "bottom", "mixed".
const char* Word(Order order);

/// Combs of two frames that follow each other, in 8-bit levels: means over the blocks where something moves.
///
/// Fields that are a moment apart comb, and more so the farther apart they are. Of progressive frames the
/// frames themselves comb least, and both other weaves alike. Where the top field comes first, the bottom
/// field lies between the top fields of its frame and of the next one, and combs with both alike, but the top
/// field is three fields away from the bottom field of the next frame.
struct Combs {
    double own = 0;        ///< of the two frames, as they are
    double nextTop = 0;    ///< of the first one's bottom field with the second one's top field
    double nextBottom = 0; ///< of the first one's top field with the second one's bottom field
};

/// The order that combs tell; Unknown between two of them.
Order OrderOf(const Combs& combs);

/// Two frames that follow each other.
struct Pair {
    bool moves = false; ///< enough of the picture does
    double change = 0;  ///< of samples, over the whole picture
    Combs combs;
};

/// Frames that follow each other with one verdict.
struct Stretch {
    long first = 0; ///< frame, counted from that of the scan
    long end = 0;   ///< the frame behind its last
    Order order = Order::Unknown;
};

/// What is found.
struct Finding {
    Order order = Order::Unknown;
    long pairs = 0;
    long cuts = 0;        ///< pairs that are left out, since the scene changes between them
    long progressive = 0; ///< pairs that say so; likewise below
    long top = 0;
    long bottom = 0;
    long undecided = 0; ///< pairs that move and lie between
    Combs combs;        ///< means of those that move
    bool faint = false; ///< no pair tells by itself, but all together do
    std::vector<Stretch> stretches;
};

/// \param faint The combs of all pairs together, where little moves.
Finding Judge(const std::vector<Pair>& pairs, const std::optional<Combs>& faint);

} // namespace vfil::fieldscan
