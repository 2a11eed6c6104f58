/// \file
/// The pure functions that all transforms share.
#include <vfil/transform.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace {

constexpr unsigned long kHuge = std::numeric_limits<unsigned long>::max();

struct Base : vfILTransformBase {
    using vfILTransformBase::ComputeFalloff;
    using vfILTransformBase::FindFullyInsideSpan;
    using vfILTransformBase::GetInputPixelAndFraction;
    using vfILTransformBase::OnVerify;
    using vfILTransformBase::PerformOverOnRowRGBA8;
    using vfILTransformBase::ResampleOneRowUSHORT;
};

TEST(TransformBase, OnVerifyNamesTheFirstFault)
{
    struct Case {
        const char* name;
        void (*set)(Base&);
        long code; ///< 0 for none
    };
    const Case cases[] = {
        {"nothing", [](Base&) {}, 0},
        {"opacity 0", [](Base& b) { b.SetOpacity(0); }, 0},
        {"opacity 1.01", [](Base& b) { b.SetOpacity(1.01); }, 0x1006E},
        {"opacity before crop", [](Base& b) { b.SetOpacity(-0.1), b.SetCropping(99, 0, 0, 0); }, 0x1006E},
        {"opacity NaN", [](Base& b) { b.SetOpacity(NAN); }, 0x1006E},
        {"softness", [](Base& b) { b.SetBorderSize(2, 2, 2, 2), b.SetBorderSoftness(2, 2, 2, 2); }, 0},
        {"softer", [](Base& b) { b.SetBorderSize(2, 2, 2, 2), b.SetBorderSoftness(2, 2, 2, 3); }, 0x10070},
        {"all is cropped", [](Base& b) { b.SetCropping(6, 4, 8, 0); }, 0},
        {"more is cropped", [](Base& b) { b.SetCropping(0, 0, 8, 1); }, 0x10069},
        {"huge crops", [](Base& b) { b.SetCropping(kHuge, kHuge, kHuge, 2); }, 0x10069},
        {"border of all", [](Base& b) { b.SetBorderSize(5, 5, 4, 4); }, 0},
        {"border and crop", [](Base& b) { b.SetBorderSize(5, 4, 0, 0), b.SetCropping(0, 2, 0, 0); }, 0x10070},
        {"falloff", [](Base& b) { b.SetOpacityFalloff(0, 0, 8, 1); }, 0x1006F},
        {"huge falloff", [](Base& b) { b.SetOpacityFalloff(kHuge, kHuge, 0, 0); }, 0x1006F},
    };
    for (const Case& c : cases) {
        Base base;
        c.set(base);
        long code = 0;
        EXPECT_EQ(base.OnVerify(10, 8, code), c.code == 0 ? VFIL_SUCCESS : VFIL_FAILURE) << c.name;
        EXPECT_EQ(code, c.code) << c.name;
    }
}

// One in the bands, nothing between them, and the same from both ends.
TEST(TransformBase, FalloffIsASymmetricStepOfSoftnessPlusOnePixels)
{
    for (const unsigned long soft : {0UL, 1UL, 3UL, 5UL}) {
        double before = 1;
        for (long p = 10; p <= 20; ++p) {
            const double strength = Base::ComputeFalloff(p, 10, 29, 5, soft, 5, soft);
            EXPECT_DOUBLE_EQ(strength, Base::ComputeFalloff(39 - p, 10, 29, 5, soft, 5, soft)) << p;
            const double t =
                std::clamp((15.0 - static_cast<double>(p)) / (static_cast<double>(soft) + 1), 0.0, 1.0);
            EXPECT_NEAR(strength, t * t * (3 - 2 * t), 1e-15) << p << ", softness " << soft;
            EXPECT_LE(strength, before);
            before = strength;
        }
    }
    EXPECT_EQ(Base::ComputeFalloff(-5, 3, 9, 2, 0, 2, 0), 1) << "before the line";
    EXPECT_EQ(Base::ComputeFalloff(5, kHuge, kHuge, std::numeric_limits<long>::max(), kHuge, 0, kHuge), 1);
}

// A jump to a position is the same as so many steps.
TEST(TransformBase, JumpsAreSteps)
{
    std::mt19937 random(1);
    for (int i = 0; i < 2000; ++i) {
        const unsigned long share = 1 + random() % 16384;
        unsigned long left = 1 + random() % share;
        long index = static_cast<long>(random() % 50);
        const long stride = random() % 2 ? 1 : -4, position = static_cast<long>(random() % 20);
        long found = 0;
        unsigned long remains = 0;
        Base::GetInputPixelAndFraction(index, left, share, stride, position, found, remains);
        for (unsigned long need = static_cast<unsigned long>(position) * 16384; need != 0;) {
            const unsigned long part = std::min(need, left);
            need -= part;
            left -= part;
            if (left == 0) left = share, index += stride;
        }
        ASSERT_EQ(found, index) << share << " at " << position;
        ASSERT_EQ(remains, left);
    }
    long found = 0;
    unsigned long remains = 7;
    Base::GetInputPixelAndFraction(3, 5, 0, 1, 9, found, remains);
    EXPECT_EQ(found, 3);
    EXPECT_EQ(remains, 0U);
}

TEST(TransformBase, RunsAreMeansOrMixes)
{
    unsigned short in[] = {100, 200, 60000, 400, 500, 65535};
    unsigned short out[6] = {9, 9, 9, 9, 9, 9};
    const auto run = [&](int magnify, long low, long high, long count, unsigned long step, long start,
                         unsigned long fraction, long stride) {
        std::fill_n(out, 6, static_cast<unsigned short>(9));
        Base::ResampleOneRowUSHORT(magnify, low, high, in, count, out, step, start, fraction, stride);
        return std::vector<unsigned short>(out, out + count);
    };
    using Row = std::vector<unsigned short>;
    EXPECT_EQ(run(0, 0, 5, 3, 8192, 0, 8192, 1), (Row{150, 30200, 33018})) << "means of two";
    EXPECT_EQ(run(0, 1, 4, 3, 8192, 0, 8192, 1), (Row{100, 30200, 250})) << "what is outside is nothing";
    EXPECT_EQ(run(0, 0, 5, 2, 8192, 0, 4096, 1), (Row{15125, 15325})) << "from the middle of a pixel";
    EXPECT_EQ(run(0, 0, 5, 2, 16384, 5, 16384, -1), (Row{65535, 500})) << "backward";
    EXPECT_EQ(run(0, 0, 5, 3, 0, 0, 5, 1), (Row{0, 0, 0})) << "a step of 0 would never end";
    EXPECT_EQ(run(1, 0, 5, 4, 4096, 0, 16384, 1), (Row{100, 125, 150, 175})) << "between two";
    EXPECT_EQ(run(1, 0, 5, 2, 8192, 5, 16384, 1), (Row{65535, 32768})) << "into the outside";
    EXPECT_EQ(out[2], 9) << "past the count";
}

TEST(TransformBase, OverPaintsUnderWhatIsThere)
{
    unsigned char front[] = {200, 100, 50, 128, 200, 100, 50, 128, 255, 255, 255, 255, 1, 2, 3, 4};
    unsigned char back[] = {10, 20, 30, 0, 10, 20, 30, 155, 200, 200, 200, 100, 5, 6, 7, 255};
    std::vector<unsigned char> straight(back, back + 16), premultiplied(straight);
    Base::PerformOverOnRowRGBA8(1, front, premultiplied.data(), 4);
    Base::PerformOverOnRowRGBA8(0, front, straight.data(), 4);
    EXPECT_EQ(premultiplied, (std::vector<unsigned char>{210, 120, 80, 128, 88, 59, 50, 205, 255, 255, 255,
                                                         255, 5, 6, 7, 255}));
    EXPECT_EQ(straight, (std::vector<unsigned char>{110, 70, 55, 128, 49, 40, 40, 205, 255, 255, 255, 255, 5,
                                                    6, 7, 255}));
}

TEST(TransformBase, SpansAreTheFirstRunInside)
{
    unsigned short rows[] = {9, 3, 3, 4, 4, 5, 5, 9, 3, 3};
    unsigned short others[] = {5, 5, 5, 5, 2, 5, 5, 5, 5, 5};
    long first = 0;
    unsigned long last = 0;
    EXPECT_EQ(Base::FindFullyInsideSpan(0, 4, rows, nullptr, 3, 8, first, last), 1);
    EXPECT_EQ(first, 1);
    EXPECT_EQ(last, 2U);
    EXPECT_EQ(Base::FindFullyInsideSpan(0, 4, rows, others, 3, 8, first, last), 1);
    EXPECT_EQ(last, 1U);
    EXPECT_EQ(Base::FindFullyInsideSpan(2, 4, rows, others, 3, 8, first, last), 1);
    EXPECT_EQ(first, 4);
    EXPECT_EQ(Base::FindFullyInsideSpan(0, 4, rows, nullptr, 10, 11, first, last), 0);
    EXPECT_EQ(first, 5);
    EXPECT_EQ(last, 4U);
}

} // namespace
