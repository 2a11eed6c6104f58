#include <vfil/color.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <memory>
#include <random>

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

using Values = std::array<double, 4>;

/// A model of three components and alpha through its members of vfILColor.
struct Model {
    PXColorModel id;
    void (vfILColor::*get)(double*, double*, double*, double*) const noexcept;
    void (vfILColor::*set)(const double*, const double*, const double*, const double*) noexcept;
    double tolerance = 1e-12;

    Values Get(const vfILColor& color) const
    {
        Values v;
        (color.*get)(&v[0], &v[1], &v[2], &v[3]);
        return v;
    }
    void Set(vfILColor& color, const Values& v) const { (color.*set)(&v[0], &v[1], &v[2], &v[3]); }
};

#define MODEL(name) &vfILColor::GetColorAs##name, &vfILColor::SetColorAs##name
const Model kModels[] = {
    {PXColorModel_RGB, MODEL(RGBA)},       {PXColorModel_HLS, MODEL(HLSA)},
    {PXColorModel_HSV, MODEL(HSVA)},       {PXColorModel_CMY, MODEL(CMYA)},
    {PXColorModel_YCC, MODEL(YCCA), 2e-5}, // the pair of the published matrices has five decimals
    {PXColorModel_YCC709, MODEL(YCCA709)}, {PXColorModel_YUV, MODEL(YUVA)},
    {PXColorModel_YIQ, MODEL(YIQA)},
};
#undef MODEL

const Model& Find(PXColorModel id)
{
    return *std::ranges::find(kModels, id, &Model::id);
}

void ExpectNear(const Values& actual, const Values& expected, double tolerance)
{
    EXPECT_THAT(actual, testing::Pointwise(testing::DoubleNear(tolerance), expected));
}

Values Rgba(const vfILColor& c)
{
    return {c.GetRed(), c.GetGreen(), c.GetBlue(), c.GetAlpha()};
}

TEST(Color, KnownColoursInEveryModel)
{
    struct Case {
        PXColorModel model;
        Values rgba, components;
    };
    const Case cases[] = {
        // Two components tie at the corners of hue.
        {PXColorModel_HLS, {1, 1, 0, 1}, {60 / 360., 0.5, 1, 1}},
        {PXColorModel_HLS, {0, 1, 1, 1}, {180 / 360., 0.5, 1, 1}},
        {PXColorModel_HLS, {1, 0, 1, 1}, {300 / 360., 0.5, 1, 1}},
        {PXColorModel_HLS, {0.5, 0.5, 0.5, 0.25}, {0, 0.5, 0, 0.25}},
        {PXColorModel_HLS, {0.9, 0.7, 0.8, 1}, {330 / 360., 0.8, 0.5, 1}},
        {PXColorModel_HLS, {0.1, 0.3, 0.2, 1}, {150 / 360., 0.2, 0.5, 1}},
        {PXColorModel_HSV, {0.8, 0.4, 0.6, 1}, {330 / 360., 0.5, 0.8, 1}},
        {PXColorModel_HSV, {0, 0, 0, 1}, {0, 0, 0, 1}},
        {PXColorModel_CMY, {1, 0.25, 0, 0.5}, {0, 0.75, 1, 0.5}},
        // Studio range: white is 235, primaries reach chroma 240 and 16.
        {PXColorModel_YCC, {1, 1, 1, 1}, {235 / 255., 128 / 255., 128 / 255., 1}},
        {PXColorModel_YCC, {1, 0, 0, 1}, {81.481 / 255, 90.20224 / 255, 240 / 255., 1}},
        {PXColorModel_YCC709, {0, 0, 1, 1}, {31.8118 / 255, 240 / 255., 117.730251460503 / 255, 1}},
        {PXColorModel_YUV, {0, 0, 1, 1}, {0.114, 1.000000008, 0.4186991715, 1}},
        {PXColorModel_YIQ, {1, 0, 0, 1}, {0.299, 1.0000000304, 0.7026768315, 1}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.rgba) + " in model " + std::to_string(c.model));
        const vfILColor color(c.rgba[0], c.rgba[1], c.rgba[2], c.rgba[3]);
        ExpectNear(Find(c.model).Get(color), c.components, 1e-12);
    }
}

TEST(Color, EveryGreyPacksToOneChroma)
{
    using testing::ElementsAre;
    for (const PXColorModel id : {PXColorModel_YUV, PXColorModel_YIQ})
        for (int i = 0; i <= 65535; ++i) {
            const double level = i / 65535.0;
            const vfILColor grey(level, level, level, 1);
            unsigned char b[4];
            unsigned short w[4];
            grey.GetColorAs32(b, id);
            grey.GetColorAs64(w, id);
            ASSERT_THAT(b, ElementsAre(testing::_, 128, 127, 255)) << id << " level " << i;
            ASSERT_THAT(w, ElementsAre(i, 32768, 32767, 65535)) << id << " level " << i;
        }
}

TEST(Color, SettersTakeWhatGettersGiveAndKeepWhatIsNull)
{
    std::mt19937 random(1);
    std::uniform_real_distribution<double> unit(0, 1);
    for (const Model& model : kModels) {
        SCOPED_TRACE(model.id);
        for (int round = 0; round < 2000; ++round) {
            const vfILColor color(unit(random), unit(random), unit(random), unit(random));
            vfILColor back, partly = color, wholly = color;
            model.Set(back, model.Get(color));
            ExpectNear(Rgba(back), Rgba(color), model.tolerance);

            // One component alone stands beside the colour's own others.
            const std::size_t which = random() % 4;
            const double given = unit(random);
            const auto at = [&](std::size_t i) { return i == which ? &given : nullptr; };
            Values all = model.Get(color);
            all[which] = given;
            model.Set(wholly, all);
            (partly.*model.set)(at(0), at(1), at(2), at(3));
            ExpectNear(Rgba(partly), Rgba(wholly), model.tolerance);
        }
    }
}

TEST(Color, HuesAreTakenRoundTheCircle)
{
    const double kHues[][2] = {{1, 0}, {-0.25, 0.75}, {1.25, 0.25}, {-1e-20, 0}, {kNaN, 0}, {INFINITY, 0}};
    for (const PXColorModel id : {PXColorModel_HLS, PXColorModel_HSV}) {
        for (const auto& [given, meant] : kHues) {
            vfILColor a, b;
            Find(id).Set(a, {given, 0.5, 0.75, 1});
            Find(id).Set(b, {meant, 0.5, 0.75, 1});
            ExpectNear(Rgba(a), Rgba(b), 1e-12);
        }
    }
}

TEST(Color, Cmyk)
{
    double c, m, y, k, a;
    vfILColor color(0.4, 0.8, 0.2, 0.3);
    color.GetColorAsCMYKA(&c, &m, &y, &k, &a);
    ExpectNear({c, m, y, k}, {0.5, 0, 0.75, 0.2}, 1e-12);
    EXPECT_EQ(a, 0.3);
    const double half = 0.5;
    color.SetColorAsCMYKA(nullptr, nullptr, nullptr, &half, nullptr);
    ExpectNear(Rgba(color), {0.25, 0.5, 0.125, 0.3}, 1e-12);
    color.SetColorAsCMYKA(&c, &half, &y, &k, &half);
    ExpectNear(Rgba(color), {0.4, 0.4, 0.2, 0.5}, 1e-12);
    vfILColor black;
    black.GetColorAsCMYKA(&c, nullptr, nullptr, &k, nullptr);
    EXPECT_TRUE(std::isnan(c));
    EXPECT_EQ(k, 1);
}

TEST(Color, PackedFormsRoundAndClampAndReadBack)
{
    using testing::ElementsAre;
    unsigned char bytes[4] = {0, 0, 0, 77};
    unsigned short words[4];
    vfILColor color(0.5, -0.1, 1.1, kNaN);
    color.GetColorAs24(bytes, PXColorModel_CMY);
    EXPECT_THAT(bytes, ElementsAre(128, 255, 0, 77));
    color.GetColorAs32(bytes, PXColorModel_RGB);
    EXPECT_THAT(bytes, ElementsAre(128, 0, 255, 0));
    color.GetColorAs64(words, PXColorModel_RGB);
    EXPECT_THAT(words, ElementsAre(32768, 0, 65535, 0));
    const unsigned char given[] = {255, 128, 255, 51};
    color.SetColorAs32(given, PXColorModel_RGB);
    ExpectNear(Rgba(color), {1, 128 / 255., 1, 0.2}, 1e-12);
    color.SetColorAs24(given, PXColorModel_HLS);
    ExpectNear(Rgba(color), {1, 1 / 255., 1 / 255., 0.2}, 1e-12); // a hue of 255 ends the circle: red
    for (unsigned v = 0; v < 65536; ++v) {
        const auto word = static_cast<unsigned short>(v);
        color.SetColorAs16(&word, PXColorModel_MONO);
        color.GetColorAs16(words, PXColorModel_MONO);
        ASSERT_EQ(words[0], word);
    }
}

TEST(Color, PackedFormsRefuseOtherModels)
{
    for (int model = 0; model <= 0x400; ++model) {
        const auto id = static_cast<PXColorModel>(model);
        const bool one = id == PXColorModel_MONO;
        const bool three = std::ranges::count(kModels, id, &Model::id) != 0;
        vfILColor color(1, 1, 1, 1);
        unsigned char b[] = {9, 9, 9, 9};
        unsigned short w[] = {9, 9, 9, 9};
        ASSERT_EQ(color.GetColorAs8(b, id) + color.GetColorAs16(w, id), 2 * one);
        ASSERT_EQ(b[0] + w[0], one ? 255 + 65535 : 0);
        ASSERT_EQ(color.GetColorAs32(b, id) + color.GetColorAs64(w, id), 2 * three);
        ASSERT_EQ(b[3] + w[3], three ? 255 + 65535 : 0);
        ASSERT_EQ(color.SetColorAs24(b, id) + color.SetColorAs64(w, id), 2 * three);
        ASSERT_EQ(color.SetColorAs8(b, id) + color.SetColorAs16(w, id), 2 * one);
        ASSERT_TRUE(one || three || color == vfILColor(1, 1, 1, 1));
    }
}

TEST(Color, NamesTravelThroughRecordsAndCopies)
{
    vfILColor color(0.1, 0.2, 0.3, 0.4);
    EXPECT_EQ(color.SetName(L"sea green"), 1);
    tagVFILCOLORSTRUCT record = color;
    const vfILColor copy = color;
    EXPECT_TRUE(color == record && vfILColor(record) == color);
    for (const std::size_t i : {0, 1, 2, 3}) {
        Values other = Rgba(color);
        other[i] = 1;
        vfILColor changed(other[0], other[1], other[2], other[3]);
        changed.SetName(color.GetName());
        EXPECT_TRUE(changed != color && changed != record) << "by component " << i;
    }
    color.SetName(nullptr);
    EXPECT_STREQ(copy.GetName(), L"sea green");
    EXPECT_TRUE(color != copy && color != record && copy == record);
    ClearColorStruct(&record);
    EXPECT_EQ(record.name, nullptr);
    EXPECT_TRUE(vfILColor(record) == vfILColor(0.1, 0.2, 0.3, 0.4));
}

TEST(Palette, GrowsShrinksAndGuardsItsEnds)
{
    constexpr long kMost = std::numeric_limits<long>::max();
    const vfILColor red(1, 0, 0, 1), outside(1, 0, 0, 0);
    vfILPalette palette;
    EXPECT_EQ(palette.SetAt(-1, red) + palette.SetAt(kMost, red), 0);
    EXPECT_EQ(palette.SetAt(2, red), 1);
    EXPECT_EQ(palette.GetSize(), 3);
    EXPECT_TRUE(palette.GetAt(1) == vfILColor());
    EXPECT_TRUE(palette.GetAt(3) == outside && palette.GetAt(-1) == outside);
    const std::unique_ptr<vfILPalette> clone(palette.Clone());
    EXPECT_EQ(palette.DelAt(3) + palette.DelAt(-1), 0);
    EXPECT_EQ(palette.DelAt(0), 1);
    EXPECT_TRUE(palette.GetSize() == 2 && palette.GetAt(1) == red);
    EXPECT_EQ(palette.SetSize(-1) + palette.SetSize(kMost), 0);
    EXPECT_EQ(palette.SetSize(1), 1);
    EXPECT_EQ(palette.GetSize(), 1);
    EXPECT_EQ(palette.Copy(*clone), 1);
    EXPECT_TRUE(palette.GetSize() == 3 && palette.GetAt(2) == red);
}

} // namespace
