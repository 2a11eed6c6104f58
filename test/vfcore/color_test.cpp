#include <vfil/color.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <memory>
#include <random>
#include <string>

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

using Values = std::array<double, 4>;

/// A model of three components and alpha through its members of vfILColor.
struct Model {
    const char* name;
    PXColorModel id;
    void (vfILColor::*get)(double*, double*, double*, double*) const noexcept;
    void (vfILColor::*set)(const double*, const double*, const double*, const double*) noexcept;

    Values Get(const vfILColor& color) const
    {
        Values v;
        (color.*get)(&v[0], &v[1], &v[2], &v[3]);
        return v;
    }
    /// Passes the components that are bits of \p which, and null for the others.
    void Set(vfILColor& color, const Values& v, unsigned which = 15) const
    {
        const auto at = [&](unsigned i) { return (which >> i & 1) != 0 ? &v[i] : nullptr; };
        (color.*set)(at(0), at(1), at(2), at(3));
    }
};

#define MODEL(name) &vfILColor::GetColorAs##name, &vfILColor::SetColorAs##name
const Model kModels[] = {
    {"RGB", PXColorModel_RGB, MODEL(RGBA)}, {"HLS", PXColorModel_HLS, MODEL(HLSA)},
    {"HSV", PXColorModel_HSV, MODEL(HSVA)}, {"CMY", PXColorModel_CMY, MODEL(CMYA)},
    {"YCC", PXColorModel_YCC, MODEL(YCCA)}, {"YCC709", PXColorModel_YCC709, MODEL(YCCA709)},
    {"YUV", PXColorModel_YUV, MODEL(YUVA)}, {"YIQ", PXColorModel_YIQ, MODEL(YIQA)},
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
        // Hue at the six corners, where two components tie.
        {PXColorModel_HLS, {1, 0, 0, 1}, {0, 0.5, 1, 1}},
        {PXColorModel_HLS, {1, 1, 0, 1}, {60 / 360., 0.5, 1, 1}},
        {PXColorModel_HLS, {0, 1, 1, 1}, {180 / 360., 0.5, 1, 1}},
        {PXColorModel_HLS, {1, 0, 1, 1}, {300 / 360., 0.5, 1, 1}},
        {PXColorModel_HLS, {0.5, 0.5, 0.5, 0.25}, {0, 0.5, 0, 0.25}},
        {PXColorModel_HLS, {0, 0, 0, 1}, {0, 0, 0, 1}},
        {PXColorModel_HLS, {0.9, 0.7, 0.8, 1}, {330 / 360., 0.8, 0.5, 1}},
        {PXColorModel_HLS, {0.1, 0.3, 0.2, 1}, {150 / 360., 0.2, 0.5, 1}},
        {PXColorModel_HSV, {0, 0.5, 0.5, 1}, {0.5, 1, 0.5, 1}},
        {PXColorModel_HSV, {0.8, 0.4, 0.6, 1}, {330 / 360., 0.5, 0.8, 1}},
        {PXColorModel_HSV, {0, 0, 0, 1}, {0, 0, 0, 1}},
        {PXColorModel_CMY, {1, 0.25, 0, 0.5}, {0, 0.75, 1, 0.5}},
        // Studio range: white 235, black 16, primaries reach chroma 240 and 16.
        {PXColorModel_YCC, {1, 1, 1, 1}, {235 / 255., 128 / 255., 128 / 255., 1}},
        {PXColorModel_YCC, {0, 0, 0, 1}, {16 / 255., 128 / 255., 128 / 255., 1}},
        {PXColorModel_YCC, {1, 0, 0, 1}, {81.481 / 255, 90.20224 / 255, 240 / 255., 1}},
        {PXColorModel_YCC709, {0, 0, 1, 1}, {31.8118 / 255, 240 / 255., 117.730251460503 / 255, 1}},
        {PXColorModel_YUV, {0, 0, 1, 1}, {0.114, 1, 0.515 / 1.23, 1}},
        {PXColorModel_YUV, {1, 0, 0, 1}, {0.299, 0.289 / 0.872, 1, 1}},
        {PXColorModel_YIQ, {1, 0, 0, 1}, {0.299, 1, 0.735 / 1.046, 1}},
        {PXColorModel_YIQ, {1, 0, 1, 1}, {0.413, 0.87 / 1.192, 1, 1}},
        {PXColorModel_YIQ, {0, 1, 0, 1}, {0.587, 0.322 / 1.192, 0, 1}},
    };
    for (const Case& c : cases) {
        const Model& model = Find(c.model);
        SCOPED_TRACE(testing::Message()
                     << model.name << " of " << c.rgba[0] << ' ' << c.rgba[1] << ' ' << c.rgba[2]);
        const vfILColor color(c.rgba[0], c.rgba[1], c.rgba[2], c.rgba[3]);
        ExpectNear(model.Get(color), c.components, 1e-12);
        vfILColor back;
        model.Set(back, c.components);
        // The pair of the published 601 matrices is rounded to five decimals.
        ExpectNear(Rgba(back), c.rgba, c.model == PXColorModel_YCC ? 2e-5 : 1e-12);
    }
}

TEST(Color, SettersTakeWhatGettersGiveAndKeepWhatIsNull)
{
    std::mt19937 random(1);
    std::uniform_real_distribution<double> unit(0, 1);
    for (const Model& model : kModels) {
        SCOPED_TRACE(model.name);
        const double tolerance = model.id == PXColorModel_YCC ? 2e-5 : 1e-12;
        for (int round = 0; round < 2000; ++round) {
            const vfILColor color(unit(random), unit(random), unit(random), unit(random));
            vfILColor back;
            model.Set(back, model.Get(color));
            ExpectNear(Rgba(back), Rgba(color), tolerance);

            const unsigned which = random() % 16;
            const Values given = {unit(random), unit(random), unit(random), unit(random)};
            Values all = model.Get(color);
            for (unsigned i = 0; i < 4; ++i) {
                if ((which >> i & 1) != 0) all[i] = given[i];
            }
            vfILColor partly = color, wholly = color;
            model.Set(partly, given, which);
            model.Set(wholly, all);
            ExpectNear(Rgba(partly), Rgba(wholly), tolerance);
        }
    }
}

TEST(Color, HuesAreTakenRoundTheCircle)
{
    const double kHues[][2] = {{1, 0},      {2, 0},    {-0.25, 0.75}, {1.25, 0.25},
                               {-1e-20, 0}, {kNaN, 0}, {INFINITY, 0}};
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
    vfILColor(0.4, 0.8, 0.2, 0.3).GetColorAsCMYKA(&c, &m, &y, &k, &a);
    ExpectNear({c, m, y, k}, {0.5, 0, 0.75, 0.2}, 1e-12);
    EXPECT_EQ(a, 0.3);
    vfILColor color;
    color.SetColorAsCMYKA(&c, &m, &y, &k, &a);
    ExpectNear(Rgba(color), {0.4, 0.8, 0.2, 0.3}, 1e-12);
    const double half = 0.5;
    color.SetColorAsCMYKA(nullptr, nullptr, nullptr, &half, nullptr);
    ExpectNear(Rgba(color), {0.25, 0.5, 0.125, 0.3}, 1e-12);

    vfILColor black;
    black.GetColorAsCMYKA(&c, nullptr, nullptr, &k, nullptr);
    EXPECT_TRUE(std::isnan(c));
    EXPECT_EQ(k, 1);
    black.SetColorAsCMYKA(nullptr, nullptr, nullptr, nullptr, &half);
    EXPECT_TRUE(black == vfILColor(0, 0, 0, 0.5));
}

TEST(Color, PackedFormsRoundAndClamp)
{
    using testing::ElementsAre;
    unsigned char bytes[4];
    unsigned short words[4];
    const vfILColor odd(0.5, -0.1, 1.1, kNaN);
    EXPECT_EQ(odd.GetColorAs32(bytes, PXColorModel_RGB), 1);
    EXPECT_THAT(bytes, ElementsAre(128, 0, 255, 0));
    EXPECT_EQ(odd.GetColorAs64(words, PXColorModel_RGB), 1);
    EXPECT_THAT(words, ElementsAre(32768, 0, 65535, 0));
    bytes[3] = 77;
    EXPECT_EQ(odd.GetColorAs24(bytes, PXColorModel_CMY), 1);
    EXPECT_THAT(bytes, ElementsAre(128, 255, 0, 77));
    EXPECT_EQ(odd.GetColorAs16(words, PXColorModel_MONO), 1);
    EXPECT_EQ(words[0], 32768);
    EXPECT_EQ(vfILColor(1, 1, 1, 1).GetColorAs32(bytes, PXColorModel_YCC), 1);
    EXPECT_THAT(bytes, ElementsAre(235, 128, 128, 255));
}

TEST(Color, PackedFormsReadBack)
{
    const unsigned char bytes[] = {255, 128, 255, 51};
    vfILColor color(0.1, 0.2, 0.3, 0.4);
    EXPECT_EQ(color.SetColorAs24(bytes, PXColorModel_HLS), 1);
    // A hue of 255 is the end of the circle: red.
    ExpectNear(Rgba(color), {1, 1 / 255., 1 / 255., 0.4}, 1e-12);
    EXPECT_EQ(color.SetColorAs32(bytes, PXColorModel_RGB), 1);
    ExpectNear(Rgba(color), {1, 128 / 255., 1, 0.2}, 1e-12);
    EXPECT_EQ(color.SetColorAs8(bytes + 3, PXColorModel_MONO), 1);
    ExpectNear(Rgba(color), {0.2, 128 / 255., 1, 0.2}, 1e-12);
    for (unsigned v = 0; v < 65536; ++v) {
        const auto word = static_cast<unsigned short>(v);
        const unsigned short words[] = {word, static_cast<unsigned short>(~v), 0, word};
        unsigned short back[4];
        color.SetColorAs64(words, PXColorModel_RGB);
        color.GetColorAs64(back, PXColorModel_RGB);
        ASSERT_TRUE(std::equal(words, words + 4, back)) << v;
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
        ASSERT_EQ(color.GetColorAs24(b, id) + color.GetColorAs32(b, id) + color.GetColorAs64(w, id),
                  3 * three);
        ASSERT_TRUE(three || b[0] + b[1] + b[2] + b[3] + w[0] + w[1] + w[2] + w[3] == 0);
        ASSERT_EQ(color.SetColorAs24(b, id) + color.SetColorAs32(b, id) + color.SetColorAs64(w, id),
                  3 * three);
        ASSERT_EQ(color.SetColorAs8(b, id) + color.SetColorAs16(w, id), 2 * one);
        ASSERT_TRUE(one || three || color == vfILColor(1, 1, 1, 1));
    }
    EXPECT_EQ(vfILColor().GetColorAs32(nullptr, PXColorModel_RGB), 0);
    EXPECT_EQ(vfILColor().SetColorAs8(nullptr, PXColorModel_MONO), 0);
}

TEST(Color, VerifyWantsAllFourIn0To1)
{
    EXPECT_EQ(vfILColor(0, 1, 0, 1).Verify(), 1);
    const vfILColor bad[] = {{1.0000001, 0, 0, 1}, {0, -1e-9, 0, 1}, {0, 0, kNaN, 1}, {0, 0, 0, 2}};
    for (const vfILColor& color : bad)
        EXPECT_EQ(color.Verify(), 0);
}

TEST(Color, NamesTravelThroughRecordsAndCopies)
{
    vfILColor color(0.1, 0.2, 0.3, 0.4);
    std::wstring name = L"sea green";
    EXPECT_EQ(color.SetName(name.c_str()), 1);
    name[0] = L'p';
    tagVFILCOLORSTRUCT record = color;
    EXPECT_STREQ(record.name, L"sea green");
    EXPECT_TRUE(color == record && vfILColor(record) == color);
    const vfILColor copy = color;
    color.SetName(nullptr);
    EXPECT_STREQ(copy.GetName(), L"sea green");
    EXPECT_TRUE(color != copy && color != record && copy == record);
    color = record;
    ClearColorStruct(&record);
    EXPECT_EQ(record.name, nullptr);
    EXPECT_EQ(record.blue, 0.3);
    EXPECT_STREQ(color.GetName(), L"sea green");
    EXPECT_TRUE(vfILColor(record) == vfILColor(0.1, 0.2, 0.3, 0.4));
    EXPECT_TRUE(vfILColor() == vfILColor(0, 0, 0, 1));
    ClearColorStruct(nullptr);
}

TEST(Palette, GrowsShrinksAndGuardsItsEnds)
{
    const vfILColor red(1, 0, 0, 1), outside(1, 0, 0, 0);
    vfILPalette palette;
    EXPECT_EQ(palette.SetAt(-1, red), 0);
    EXPECT_EQ(palette.SetAt(2, red), 1);
    EXPECT_EQ(palette.GetSize(), 3);
    EXPECT_TRUE(palette.GetAt(1) == vfILColor());
    EXPECT_TRUE(palette.GetAt(3) == outside && palette.GetAt(-1) == outside);
    const std::unique_ptr<vfILPalette> clone(palette.Clone());
    EXPECT_EQ(palette.DelAt(3) + palette.DelAt(-1), 0);
    EXPECT_EQ(palette.SetAt(0, outside) + palette.DelAt(0), 2);
    EXPECT_TRUE(palette.GetAt(0) == vfILColor() && palette.GetAt(1) == red);
    EXPECT_EQ(palette.SetSize(1), 1);
    EXPECT_EQ(palette.SetSize(2), 1);
    EXPECT_TRUE(palette.GetAt(1) == vfILColor());
    EXPECT_EQ(palette.SetSize(-1), 0);
    EXPECT_EQ(palette.SetSize(std::numeric_limits<long>::max()), 0);
    EXPECT_EQ(palette.SetAt(std::numeric_limits<long>::max(), red), 0);
    EXPECT_EQ(palette.GetSize(), 2);
    EXPECT_EQ(palette.Copy(*clone), 1);
    EXPECT_TRUE(palette.GetSize() == 3 && palette.GetAt(2) == red);
    palette.RemoveAll();
    EXPECT_EQ(palette.GetSize() + palette.SetSize(0), 1);
}

} // namespace
