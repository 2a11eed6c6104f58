/// \file
/// The parameters that the frame of two inputs gives.
#include <catalogue/parameters.h>
#include <catalogue/twoinputs.h>

#include <vfil/frame.h>

#include <cstdint>
#include <limits>

namespace vfil::catalogue {

namespace {

constexpr double kLowest = std::numeric_limits<std::int32_t>::min();
constexpr double kHighest = std::numeric_limits<std::int32_t>::max();

} // namespace

Parameter InputOffset(const char* summary)
{
    return {.name = ParameterName("SetInputOffset"),
            .type = ParameterType::Point,
            .unit = "pixels",
            .minimum = kLowest,
            .maximum = kHighest,
            .fallback = Value{},
            .summary = summary,
            .choices = {},
            .refusal = 0,
            .apply =
                [](vfILProcessor& p, const Value& v) {
                    As<vfILDyadicImgProc>(p).SetInputOffset({static_cast<long>(v.x), static_cast<long>(v.y)});
                },
            .read =
                [](const vfILProcessor& p) {
                    const vfILVector2l& offset = As<vfILDyadicImgProc>(p).GetInputOffset();
                    return Value{static_cast<double>(offset[0]), static_cast<double>(offset[1])};
                },
            .role = ParameterRole::InputOffset};
}

Parameter DominantInput(double fallback, const char* summary, const char* a, const char* b)
{
    return {.name = ParameterName("SetDominantInput"),
            .type = ParameterType::Choice,
            .unit = "",
            .minimum = kDominantA,
            .maximum = kDominantB,
            .fallback = Value{fallback},
            .summary = summary,
            .choices = {{"a", kDominantA, a}, {"b", kDominantB, b}},
            .refusal = 0,
            .apply =
                [](vfILProcessor& p, const Value& v) {
                    auto& dyadic = As<vfILDyadicImgProc>(p);
                    dyadic.SetDominantInput(v.x == kDominantB ? dyadic.GetInputImgB()
                                                              : dyadic.GetInputImgA());
                },
            .read =
                [](const vfILProcessor& p) {
                    const auto& dyadic = As<vfILDyadicImgProc>(p);
                    const bool isA = dyadic.GetDominantInput() == dyadic.GetInputImgA();
                    return Value{isA ? kDominantA : kDominantB};
                },
            .role = ParameterRole::DominantInput};
}

} // namespace vfil::catalogue
