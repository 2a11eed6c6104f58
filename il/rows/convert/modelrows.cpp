/// \file
/// The plain forms of the kernels between colour models, and the table of their levels.
#include "il/rows/convert/modelrows.h"

#include "il/rows/convert/hls.h"
#include "il/rows/pixarith.h"

namespace vfil {

namespace {

using Triple = std::array<double, 3>;

/// Treats the components of each pixel as fractions of the full sample.
template <class Sample, class Convert>
void ConvertPixels(const Sample* in, Sample* out, std::size_t pixels, Convert convert)
{
    constexpr double kFraction = 1.0 / Arith<Sample>::kFull;
    for (; pixels != 0; --pixels, in += 4, out += 4) {
        const Triple to = convert(Triple{in[0] * kFraction, in[1] * kFraction, in[2] * kFraction});
        for (std::size_t c = 0; c < 3; ++c)
            out[c] = RoundToSample<Sample>(to[c] * Arith<Sample>::kFull);
        out[3] = in[3];
    }
}

template <class Sample>
void PlainTransform(const Sample* in, Sample* out, std::size_t pixels, const double* matrix)
{
    ConvertPixels(in, out, pixels, [matrix](const Triple& v) {
        Triple result;
        for (unsigned c = 0; c < 3; ++c)
            result[c] = v[0] * matrix[c] + v[1] * matrix[4 + c] + v[2] * matrix[8 + c] + matrix[12 + c];
        return result;
    });
}

template <class Sample>
void PlainRgbToHls(const Sample* in, Sample* out, std::size_t pixels)
{
    ConvertPixels(in, out, pixels, RgbToHls);
}

template <class Sample>
void PlainHlsToRgb(const Sample* in, Sample* out, std::size_t pixels)
{
    ConvertPixels(in, out, pixels, HlsToRgb);
}

template <class Sample>
constexpr ModelCases<Sample> kPlainCases{PlainTransform<Sample>, PlainRgbToHls<Sample>,
                                         PlainHlsToRgb<Sample>};

const LevelTables<ModelRows>& Tables()
{
    static const LevelTables<ModelRows> tables(
        {.of8 = kPlainCases<std::uint8_t>, .of16 = kPlainCases<std::uint16_t>}, VFIL_FILLS);
    return tables;
}

} // namespace

const ModelRows& ModelRowsAt(Level level)
{
    return Tables().At(level);
}

const ModelRows& FindModelRows(bool useVectors)
{
    return ModelRowsAt(useVectors ? BestLevel() : Level::Plain);
}

} // namespace vfil
