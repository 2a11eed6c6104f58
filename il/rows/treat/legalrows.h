/// \file
/// Row kernels of the legalizer. As in comprows.h a run finds its kernel once.
///
/// In the text of these kernels a pixel is legal when its red, green and blue lie in 0 .. 255. The left pixel
/// of a pair is judged by the pair's chroma; the right one by the mean with the chroma of the next pair in
/// the rules that work on RGB, and by the pair's own, which is what is stored, in those of saturation.
///
/// The strict kernels judge both by the pair's own. Those that work on RGB store the mean of what each of the
/// two makes of chroma, shrunk as far as it takes to be legal with the luma of both; a flat picture so stays
/// flat, which it would not if the right pixel met the chroma that the left one left. Last they see to what
/// rounding leaves: no pixel of their output is outside by more than one code.
#pragma once

#include "il/rows/levels.h"
#include "il/rows/treat/legalparams.h"

namespace vfil {

VFIL_DECLARE_FILL(LegalRows)

const LegalRows& LegalRowsAt(Level level);

/// Which kernel a run takes.
struct LegalCase {
    LegalRule rule;
    bool strict;
    bool chromaFirst;
    bool useVectors; ///< else the plain form
    bool streaming;  ///< see kStreamingBytes
};

LegalRow FindLegalRow(const LegalCase& which);

} // namespace vfil
