/// \file
/// The colours of keys, taken from pictures.
#include "engine/keycolours.h"
#include "engine/execute.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

namespace vfil::engine {

namespace {

// The mean of what is in the picture of a disc, red, green and blue, in units that a text of few digits
// holds.
catalogue::Value MeanColour(const host::Picture& picture, const ColourPlace& place)
{
    std::array<double, 3> sums{};
    double count = 0;
    const long radius = place.radius;
    for (long y = std::max(0L, place.y - radius); y <= std::min(picture.Height() - 1, place.y + radius);
         ++y) {
        const std::int64_t room = std::int64_t{radius} * radius - std::int64_t{y - place.y} * (y - place.y);
        for (long x = std::max(0L, place.x - radius); x <= std::min(picture.Width() - 1, place.x + radius);
             ++x) {
            if (std::int64_t{x - place.x} * (x - place.x) > room) continue;
            for (std::size_t c = 0; c < 3; ++c)
                sums[c] += picture.Row(y)[4 * static_cast<std::size_t>(x) + c];
            ++count;
        }
    }
    const auto mean = [&](std::size_t c) { return std::round(1e6 * sums[c] / (255 * count)) / 1e6; };
    return {mean(0), mean(1), mean(2), 1};
}

} // namespace

bool KeyColours::NeedFrame() const
{
    return std::any_of(m_plan.steps.begin(), m_plan.steps.end(), [this](const StepPlan& step) {
        return step.step.keyColour && step.clip && !m_taken.contains(&step);
    });
}

const catalogue::Value& KeyColours::Of(const StepPlan& step, const host::PicturePtr& input)
{
    const auto known = m_taken.find(&step);
    if (known != m_taken.end()) return known->second;
    const Conversion toColour = FindConversion(input->Format(), PXFormat_RGBA32).value_or(Conversion());
    const host::PicturePtr picture = Converter(toColour, m_plan.settings).Convert(input);
    const catalogue::Value colour = MeanColour(*picture, *step.step.keyColour);
    m_events.OnKeyColour(step, colour);
    return m_taken.emplace(&step, colour).first->second;
}

} // namespace vfil::engine
