/// \file
/// The transform family: pictures by where their corners go, in the plane and in space.
#include <catalogue/families.h>
#include <catalogue/moved.h>

#include <vfil/affine.h>
#include <vfil/perspective.h>

namespace vfil::catalogue {

namespace {

// What all corners are refused for.
std::optional<Objection> RefuseCorners(const Table& table)
{
    Corners corners{};
    if (table.numbers.size() != corners.size()) return std::nullopt;
    std::copy(table.numbers.begin(), table.numbers.end(), corners.begin());
    if (AreConvex(corners)) return std::nullopt;
    return Objection{"corners", "bottom left, bottom right, top right and top left go around no convex area: "
                                "they cross, coincide, lie on a line or make a hollow"};
}

Corners CornersOf(const Table& table, long width, long height)
{
    const auto right = static_cast<double>(width - 1);
    const auto top = static_cast<double>(height - 1);
    Corners corners{0, 0, right, 0, right, top, 0, top};
    if (table.numbers.size() == corners.size())
        std::copy(table.numbers.begin(), table.numbers.end(), corners.begin());
    return corners;
}

template <class P>
Parameter CornersParameter()
{
    return ListParameter<&P::SetCorners, &P::GetCorners>(
        {.count = 8}, -kMostOfMapping, kMostOfMapping, {},
        "where the centres of the picture's pixels bottom left, bottom right, top right and top left go, x "
        "and y of each, y up");
}

class Quad : public Moved<vfILBilinearTransform> {
public:
    void SetCorners(const Table& corners) { m_corners = corners; }
    const Table& GetCorners() const { return m_corners; }

    bool IsCentred() const override { return false; }
    std::optional<Objection> Refuse(long, long) const override { return RefuseCorners(m_corners); }
    std::optional<Extent> Covers(long width, long height) const override
    {
        return ExtentOf(CornersOf(m_corners, width, height), width, height);
    }

private:
    void Map(long width, long height) override { Take(CornersOf(m_corners, width, height)); }
    vfILInterpolationType UsualInterpolation(long, long) const override { return VFIL_INTERP_SUM_BICUBIC; }

    Table m_corners;
};

Entry QuadEntry()
{
    Entry entry =
        MovedEntry<Quad>("vfILBilinearTransform", "quad",
                         "put into a quadrilateral, with the lines between its sides divided evenly",
                         {CornersParameter<Quad>()}, VFIL_INTERP_SUM_NEAREST, "area-bicubic");
    entry.parameters.front().required = true;
    entry.joint.push_back({0x10010, {"corners"}});
    entry.note = "for a picture in space, see perspective";
    return entry;
}

// What shows which side of the camera is before it, in a fourth way.
constexpr int kClipBehind = 3;

class Perspective : public Moved<vfILPerspectiveTransform> {
public:
    void SetCorners(const Table& corners) { m_corners = corners; }
    const Table& GetCorners() const { return m_corners; }
    void SetMatrix(const Table& matrix) { m_matrix = matrix; }
    const Table& GetMatrix() const { return m_matrix; }
    void SetClipMode(int mode) { m_clip = mode; }
    int GetClipMode() const { return m_clip; }

    bool IsCentred() const override { return false; }
    std::optional<Objection> Refuse(long width, long height) const override
    {
        if (m_corners.numbers.empty()) return std::nullopt;
        if (width < 2 || height < 2)
            return Objection{"corners", "a picture that is one pixel wide or high has no four"};
        return RefuseCorners(m_corners);
    }
    std::optional<Extent> Covers(long width, long height) const override
    {
        return ExtentOf(MapOf(width, height), width, height);
    }

private:
    Homography MapOf(long width, long height) const
    {
        if (!m_corners.numbers.empty())
            return HomographyOf(CornersOf(m_corners, width, height), width, height).value_or(Homography{});
        Homography map{1, 0, 0, 0, 1, 0, 0, 0, 1};
        if (m_matrix.numbers.size() == map.size())
            std::copy(m_matrix.numbers.begin(), m_matrix.numbers.end(), map.begin());
        return Normalized(map);
    }
    void Map(long width, long height) override
    {
        const Homography map = MapOf(width, height);
        Take(map);
        // Backwards, w has the sign of the determinant for what is before the camera.
        const int front = Determinant(map) < 0 ? VFIL_CLIP_NEGATIVE : VFIL_CLIP_POSITIVE;
        vfILPerspectiveTransform::SetClipMode(
            static_cast<vfILClipMode>(m_clip == kClipBehind ? front : m_clip));
    }
    vfILInterpolationType UsualInterpolation(long, long) const override { return VFIL_INTERP_SUM_BICUBIC; }

    Table m_corners;
    Table m_matrix;
    int m_clip = kClipBehind;
};

Parameter ClipMode()
{
    return ChoiceParameter<&Perspective::SetClipMode, &Perspective::GetClipMode>(
        kClipBehind, "what is seen of a picture that reaches behind the camera",
        {{"none", VFIL_CLIP_NONE, "both parts, which is a picture turned over beyond the horizon"},
         {"negative", VFIL_CLIP_NEGATIVE, "where the way back has a negative w"},
         {"positive", VFIL_CLIP_POSITIVE, "where it has a positive one"},
         {"front", kClipBehind, "what is before the camera: where W is positive, for an I of 1"}},
        0);
}

Entry PerspectiveEntry()
{
    Entry entry = MovedEntry<Perspective>(
        "vfILPerspectiveTransform", "perspective", "put into space, seen by a camera",
        {CornersParameter<Perspective>(),
         ListParameter<&Perspective::SetMatrix, &Perspective::GetMatrix>(
             {.count = 9}, -kMostOfMapping, kMostOfMapping, {},
             "instead of the corners A,B,C,D,E,F,G,H,I: a pixel at x,y goes to (A x + B y + C) / W, (D x + E "
             "y + F) / W, with W = G x + H y + I, y up; it is scaled so that I is 1"),
         ClipMode()},
        VFIL_INTERP_SUM_NEAREST, "area-bicubic");
    entry.alternatives = {{{"corners"}, {"matrix"}, true}};
    entry.joint.push_back({0x10010, {"corners", "matrix"}});
    entry.note = "the centre of the bottom-left pixel is 0,0";
    return entry;
}

class Card : public Moved<vfILTransfoPerspProj> {
public:
    void SetLocalTrans(const Table& translation) { m_local = translation; }
    const Table& GetLocalTrans() const { return m_local; }
    void SetStabTrans(const Table& translation) { m_stab = translation; }
    const Table& GetStabTrans() const { return m_stab; }
    void SetCameraPosZ(double position) { m_camera = position; }
    double GetCameraPosZ() const { return m_camera; }

    std::optional<Extent> Covers(long width, long height) const override
    {
        const MapPoint local = PairOf(m_local, 0);
        const MapPoint stab = PairOf(m_stab, 0);
        return ExtentOf(AffineMap{.c = local.x + stab.x, .f = local.y + stab.y}, width, height);
    }

private:
    void Map(long, long) override
    {
        // The class adds the stabilisation to the place each time.
        const MapPoint local = PairOf(m_local, 0);
        const MapPoint stab = PairOf(m_stab, 0);
        SetLocalTransX(local.x);
        SetLocalTransY(local.y);
        SetStabTransX(stab.x);
        SetStabTransY(stab.y);
        vfILTransfoPerspProj::SetCameraPosZ(m_camera);
        SetCoefficients();
    }
    vfILInterpolationType UsualInterpolation(long, long) const override { return VFIL_INTERP_BICUBIC; }

    Table m_local{{0, 0}, 2};
    Table m_stab{{0, 0}, 2};
    double m_camera = 1;
};

Entry CardEntry()
{
    constexpr double kMost = 1e6;
    Entry entry = MovedEntry<Card>(
        "vfILTransfoPerspProj", "card", "place as a card that faces the camera",
        {ListParameter<&Card::SetLocalTrans, &Card::GetLocalTrans>(
             {.count = 2}, -kMost, kMost, {0, 0}, "where the card goes, in pixels to the right and up"),
         ListParameter<&Card::SetStabTrans, &Card::GetStabTrans>(
             {.count = 2}, -kMost, kMost, {0, 0}, "added to it, as a tracker or a stabiliser has it"),
         NumberParameter<&Card::SetCameraPosZ, &Card::GetCameraPosZ>(
             {-kMost, kMost, 1, "pixels"},
             "distance of the camera; 0 is refused, and another one changes "
             "nothing, since the card has the camera's distance",
             0)},
        VFIL_INTERP_SUM_NEAREST, "bicubic");
    entry.joint.push_back({0x10010, {"camera-pos-z", "local-trans", "stab-trans"}});
    entry.note = "to turn a card in space, see perspective";
    return entry;
}

} // namespace

std::vector<Entry> CornerEntries()
{
    std::vector<Entry> entries;
    entries.push_back(QuadEntry());
    entries.push_back(PerspectiveEntry());
    entries.push_back(CardEntry());
    return entries;
}

} // namespace vfil::catalogue
