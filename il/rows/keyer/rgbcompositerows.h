/// \file
/// The row kernel that composites RGBA pixels by a colour difference, and corrects spill. It has its plain
/// form alone.
#pragma once

#include <cstddef>
#include <cstdint>

namespace vfil {

/// Parameters of the key; channels are 0 for red, 1 for green, 2 for blue.
struct RgbCompositeParams {
    int key, p, q,
        other; ///< the channels: keyed, of both weights, and the larger rival of the key beside red
    std::int32_t wP, wKey, wQ;             ///< 65536ths; the key is 255 with all of them 0
    std::int32_t limit;                    ///< of the key channel
    std::int32_t low16, high16, low, gain; ///< the ends as 65536ths, the lower one as a whole number
    bool matte;                            ///< write the matte, grey
    bool spill;                            ///< correct spill
    bool is709;                            ///< of the way to YCC and back
    std::int32_t threshold, softness, lumaTerm;
    std::uint8_t spillCb, spillCr;
};

/// Output pixels are opaque. The output may be one of the inputs exactly.
void CompositeRgbRow(const std::uint8_t* a, const std::uint8_t* b, std::uint8_t* out, std::size_t pixels,
                     const RgbCompositeParams& params);

} // namespace vfil
