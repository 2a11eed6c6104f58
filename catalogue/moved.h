/// \file
/// What the geometric operators have in common: mappings that go by the size of the picture, interpolation,
/// crop, alpha.
#pragma once

#include <catalogue/entryof.h>
#include <catalogue/mapping.h>
#include <catalogue/parameters.h>

#include <vfil/transform.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <initializer_list>
#include <limits>
#include <vector>

namespace vfil::catalogue {

/// What stands for the interpolation that fits the mapping.
inline constexpr int kUsualInterpolation = 0;

/// The numbers that mappings take, and that a picture may be moved by.
inline constexpr double kMostOfMapping = 1e9;

/// A coefficient as the class takes it. What is no number makes the mapping singular.
inline float Coefficient(double number)
{
    constexpr double kMost = std::numeric_limits<float>::max();
    return std::isnan(number) ? 0.0F : static_cast<float>(std::clamp(number, -kMost, kMost));
}

/// The point of a list, if it has one.
inline std::optional<MapPoint> PointOf(const Table& list)
{
    if (list.numbers.size() < 2) return std::nullopt;
    return MapPoint{list.numbers[0], list.numbers[1]};
}

inline MapPoint PairOf(const Table& list, double usual)
{
    return PointOf(list).value_or(MapPoint{usual, usual});
}

/// A transform whose coefficients follow from what people say of it, as soon as it has a picture.
template <class P>
class Moved : public P, public Placement {
public:
    void SetInterpolation(int type) { m_interpolation = type; }
    int GetInterpolation() const { return m_interpolation; }

    void SetCropping(const Table& edges)
    {
        m_cropping = edges;
        const auto edge = EdgesOf(edges);
        P::SetCropping(edge[0], edge[1], edge[2], edge[3]);
    }
    const Table& GetCropping() const { return m_cropping; }

    // Stated, it is also what keeps programs from multiplying the colour before.
    void SetInputImgPremultiplied(int premultiplied)
    {
        m_stated = true;
        P::SetInputImgPremultiplied(premultiplied);
    }
    int GetInputImgPremultiplied() const { return P::GetInputImgPremultiplied(); }

    bool IsCentred() const override { return true; }

protected:
    // Left, right, top and bottom for the class, whose top is where y begins: the bottom, as one sees it.
    static std::array<unsigned long, 4> EdgesOf(const Table& edges)
    {
        constexpr std::array<std::size_t, 4> kOrder = {0, 1, 3, 2};
        std::array<unsigned long, 4> numbers{};
        if (edges.numbers.size() == numbers.size())
            std::transform(kOrder.begin(), kOrder.end(), numbers.begin(), [&](std::size_t i) {
                return static_cast<unsigned long>(std::clamp(edges.numbers[i], 0.0, kMostOfMapping));
            });
        return numbers;
    }

    /// Gives the class its coefficients for a picture of that size.
    virtual void Map(long width, long height) = 0;
    virtual vfILInterpolationType UsualInterpolation(long width, long height) const = 0;

    template <std::size_t kCount>
    void Take(const std::array<double, kCount>& numbers)
    {
        std::array<float, kCount> coefficients{};
        std::transform(numbers.begin(), numbers.end(), coefficients.begin(), Coefficient);
        P::SetCoefficients(coefficients.data());
    }

    vfILStatus SetUpCoefficients() override
    {
        long width = 0;
        long height = 0;
        if (IPXImage* const input = this->GetInputImg()) {
            input->GetDimensions(&width, &height);
            Map(width, height);
            P::SetInterpolationType(m_interpolation == kUsualInterpolation
                                        ? UsualInterpolation(width, height)
                                        : static_cast<vfILInterpolationType>(m_interpolation));
            if (!m_stated) TakeAlphaOf(*input);
        }
        return P::SetUpCoefficients();
    }

private:
    void TakeAlphaOf(IPXImage& input)
    {
        long premultiplied = 0;
        input.GetImageState(PXImageState_PREMULTIPLIED, &premultiplied);
        const int flag = premultiplied != 0 ? 1 : 0;
        P::SetInputImgPremultiplied(flag);
        P::SetCreatePremultipliedOutput(flag);
    }

    int m_interpolation = kUsualInterpolation;
    bool m_stated = false;
    Table m_cropping{{0, 0, 0, 0}, 4};
};

/// The interpolations, up to the last one that the class has.
template <class P>
Parameter Interpolation(vfILInterpolationType last, const char* usual)
{
    std::vector<Choice> choices = {
        {"auto", kUsualInterpolation, usual},
        {"nearest", VFIL_INTERP_NEAREST, "the nearest pixel"},
        {"bilinear", VFIL_INTERP_BILINEAR, "a mix of 2x2"},
        {"bicubic", VFIL_INTERP_BICUBIC, "Catmull-Rom, of 4x4"},
        {"prefiltered", VFIL_INTERP_BILINEAR_PREFILTERED, "bilinear, where it shrinks on smaller copies"},
        {"area", VFIL_INTERP_SUM_BILINEAR, "the area that a pixel covers; bilinear where it enlarges"},
        {"area-bicubic", VFIL_INTERP_SUM_BICUBIC, "the same, bicubic where it enlarges"},
        {"area-nearest", VFIL_INTERP_SUM_NEAREST, "the same, the nearest pixel where it enlarges"},
        {"two-pass", VFIL_INTERP_PANZOOM, "columns, then rows: the area where it shrinks, else bilinear"}};
    std::erase_if(choices, [last](const Choice& choice) { return choice.value > static_cast<double>(last); });
    return ChoiceParameter<&P::SetInterpolation, &P::GetInterpolation>(
        kUsualInterpolation, "how a pixel is made of the picture", std::move(choices), 0x1000F);
}

inline Parameter FilteringLevel()
{
    Parameter parameter = NumberParameter<&vfILMonadicTransformProc::SetFilteringLevel,
                                          &vfILMonadicTransformProc::GetFilteringLevel>(
        {0, 1000, 0, "half pixels"},
        "makes it softer: how much wider than a pixel the areas are, or the "
        "radius of the blur under prefiltered; without effect on the others",
        0);
    return parameter;
}

template <class P>
Parameter Cropping()
{
    return ListParameter<&P::SetCropping, &P::GetCropping>(
        {.count = 4, .missing = List::Missing::Same, .whole = true}, 0, kMostOfMapping, {0, 0, 0, 0},
        "pixels that are cut from the picture first, left, right, top and bottom");
}

template <class P>
Parameter AlphaAsItIs()
{
    Parameter parameter = FlagParameter<&P::SetInputImgPremultiplied, &P::GetInputImgPremultiplied>(
        std::nullopt,
        "whether the picture's colour is multiplied by its alpha; stated, it is worked on as it "
        "is");
    parameter.role = ParameterRole::Premultiplication;
    return parameter;
}

/// The entry of a transform of one picture, with the parameters that all have.
template <class P>
Entry MovedEntry(const char* className, const char* name, const char* summary,
                 std::vector<Parameter> parameters, vfILInterpolationType last, const char* usual)
{
    Entry entry = EntryOf<P>(className, "transform", summary);
    entry.alias = entry.name;
    entry.name = name;
    entry.inputs = {{"picture", "the picture to move"}};
    entry.formats = {PXFormat_RGBA32, PXFormat_RGBA64, PXFormat_Mono8, PXFormat_Mono16};
    entry.parameters = std::move(parameters);
    entry.parameters.push_back(Interpolation<P>(last, usual));
    entry.parameters.push_back(FilteringLevel());
    entry.parameters.push_back(Cropping<P>());
    entry.parameters.push_back(AlphaAsItIs<P>());
    entry.joint = {{0x1000F, {"interpolation", "filtering-level"}}, {0x10069, {"cropping"}}};
    entry.fixedChannels = VFIL_MODE_RGBA;
    entry.channels = VFIL_MODE_RGBA;
    entry.mask = MaskUse::None;
    entry.multiplied = true;
    entry.movesRows = true;
    entry.places = true;
    entry.bands = false;
    entry.spatialReach = kWholePicture;
    return entry;
}

} // namespace vfil::catalogue
