/// \file
/// The transform family: scales and shifts, with a border and a falloff.
#include <catalogue/families.h>
#include <catalogue/moved.h>

#include <vfil/panzoom.h>

namespace vfil::catalogue {

namespace {

// A size as a parameter has it; 0 for none.
using Frame = vfILVector2l;

bool IsGiven(const Frame& frame)
{
    return frame[0] > 0 && frame[1] > 0;
}

bool HasAny(const Table& edges)
{
    return std::any_of(edges.numbers.begin(), edges.numbers.end(), [](double edge) { return edge != 0; });
}

class PanZoom : public Moved<vfILPanZoomTransform> {
    using Class = vfILPanZoomTransform;

public:
    void SetScale(const Table& scale) { m_scale = scale; }
    const Table& GetScale() const { return m_scale; }
    void SetTranslate(const Table& translation) { m_translation = translation; }
    const Table& GetTranslate() const { return m_translation; }
    void SetFit(const Frame& frame) { m_fit = frame; }
    const Frame& GetFit() const { return m_fit; }
    void SetFill(const Frame& frame) { m_fill = frame; }
    const Frame& GetFill() const { return m_fill; }

    void SetBorderSize(const Table& edges)
    {
        m_border = edges;
        const auto edge = EdgesOf(edges);
        Class::SetBorderSize(edge[0], edge[1], edge[2], edge[3]);
    }
    const Table& GetBorderSize() const { return m_border; }
    void SetBorderSoftness(const Table& edges)
    {
        m_softness = edges;
        const auto edge = EdgesOf(edges);
        Class::SetBorderSoftness(edge[0], edge[1], edge[2], edge[3]);
    }
    const Table& GetBorderSoftness() const { return m_softness; }
    void SetOpacityFalloff(const Table& edges)
    {
        m_falloff = edges;
        const auto edge = EdgesOf(edges);
        Class::SetOpacityFalloff(edge[0], edge[1], edge[2], edge[3]);
    }
    const Table& GetOpacityFalloff() const { return m_falloff; }
    void SetBorderColor(const vfILColor& color) { Class::SetBorderColor(color); }
    const vfILColor& GetBorderColor() const { return Class::GetBorderColor(); }
    void SetOpacity(double opacity) { Class::SetOpacity(opacity); }
    double GetOpacity() const { return Class::GetOpacity(); }

    std::optional<Objection> Refuse(long, long) const override
    {
        const char* const paint = PaintOf();
        const bool paints =
            GetInterpolation() == kUsualInterpolation || GetInterpolation() == VFIL_INTERP_PANZOOM;
        if (*paint == '\0' || paints) return std::nullopt;
        return Objection{paint, "acts with the interpolation two-pass alone"};
    }
    std::optional<Extent> Covers(long width, long height) const override
    {
        return ExtentOf(MapOf(width, height), width, height);
    }
    std::optional<vfILVector2l> OwnSize() const override
    {
        if (IsGiven(m_fit)) return m_fit;
        return IsGiven(m_fill) ? std::optional(m_fill) : std::nullopt;
    }
    std::optional<vfILBbox2l> Fills(long width, long height) const override
    {
        const MapPoint shift = PairOf(m_translation, 0);
        const bool whole = shift.x == std::trunc(shift.x) && shift.y == std::trunc(shift.y);
        if (!OwnSize() || !whole || HasAny(GetCropping()) || *PaintOf() != '\0') return std::nullopt;
        const Extent extent = ExtentOf(MapOf(width, height), width, height);
        const auto pixel = [](double edge) { return static_cast<long>(std::lround(edge + 0.5)); };
        const long left = pixel(extent.left);
        const long bottom = pixel(extent.bottom);
        return vfILBbox2l(left, bottom, pixel(extent.right) - left, pixel(extent.top) - bottom);
    }
    void Pad(long pixels) override { m_padding = pixels; }
    bool MayClear() const override { return GetOpacity() < 1 || HasAny(m_falloff); }
    bool IsCentred() const override { return !OwnSize(); }

private:
    // The first option that only the two-pass resampler follows.
    const char* PaintOf() const
    {
        if (HasAny(m_border)) return "border-size";
        if (HasAny(m_softness)) return "border-softness";
        if (HasAny(m_falloff)) return "opacity-falloff";
        return GetOpacity() == 1 ? "" : "opacity";
    }
    AffineMap MapOf(long width, long height) const
    {
        const MapPoint translation = PairOf(m_translation, 0);
        const auto own = OwnSize();
        if (!own) return AffineOf({.scale = PairOf(m_scale, 1), .translation = translation}, width, height);
        AffineMap map = AffineOnto(*own, !IsGiven(m_fit), width, height);
        map.c += translation.x;
        map.f += translation.y;
        return map;
    }
    AffineMap PaddedMapOf(long width, long height) const
    {
        const auto padding = static_cast<double>(m_padding);
        AffineMap map = MapOf(width - 2 * m_padding, height - 2 * m_padding);
        map.c -= map.a * padding;
        map.f -= map.e * padding;
        return map;
    }
    void Map(long width, long height) override
    {
        const AffineMap map = PaddedMapOf(width, height);
        Take<4>({map.a, map.c, map.e, map.f});
    }
    vfILInterpolationType UsualInterpolation(long width, long height) const override
    {
        const AffineMap map = PaddedMapOf(width, height);
        const bool narrower = std::abs(map.a) < 1;
        const bool lower = std::abs(map.e) < 1;
        if (*PaintOf() != '\0' || (narrower && lower)) return VFIL_INTERP_PANZOOM;
        return narrower || lower ? VFIL_INTERP_SUM_BICUBIC : VFIL_INTERP_BICUBIC;
    }

    Table m_scale{{1, 1}, 2};
    Table m_translation{{0, 0}, 2};
    Frame m_fit;
    Frame m_fill;
    Table m_border{{0, 0, 0, 0}, 4};
    Table m_softness{{0, 0, 0, 0}, 4};
    Table m_falloff{{0, 0, 0, 0}, 4};
    long m_padding = 0;
};

template <auto kSet, auto kGet>
Parameter FrameParameter(const char* summary)
{
    Parameter parameter = UnitParameter<kSet, kGet>(ParameterType::Size, std::nullopt, summary, 0);
    parameter.minimum = 1;
    parameter.maximum = 65535;
    return parameter;
}

template <auto kSet, auto kGet>
Parameter EdgesParameter(const char* summary)
{
    return ListParameter<kSet, kGet>({.count = 4, .missing = List::Missing::Same, .whole = true}, 0,
                                     kMostOfMapping, {0, 0, 0, 0}, summary);
}

std::vector<Parameter> PanZoomParameters()
{
    const double most = kMostOfMapping;
    return {
        FrameParameter<&PanZoom::SetFit, &PanZoom::GetFit>(
            "scale it so that all of it just fits that size, which the output gets, in the middle"),
        FrameParameter<&PanZoom::SetFill, &PanZoom::GetFill>(
            "scale it so that it just fills that size, which the output gets; what is beyond is lost"),
        ListParameter<&PanZoom::SetScale, &PanZoom::GetScale>(
            {.count = 2, .missing = List::Missing::Same}, -most, most, {1, 1},
            "factors of width and height, about the middle; one stands for both, a negative one mirrors"),
        ListParameter<&PanZoom::SetTranslate, &PanZoom::GetTranslate>(
            {.count = 2}, -most, most, {0, 0}, "shift it at last, in pixels to the right and up"),
        EdgesParameter<&PanZoom::SetBorderSize, &PanZoom::GetBorderSize>(
            "width of a border that is painted over the edges of the picture, in its pixels: left, right, "
            "top "
            "and bottom"),
        EdgesParameter<&PanZoom::SetBorderSoftness, &PanZoom::GetBorderSoftness>(
            "how much of the border is a ramp at its inner edge, as for the border"),
        ColourParameter<&PanZoom::SetBorderColor, &PanZoom::GetBorderColor>(Value{}, "colour of the border"),
        ShareParameter<&PanZoom::SetOpacity, &PanZoom::GetOpacity>(1, "how opaque the picture is", 0x1006E),
        EdgesParameter<&PanZoom::SetOpacityFalloff, &PanZoom::GetOpacityFalloff>(
            "width of a ramp from clear to opaque at the edges, as for the border")};
}

} // namespace

std::vector<Entry> PanZoomEntries()
{
    Entry entry = MovedEntry<PanZoom>(
        "vfILPanZoomTransform", "pan-zoom", "scale and shift", PanZoomParameters(), VFIL_INTERP_PANZOOM,
        "two-pass where it shrinks and with a border, a falloff or an opacity; bicubic "
        "where it enlarges; area-bicubic where it does both");
    entry.alternatives = {{{"fit"}, {"fill"}}, {{"fit", "fill"}, {"scale"}}};
    entry.joint.push_back({0x10010, {"scale", "translate"}});
    entry.joint.push_back({0x10070, {"border-softness", "border-size", "cropping"}});
    entry.joint.push_back({0x1006F, {"opacity-falloff", "cropping"}});
    entry.note = "border, falloff and opacity act with the interpolation two-pass alone, which moves a "
                 "picture that is not scaled by whole pixels";
    std::vector<Entry> entries;
    entries.push_back(std::move(entry));
    return entries;
}

} // namespace vfil::catalogue
