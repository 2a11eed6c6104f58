/// \file
/// The vector forms of the kernels of colour correction against the plain ones, which the operator's model
/// checks.
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

template <class Sample, class Select, class... Params>
void Check(const char* name, Shape shape, Select select, const Params&... params)
{
    const auto call = [&](auto kernel, auto... row) { kernel(row..., params...); };
    CheckShapedRow<Sample, Sample>(name, shape, Level::Avx2, [&](Level level) {
        const auto& kernels = select(CorrectRowsAt(level));
        using Kernel = std::remove_cvref_t<decltype(kernels[0])>;
        using Both = Bound<Kernel, decltype(call)>;
        return std::array{Both{kernels[0], &call}, Both{kernels[1], &call}};
    });
}

TEST(CorrectRows, VectorFormsAreThePlainForms)
{
    std::mt19937 random(3);
    const EncodeTable back{{66, 129, 25}, {-38, -74, 112}, {112, -94, -18}};
    for (int i = 0; i < 4; ++i) {
        const bool lut = i / 2 != 0;
        const bool tables = i % 2 != 0;
        for (const unsigned channels : {15U, 7U, 9U}) {
            const Correction correction = RandomCorrection(random, 300, 200);
            ASSERT_TRUE(FitsVectors(correction, 65535));
            Check<std::uint8_t>(
                "correct8", {4, 4}, [=](auto& rows) -> auto& { return rows.correct8[lut][tables]; },
                correction, channels);
            Check<std::uint16_t>(
                "correct16", {4, 4}, [=](auto& rows) -> auto& { return rows.correct16[lut][tables]; },
                correction, channels);
        }
        for (const bool chromaFirst : {false, true}) {
            Check<std::uint8_t>(
                "pairs", {4, 4}, [=](auto& rows) -> auto& { return rows.pairs[chromaFirst][lut][tables]; },
                RandomCorrection(random, 300, 200), back);
        }
    }
    const Correction correction = RandomCorrection(random, 300, 200);
    Check<std::uint8_t>(
        "replace", {1, 1}, [](auto& rows) -> auto& { return rows.replace; }, &correction.tables[0][0]);
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

/// Ends and random samples through both forms of all corrections that are said to fit, up to the last one.
TEST(CorrectRows, WhatFitsVectorsIsExact)
{
    std::mt19937 random(7);
    int fitting[2] = {};
    for (int i = 0; i < 4000; ++i) {
        const auto element = static_cast<std::int32_t>(1U << random() % 18);
        Correction correction = RandomCorrection(random, element, 1 << random() % 16);
        for (std::int32_t& added : correction.matrix.at[3])
            added = random() % 4 == 0 ? Signed(random, INT32_MAX) : added;
        correction.hasLut = random() % 2;
        const auto compare = [&](auto rows, auto sample, int& fits) {
            using Sample = decltype(sample);
            if (!FitsVectors(correction, static_cast<Sample>(~Sample{0}))) return;
            ++fits;
            const auto in = EndRichSamples<Sample>(4 * 64, random);
            std::vector<Sample> out(in.size()), plain(in.size());
            rows(CorrectRowsAt(BestLevel()))(in.data(), out.data(), 64, correction, 15);
            rows(CorrectRowsAt(Level::Plain))(in.data(), plain.data(), 64, correction, 15);
            ASSERT_EQ(out, plain) << "case " << i;
        };
        compare([&](auto& rows) { return rows.correct8[correction.hasLut][0][0]; }, std::uint8_t{},
                fitting[0]);
        compare([&](auto& rows) { return rows.correct16[correction.hasLut][0][0]; }, std::uint16_t{},
                fitting[1]);
        const EncodeTable back{};
        if (FitsVectors(correction, 255)) {
            const auto in = EndRichSamples<std::uint8_t>(4 * 64, random);
            std::vector<std::uint8_t> out(in.size()), plain(in.size());
            CorrectRowsAt(BestLevel())
                .pairs[0][correction.hasLut][0][0](in.data(), out.data(), 64, correction, back);
            CorrectRowsAt(Level::Plain)
                .pairs[0][correction.hasLut][0][0](in.data(), plain.data(), 64, correction, back);
            ASSERT_EQ(out, plain) << "case " << i;
        }
    }
    // Neither all nor none of them.
    for (const int count : fitting) {
        EXPECT_GT(count, 500);
        EXPECT_LT(count, 3500);
    }
}

} // namespace
} // namespace vfil
