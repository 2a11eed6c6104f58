/// \file
/// The vector forms of the kernels of colour correction against the plain ones, which the operator's model
/// checks.
#include "il/rows/treat/correctpairrows.h"
#include "il/rows/treat/correctrows.h"

#include "support/rowcheck.h"

namespace vfil {
namespace {

std::int32_t Signed(std::mt19937& random, std::int32_t most)
{
    return static_cast<std::int32_t>(test::RandomIn(random, -most, most));
}

/// A correction of elements up to so much; what is added to the sums may be far more.
Correction RandomCorrection(std::mt19937& random, std::int32_t element, std::int32_t increment)
{
    Correction correction{};
    for (CorrectionMatrix* matrix : {&correction.matrix, &correction.behindLut}) {
        for (auto& row : matrix->at)
            for (std::int32_t& v : row)
                v = Signed(random, &row == matrix->at + 3 ? 200 * element : element);
    }
    for (auto& [cb, cr, y, alpha] : correction.lut) {
        for (std::int16_t* v : {&cb, &cr, &y, &alpha})
            *v = static_cast<std::int16_t>(Signed(random, increment));
    }
    for (auto& table : correction.tables)
        for (std::uint8_t& v : table)
            v = static_cast<std::uint8_t>(random());
    correction.hasLut = correction.hasTables = true;
    return correction;
}

/// A kernel, and what calls it with all that it takes beside its rows.
template <class Kernel, class Call>
struct Bound {
    Kernel kernel;
    const Call* call;

    template <class Sample>
    void operator()(const Sample* in, Sample* out, std::size_t count) const
    {
        (*call)(kernel, in, out, count);
    }
    friend bool operator!=(const Bound& a, const Bound& b) { return a.kernel != b.kernel; }
    friend std::ostream& operator<<(std::ostream& stream, const Bound&) { return stream; }
};

/// \param rowsAt  The table of a level, of which select takes a kernel's entries.
template <class Sample, class RowsAt, class Select, class... Params>
void Check(const char* name, Shape shape, RowsAt rowsAt, Select select, const Params&... params)
{
    const auto call = [&](auto kernel, auto... row) { kernel(row..., params...); };
    CheckShapedRow<Sample, Sample>(name, shape, Level::Avx2, [&](Level level) {
        const auto& kernels = select(rowsAt(level));
        using Kernel = std::remove_cvref_t<decltype(kernels[0])>;
        using Both = Bound<Kernel, decltype(call)>;
        return std::array{Both{kernels[0], &call}, Both{kernels[1], &call}};
    });
}

constexpr EncodeTable kBack{{66, 129, 25}, {-38, -74, 112}, {112, -94, -18}};

TEST(CorrectRows, VectorFormsAreThePlainForms)
{
    std::mt19937 random(3);
    const Correction correction = RandomCorrection(random, 300, 200);
    ASSERT_TRUE(FitsVectors(correction, 65535));
    for (int i = 0; i < 4; ++i) {
        const auto entry = [i](auto& kernels) -> auto&
        {
            return kernels[i / 2][i % 2];
        };
        for (const unsigned channels : {15U, 7U, 9U}) {
            Check<std::uint8_t>(
                "correct8", {4, 4}, CorrectRowsAt, [=](auto& rows) -> auto& { return entry(rows.correct8); },
                correction, channels);
            Check<std::uint16_t>(
                "correct16", {4, 4},
                CorrectRowsAt, [=](auto& rows) -> auto& { return entry(rows.correct16); }, correction,
                channels);
        }
        for (const bool chromaFirst : {false, true})
            Check<std::uint8_t>(
                "pairs", {4, 4},
                CorrectPairRowsAt, [=](auto& rows) -> auto& { return entry(rows.pairs[chromaFirst]); },
                correction, kBack);
    }
    Check<std::uint8_t>(
        "replace", {1, 1}, CorrectPairRowsAt, [](auto& rows) -> auto& { return rows.replace; },
        &correction.tables[0][0]);
}

template <class Sample, class Select>
void CheckMix(Select select)
{
    std::mt19937 random(5);
    for (const Level level : VectorLevels()) {
        if (level < Level::Avx2) continue;
        EXPECT_NE(select(CorrectRowsAt(level))[1], select(CorrectRowsAt(Below(level)))[1]);
        for (const auto kernel : select(CorrectRowsAt(level))) {
            ForEachPlacement<Sample>([&](std::size_t pixels, const Placement& place) {
                const auto in = EndRichSamples<Sample>(4 * pixels, random);
                const auto corrected = EndRichSamples<Sample>(4 * pixels, random);
                // Its memory ends with the row, for the address sanitizer to see.
                PlacedRow<Sample> mask(EndRichSamples<Sample>(pixels, random), place.back % 8, false);
                const auto run = [&](auto row) {
                    return [&, row](const Sample* a, const Sample* b, Sample* out) {
                        row(a, b, mask.Data(), out, pixels, pixels % 3 == 0 ? 15 : 6);
                    };
                };
                ASSERT_TRUE(
                    SameRuns(in, corrected, place, run(kernel), run(select(CorrectRowsAt(Level::Plain))[0])))
                    << "pixels " << pixels << ", at " << place.out;
            });
        }
    }
}

TEST(CorrectRows, VectorMixesAreThePlainOnes)
{
    CheckMix<std::uint8_t>([](auto& rows) -> auto& { return rows.mix8; });
    CheckMix<std::uint16_t>([](auto& rows) -> auto& { return rows.mix16; });
}

/// All corrections that are said to fit, up to the last one.
TEST(CorrectRows, WhatFitsVectorsIsExact)
{
    std::mt19937 random(7);
    int fitting = 0;
    for (int i = 0; i < 6000; ++i) {
        const auto element = static_cast<std::int32_t>(1U << random() % 18);
        Correction correction = RandomCorrection(random, element, 1 << random() % 16);
        for (std::int32_t& added : correction.matrix.at[3])
            added = random() % 4 == 0 ? Signed(random, INT32_MAX) : added;
        correction.hasLut = random() % 2;
        const auto compare = [&](auto sample, auto kernelAt, auto... params) {
            using Sample = decltype(sample);
            if (!FitsVectors(correction, static_cast<Sample>(~Sample{0}))) return;
            ++fitting;
            const auto in = EndRichSamples<Sample>(4 * 64, random);
            std::vector<Sample> out(in.size()), plain(in.size());
            kernelAt(BestLevel())(in.data(), out.data(), 64, correction, params...);
            kernelAt(Level::Plain)(in.data(), plain.data(), 64, correction, params...);
            ASSERT_EQ(out, plain) << "case " << i;
        };
        const bool lut = correction.hasLut;
        compare(
            std::uint8_t{}, [=](Level level) { return CorrectRowsAt(level).correct8[lut][0][0]; }, 15U);
        compare(
            std::uint16_t{}, [=](Level level) { return CorrectRowsAt(level).correct16[lut][0][0]; }, 15U);
        compare(
            std::uint8_t{}, [=](Level level) { return CorrectPairRowsAt(level).pairs[0][lut][0][0]; }, kBack);
    }
    // Neither all nor none of them.
    EXPECT_GT(fitting, 3000);
    EXPECT_LT(fitting, 15000);
}

} // namespace
} // namespace vfil
