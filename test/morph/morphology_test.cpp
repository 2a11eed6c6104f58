#include "support/allocations.h"
#include "support/filterscene.h"
#include "support/processors.h"

#include <vfil/host/picturefactory.h>

#include <vfil/morphology.h>

#include <gtest/gtest.h>

using namespace vfil::test;

namespace {

struct ElementCase {
    vfILStructuralType type;
    long rx, ry, fill;
    std::vector<long> entries; ///< of any type

    ElementCase(std::mt19937& random, long mostRadius)
        : type(static_cast<vfILStructuralType>(RandomIn(random, 1, 3))),
          rx(RandomIn(random, 0, random() % 2 ? mostRadius : 1)), ry(RandomIn(random, 0, mostRadius)),
          fill(random() % 8 == 0 ? 0 : -3)
    {
        const auto density = random() % 4;
        for (long y = -ry; y <= ry; ++y)
            for (long x = -rx; x <= rx; ++x) {
                const bool inShape =
                    type != VFIL_STRUCT_ELLIPSE || x * x * ry * ry + y * y * rx * rx <= rx * rx * ry * ry;
                const bool custom = type == VFIL_STRUCT_CUSTOM;
                const bool isIn = custom ? random() % 3 < density : fill != 0 && inShape;
                entries.push_back(!isIn ? 0 : custom ? RandomIn(random, -2, 2) : 1);
            }
    }
    void Give(vfILMorphologicalProc& processor)
    {
        if (type == VFIL_STRUCT_CUSTOM) {
            processor.SetStructuringElement(entries.data(), rx, ry);
        } else {
            processor.SetStructuringElement(type, fill, static_cast<float>(rx) + 0.5F, static_cast<float>(ry),
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
    FilterScene scene(random, *kFilterFormats[width > 1000 ? 2 : random() % 4], width, height, 200);
    const auto processor = MakeMorphology(which, random() % 2);
    element.Give(*processor);
    scene.Arrange(*processor);
    EdgedPicture picture = scene.Picture();
    const auto stage = [&](bool largest) {
        return Filtered(picture, [&](long x, long y) { return element.Extreme(picture, x, y, largest); });
    };
    Snapshot result = stage(which != kErode && which != kOpen);
    if (which == kOpen || which == kClose) {
        std::swap(picture.picture, result);
        result = stage(which == kOpen);
    }
    if (which == kEdge)
        for (std::size_t i = 0; i < result.pixels.size(); ++i)
            for (std::size_t c = 0; c < 4; ++c)
                result.pixels[i][c] = std::max(result.pixels[i][c] - picture.picture.pixels[i][c], 0);
    scene.Check(*processor, scene.Expected(result));
}

// The first pictures have more than one band, the next ones windows taller and wider than what one
// combination takes, and several blocks of rows; of the last ones some are much larger than the picture.
TEST(Morphology, FollowsTheDefinition)
{
    vfil::host::RegisterPictureClass();
    for (unsigned seed = 0; seed < 1500 && !HasFatalFailure(); ++seed) {
        SCOPED_TRACE(testing::Message() << "seed " << seed);
        std::mt19937 random(seed);
        const auto which = static_cast<int>(seed % kOperators);
        if (seed < 20) {
            CheckScene(random, 2000, 80, 1, which);
        } else if (seed < 120) {
            CheckScene(random, 12, 150, 22, which);
        } else {
            CheckScene(random, RandomIn(random, 1, 12), RandomIn(random, 1, 9),
                       seed % 7 == 0 ? 33
                       : seed % 3    ? 2
                                     : 7,
                       which);
        }
    }
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
        erode.SetStructuringElement(static_cast<vfILStructuralType>(c.type), 1, c.rx, 1.0F, c.dontCare, 9);
        erode.SetMode(static_cast<vfILMorphologyMode>(c.mode));
        EXPECT_EQ(CodeOf(erode, c.known ? rgba : bgra), c.code) << "case " << &c - cases;
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

// In place. Windows that no memory holds cost what a picture's size does.
TEST(Morphology, MemoryThatCannotBeHadLeavesTheOutputAlone)
{
    vfil::host::RegisterPictureClass();
    std::mt19937 random(1);
    GuardedImage picture(PXFormat_Mono8, 30, 20);
    picture.Randomise(random);
    for (int which = 0; which < kOperators; ++which)
        for (const vfILStructuralType type : {VFIL_STRUCT_RECTANGLE, VFIL_STRUCT_ELLIPSE})
            for (const float radius : {5.0F, 1e9F}) {
                const auto processor = MakeMorphology(which, true);
                processor->SetStructuringElement(type, 1, radius, radius, 0, 0);
                processor->SetInputImg(&picture);
                processor->SetOutputImg(&picture);
                EXPECT_GE(CountRefusedRuns(*processor, picture), 4) << which << ' ' << type;
            }
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
        g_pollsToStop = stop;
        ASSERT_EQ(close.Execute(), VFIL_SUCCESS);
        const long done = std::clamp(stop - kRows - 1, 0L, kRows);
        for (long y = 0; y < kRows; ++y)
            ASSERT_EQ(out.Get(2, y)[0], y < done ? 7 : 0) << "poll " << stop << " row " << y;
    }
}

} // namespace
