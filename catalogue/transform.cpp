/// \file
/// The transform family: turns, shears, scales and quadrilaterals.
#include <catalogue/families.h>
#include <catalogue/moved.h>

#include <vfil/affine.h>

namespace vfil::catalogue {

namespace {

constexpr double kMostDegrees = 1e6;

class Affine : public Moved<vfILAffineTransform> {
public:
    void SetMatrix(const Table& matrix) { m_matrix = matrix; }
    const Table& GetMatrix() const { return m_matrix; }
    void SetRotate(double degrees) { m_degrees = degrees; }
    double GetRotate() const { return m_degrees; }
    void SetScale(const Table& scale) { m_scale = scale; }
    const Table& GetScale() const { return m_scale; }
    void SetShear(const Table& shear) { m_shear = shear; }
    const Table& GetShear() const { return m_shear; }
    void SetTranslate(const Table& translation) { m_translation = translation; }
    const Table& GetTranslate() const { return m_translation; }
    void SetAbout(const Table& about) { m_about = about; }
    const Table& GetAbout() const { return m_about; }

    bool IsCentred() const override { return m_matrix.numbers.empty(); }
    std::optional<Extent> Covers(long width, long height) const override
    {
        return ExtentOf(MapOf(width, height), width, height);
    }

private:
    AffineMap MapOf(long width, long height) const
    {
        const auto& n = m_matrix.numbers;
        if (n.size() >= 6) return {n[0], n[1], n[2], n[3], n[4], n[5]};
        return AffineOf({.scale = PairOf(m_scale, 1),
                         .shear = PairOf(m_shear, 0),
                         .rotation = m_degrees,
                         .translation = PairOf(m_translation, 0),
                         .about = PointOf(m_about)},
                        width, height);
    }
    void Map(long width, long height) override
    {
        const AffineMap map = MapOf(width, height);
        Take<6>({map.a, map.b, map.c, map.d, map.e, map.f});
    }
    vfILInterpolationType UsualInterpolation(long width, long height) const override
    {
        // The means of areas that are turned, and not shrunk, are softer than they need be.
        constexpr double kShrinks = 0.9;
        return LeastScale(MapOf(width, height)) < kShrinks ? VFIL_INTERP_SUM_BICUBIC : VFIL_INTERP_BICUBIC;
    }

    Table m_matrix;
    double m_degrees = 0;
    Table m_scale{{1, 1}, 2};
    Table m_shear{{0, 0}, 2};
    Table m_translation{{0, 0}, 2};
    Table m_about;
};

Entry AffineEntry()
{
    const double most = kMostOfMapping;
    Entry entry = MovedEntry<Affine>(
        "vfILAffineTransform", "affine", "turn, scale, shear and shift",
        {NumberParameter<&Affine::SetRotate, &Affine::GetRotate>(
             {-kMostDegrees, kMostDegrees, 0, "degrees"},
             "turn it; a positive angle turns counter-clockwise, as one sees the picture", 0),
         ListParameter<&Affine::SetScale, &Affine::GetScale>(
             {.count = 2, .missing = List::Missing::Same}, -most, most, {1, 1},
             "factors of width and height, before the turn; one stands for both, a negative one mirrors"),
         ListParameter<&Affine::SetShear, &Affine::GetShear>(
             {.count = 2, .missing = List::Missing::Zero}, -most, most, {0, 0},
             "how far a row moves to the right for each pixel that it lies higher, and a column up for each "
             "that it lies further right, between scale and turn"),
         ListParameter<&Affine::SetTranslate, &Affine::GetTranslate>(
             {.count = 2}, -most, most, {0, 0}, "shift it at last, in pixels to the right and up"),
         ListParameter<&Affine::SetAbout, &Affine::GetAbout>(
             {.count = 2}, -most, most, {},
             "the point that stays in its place in turns, scales and shears, y up (without it the middle of "
             "the picture)"),
         ListParameter<&Affine::SetMatrix, &Affine::GetMatrix>(
             {.count = 6}, -most, most, {},
             "instead of these A,B,C,D,E,F: a pixel at x,y goes to A x + B y + C, D x + E y + F, y up")},
        VFIL_INTERP_SUM_NEAREST,
        "bicubic, or area-bicubic where it shrinks to less than nine tenths, in any direction");
    entry.joint.push_back({0x10010, {"matrix", "scale", "shear"}});
    entry.alternatives = {{{"matrix"}, {"rotate", "scale", "shear", "translate", "about"}}};
    entry.note = "the centre of the bottom-left pixel is 0,0. A quarter turn about the middle lands on whole "
                 "pixels, and copies them";
    return entry;
}

} // namespace

std::vector<Entry> TransformEntries()
{
    std::vector<Entry> entries;
    entries.push_back(AffineEntry());
    return entries;
}

} // namespace vfil::catalogue
