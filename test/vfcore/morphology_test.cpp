#include "support/failingnew.h"
#include "support/filterscene.h"
#include "support/processors.h"

#include "host/picturefactory.h"

#include <vfil/morphology.h>

#include <gtest/gtest.h>

using namespace vfil::test;

namespace {

/// The entries of an element as distances from its centre.
using Offsets = std::vector<std::pair<long, long>>;

struct ElementCase {
    vfILStructuralType type;
    long rx, ry;
    std::vector<long> entries; ///< of any type

    ElementCase(std::mt19937& random, long mostRadius)
        : type(static_cast<vfILStructuralType>(RandomIn(random, 1, 3))), rx(RandomIn(random, 0, mostRadius)),
          ry(RandomIn(random, 0, mostRadius))
    {
        const auto density = random() % 4;
        for (long y = -ry; y <= ry; ++y)
            for (long x = -rx; x <= rx; ++x) {
                const bool inEllipse = x * x * ry * ry + y * y * rx * rx <= rx * rx * ry * ry;
                const bool isIn = type == VFIL_STRUCT_CUSTOM ? random() % 3 < density : true;
                entries.push_back(type == VFIL_STRUCT_ELLIPSE ? inEllipse
                                  : isIn                      ? RandomIn(random, -2, 2)
                                                              : 0);
                if (type == VFIL_STRUCT_RECTANGLE) entries.back() = 1;
            }
    }
    void Give(vfILMorphologicalProc& processor)
    {
        if (type == VFIL_STRUCT_CUSTOM) {
            processor.SetStructuringElement(entries.data(), rx, ry);
        } else {
            processor.SetStructuringElement(type, -3, static_cast<float>(rx) + 0.5F, static_cast<float>(ry),
                                            0, 5);
        }
        processor.SetMode(static_cast<vfILMorphologyMode>(1 + rx % 2));
    }
    Pixel Extreme(const EdgedPicture& picture, long x, long y, bool largest) const
    {
        Pixel extreme = picture(x, y);
        bool first = true;
        for (std::size_t i = 0; i < entries.size(); ++i) {
            if (entries[i] == 0) continue;
            const auto at = static_cast<long>(i);
            const Pixel p = picture(x - rx + at % (2 * rx + 1), y - ry + at / (2 * rx + 1));
            for (std::size_t c = 0; c < 4; ++c)
                if (first || (largest ? p[c] > extreme[c] : p[c] < extreme[c])) extreme[c] = p[c];
            first = false;
        }
        return extreme;
    }
};

enum Operator { kErode, kDilate, kOpen, kClose, kEdge, kOperators };

std::unique_ptr<vfILMorphologicalProc> MakeMorphology(int which, bool simd)
{
    if (which == kErode) return std::make_unique<Switched<vfILErodeImg>>(simd);
    if (which == kDilate) return std::make_unique<Switched<vfILDilateImg>>(simd);
    if (which == kOpen) return std::make_unique<Switched<vfILOpenImg>>(simd);
    if (which == kClose) return std::make_unique<Switched<vfILCloseImg>>(simd);
    return std::make_unique<Switched<vfILMorphologicalEdge>>(simd);
}

void CheckScene(std::mt19937& random, long width, long height, long mostRadius, int which)
{
    ElementCase element(random, mostRadius);
    FilterScene scene(random, width, height, 200);
    const auto processor = MakeMorphology(which, random() % 2);
    element.Give(*processor);
    const auto stage = [&](const EdgedPicture& picture, bool largest) {
        return Filtered(picture, [&](const EdgedPicture& p, long x, long y) {
            return element.Extreme(p, x, y, largest);
        });
    };
    const bool chain = which == kOpen || which == kClose;
    Snapshot result = stage(scene.Picture(), which != kErode && which != kOpen);
    if (chain) {
        const Snapshot between = result;
        result = stage({between, scene.edgeMode, scene.edgePixel}, which == kOpen);
    }
    if (which == kEdge)
        for (std::size_t i = 0; i < result.pixels.size(); ++i)
            for (std::size_t c = 0; c < 4; ++c)
                result.pixels[i][c] = std::max(result.pixels[i][c] - scene.before.pixels[i][c], 0);
    scene.Check(*processor, result);
}

TEST(Morphology, FollowsTheDefinition)
{
    vfil::host::RegisterPictureClass();
    for (unsigned seed = 0; seed < 1500 && !HasFatalFailure(); ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        std::mt19937 random(seed);
        CheckScene(random, RandomIn(random, 1, 12), RandomIn(random, 1, 9), seed % 3 ? 2 : 7,
                   static_cast<int>(seed % kOperators));
    }
}

// Windows taller and wider than what one combination takes, more than one block of rows, more than one band.
TEST(Morphology, LargePicturesAndWindows)
{
    vfil::host::RegisterPictureClass();
    for (unsigned seed = 0; seed < 20 && !HasFatalFailure(); ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        std::mt19937 random(seed);
        if (seed < 15) {
            CheckScene(random, 120, 60, 22, static_cast<int>(seed % kOperators));
        } else {
            CheckScene(random, 3500, 80, 1, static_cast<int>(seed % kOperators));
        }
    }
}

// Blocks of rows begin anew several times, and in the rows of a field at other places.
TEST(Morphology, TallWindows)
{
    std::mt19937 random(1);
    GuardedImage in(PXFormat_Mono8, 3, 130);
    for (const long radius : {12L, 13L, 20L})
        for (const unsigned long field : {0UL, static_cast<unsigned long>(VFIL_MODE_EVEN_ROWS)}) {
            GuardedImage out(PXFormat_Mono8, 3, 130);
            for (long i = 0; i < 3 * 130; ++i)
                in.Set(i % 3, i / 3, {static_cast<int>(RandomIn(random, 0, 255))});
            Snapshot expected(out);
            for (long x = 0; x < 3; ++x)
                for (long y = 0; y < 130; y += field == 0 ? 1 : 2) {
                    int& darkest = expected.At(x, y)[0] = 255;
                    for (long at = std::max(y - radius, 0L); at <= std::min(y + radius, 129L); ++at)
                        darkest = std::min(darkest, in.Get(x, at)[0]);
                }
            vfILErodeImg erode;
            erode.SetStructuringElement(VFIL_STRUCT_RECTANGLE, 1, 0.0F, static_cast<float>(radius), 0, 0);
            erode.SetProcessingMode(field);
            erode.SetEdgeMode(VFIL_EDGE_CLAMP);
            erode.SetInputImg(&in);
            erode.SetOutputImg(&out);
            ASSERT_EQ(erode.Execute(), VFIL_SUCCESS);
            ASSERT_EQ(Difference(expected, out), "") << radius << ' ' << field;
        }
}

// The second stage reads bands of rows, but takes what it does not treat from the input's own rows.
TEST(Morphology, AChainKeepsTheInputInEveryBand)
{
    vfil::host::RegisterPictureClass();
    std::mt19937 random(1);
    GuardedImage in(PXFormat_RGBA32, 5000, 60), out(PXFormat_RGBA32, 5000, 60);
    in.Randomise(random);
    vfILCloseImg close;
    close.SetStructuringElement(VFIL_STRUCT_RECTANGLE, 1, 1.0F, 1.0F, 0, 0);
    close.SetProcessingMode(VFIL_MODE_GREEN);
    close.SetInputImg(&in);
    close.SetOutputImg(&out);
    ASSERT_EQ(close.Execute(), VFIL_SUCCESS);
    for (long y = 0; y < 60; ++y)
        for (long x = 0; x < 5000; x += 97)
            for (const std::size_t channel : {0U, 2U, 3U})
                ASSERT_EQ(out.Get(x, y)[channel], in.Get(x, y)[channel]) << x << ' ' << y;
}

/// Dilates one bright pixel of a dark picture: what is bright then is the element, mirrored.
std::string DilatedPoint(vfILDilateImg& dilate)
{
    GuardedImage in(PXFormat_Mono8, 9, 7), out(PXFormat_Mono8, 9, 7);
    in.Set(4, 3, {9});
    dilate.SetInputImg(&in);
    dilate.SetOutputImg(&out);
    EXPECT_EQ(dilate.Execute(), VFIL_SUCCESS);
    std::string text;
    for (long y = 0; y < 7; ++y, text += '\n')
        for (long x = 0; x < 9; ++x)
            text += out.Get(x, y)[0] == 9 ? '#' : '.';
    return text;
}

TEST(Morphology, ShapesOfElements)
{
    vfILDilateImg dilate;
    dilate.SetStructuringElement(VFIL_STRUCT_ELLIPSE, 1, 4.0F, 3.0F, 0, 0);
    EXPECT_EQ(DilatedPoint(dilate),
              "....#....\n..#####..\n.#######.\n#########\n.#######.\n..#####..\n....#....\n");
    dilate.SetStructuringElement(VFIL_STRUCT_ELLIPSE, 1, 0.9F, 2.9F, 0, 0);
    EXPECT_EQ(DilatedPoint(dilate),
              ".........\n....#....\n....#....\n....#....\n....#....\n....#....\n.........\n");
    long entries[] = {1, 0, 0}; // a pixel takes the one of the next lower y
    dilate.SetStructuringElement(entries, 0, 1);
    EXPECT_EQ(DilatedPoint(dilate),
              ".........\n.........\n.........\n.........\n....#....\n.........\n.........\n");
    dilate.SetStructuringElement(VFIL_STRUCT_RECTANGLE, 0, 2.0F, 2.0F, 0, 0);
    EXPECT_EQ(DilatedPoint(dilate),
              ".........\n.........\n.........\n....#....\n.........\n.........\n.........\n");
}

TEST(Morphology, VerifyChecksInOrder)
{
    GuardedImage rgba(PXFormat_RGBA32, 3, 3), bgra(PXFormat_BGRA32, 3, 3);
    const struct {
        unsigned long code;
        int type, mode;
        long dontCare;
        float rx;
        bool known;
    } cases[] = {{0, 1, 1, 0, 1, true},        {0, 2, 2, -7, 0, true},      {0x10023, 4, 3, 1, -1, false},
                 {0x1000D, 4, 3, 1, 1, false}, {0x1005B, 0, 3, 1, 1, true}, {0x1005B, 4, 1, 0, 1, true},
                 {0x1005B, 3, 1, 0, 1, true},  {0x1005D, 1, 0, 1, 1, true}, {0x1005D, 1, 3, 0, 1, true},
                 {0x1005E, 2, 1, 1, 1, true}};
    for (const auto& c : cases) {
        vfILErodeImg erode;
        erode.SetInputImg(c.known ? &rgba : &bgra);
        erode.SetOutputImg(c.known ? &rgba : &bgra);
        erode.SetStructuringElement(static_cast<vfILStructuralType>(c.type), 1, c.rx, 1.0F, c.dontCare, 9);
        erode.SetMode(static_cast<vfILMorphologyMode>(c.mode));
        const unsigned long code = erode.Verify() == VFIL_SUCCESS ? 0 : erode.GetLastError().GetErrorCode();
        EXPECT_EQ(code, c.code) << "case " << &c - cases;
    }
}

/// Makes nothing.
class EmptyFactory final : public IClassFactory {
public:
    HRESULT QueryInterface(const IID&, void**) override { return E_NOINTERFACE; }
    unsigned long AddRef() override { return 1; }
    unsigned long Release() override { return 1; }
    HRESULT CreateInstance(IUnknown*, const IID&, void** object) override
    {
        *object = nullptr;
        return E_OUTOFMEMORY;
    }
};

// Neither open without a picture for its first stage nor edges without a factory touch anything.
TEST(Morphology, NeedsTheHostsPictures)
{
    vfil::host::RegisterPictureClass();
    std::mt19937 random(1);
    GuardedImage picture(PXFormat_RGBA64, 9, 8);
    picture.Randomise(random);
    const Snapshot before(picture);
    vfILOpenImg open;
    open.SetStructuringElement(VFIL_STRUCT_RECTANGLE, 1, 1.0F, 1.0F, 0, 0);
    open.SetInputImg(&picture);
    open.SetOutputImg(&picture);
    EmptyFactory factory;
    unsigned long cookie = 0;
    ASSERT_EQ(CoRegisterClassObject(CLSID_PXImage, &factory, &cookie), S_OK);
    EXPECT_EQ(open.Execute(), VFIL_FAILURE);
    EXPECT_EQ(open.GetLastError().GetErrorCode(), 0x10001U);
    vfILMorphologicalEdge without;
    EXPECT_EQ(CoRevokeClassObject(cookie), S_OK);
    EXPECT_EQ(without.GetLastError().GetErrorCode(), 0x10001U);
    EXPECT_EQ(Difference(before, picture), "");
    vfILMorphologicalEdge edge, other;
    other = edge;
    for (vfILMorphologicalEdge* each : {&without, &other}) {
        each->SetStructuringElement(VFIL_STRUCT_RECTANGLE, 1, 1.0F, 1.0F, 0, 0);
        each->SetMode(static_cast<vfILMorphologyMode>(1));
        each->SetInputImg(&picture);
        each->SetOutputImg(&picture);
        EXPECT_EQ(each->Verify(), each == &other ? VFIL_SUCCESS : VFIL_FAILURE);
    }
}

TEST(Morphology, MemoryThatCannotBeHadLeavesTheOutputAlone)
{
    vfil::host::RegisterPictureClass();
    GuardedImage in(PXFormat_Mono8, 300, 20), out(PXFormat_Mono8, 300, 20);
    const Snapshot before(out);
    for (int which = 0; which < kOperators; ++which)
        for (const vfILStructuralType type : {VFIL_STRUCT_RECTANGLE, VFIL_STRUCT_ELLIPSE}) {
            const auto processor = MakeMorphology(which, true);
            processor->SetStructuringElement(type, 1, 0.0F, 40.0F, 0, 0);
            if (type == VFIL_STRUCT_ELLIPSE) processor->SetRadius(30.0F, 40.0F);
            processor->SetInputImg(&in);
            processor->SetOutputImg(&out);
            // The rectangle lacks the frame's padded picture, the ellipse its own rows.
            g_failFrom = type == VFIL_STRUCT_RECTANGLE ? 24000 : 100000;
            const vfILStatus status = processor->Execute();
            g_failFrom = kNeverFail;
            ASSERT_EQ(status, VFIL_FAILURE) << which << ' ' << type;
            ASSERT_EQ(processor->GetLastError().GetErrorCode(), 0x10001U);
            ASSERT_EQ(Difference(before, out), "");
        }
}

int g_polls = 0;
int g_stopAtPoll = 0;

/// Fires once, and only once.
int StopOnce()
{
    return ++g_polls == g_stopAtPoll;
}

// The first stage polls before each row of its own; when that ends it, the second must not begin.
TEST(Morphology, AnInterruptEndsBothStages)
{
    vfil::host::RegisterPictureClass();
    constexpr long kRows = 10;
    GuardedImage in(PXFormat_Mono8, 5, kRows);
    for (long y = 0; y < kRows; ++y)
        for (long x = 0; x < 5; ++x)
            in.Set(x, y, {7});
    for (int stop = 1; stop <= 2 * kRows + 2; ++stop) {
        GuardedImage out(PXFormat_Mono8, 5, kRows);
        vfILCloseImg close;
        close.SetStructuringElement(VFIL_STRUCT_RECTANGLE, 1, 1.0F, 1.0F, 0, 0);
        close.SetEdgeMode(VFIL_EDGE_CLAMP);
        close.SetInputImg(&in);
        close.SetOutputImg(&out);
        close.SetInterruptFct(StopOnce, nullptr);
        g_polls = 0;
        g_stopAtPoll = stop;
        ASSERT_EQ(close.Execute(), VFIL_SUCCESS);
        const long done = std::clamp(stop - kRows - 1, 0L, kRows);
        for (long y = 0; y < kRows; ++y)
            ASSERT_EQ(out.Get(2, y)[0], y < done ? 7 : 0) << "poll " << stop << " row " << y;
    }
}

} // namespace
