/// \file
/// The search.
#include "keyauto/findkey.h"
#include "keyauto/keyform.h"
#include "keyauto/samples.h"

#include <algorithm>

namespace vfil::keyauto {

namespace {

constexpr long kLeastSide = 16; // of a plate on which edges can be told

Key Search(const KeyForm& form, const Screen& screen, const Samples& samples)
{
    constexpr std::size_t kStarts = 3;
    constexpr int kRounds = 60;
    constexpr int kLastRounds = 100;
    Trial trial(form.keyer, samples.picture);
    const std::function<double(const Point&)> distance = [&](const Point& point) {
        return Distance(samples, *trial.Run(form.settings(screen, point)));
    };
    std::vector<std::pair<double, Point>> starts;
    for (const Point& start : form.starts(screen))
        starts.emplace_back(distance(start), start);
    std::stable_sort(starts.begin(), starts.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    starts.resize(std::min(kStarts, starts.size()));
    for (auto& [height, point] : starts) {
        point = FindLowest(distance, point, form.steps, kRounds);
        height = distance(point);
    }
    const auto best = std::min_element(starts.begin(), starts.end(),
                                       [](const auto& a, const auto& b) { return a.first < b.first; });
    const Point point = FindLowest(distance, best->second, form.steps, kLastRounds);
    return {form.keyer, form.settings(screen, point), distance(point)};
}

double ShareOf(const Mask& mask)
{
    std::size_t chosen = 0;
    for (std::size_t i = 0; i < mask.Size(); ++i)
        chosen += mask[i];
    return static_cast<double>(chosen) / static_cast<double>(mask.Size());
}

} // namespace

std::vector<std::string> Keyers()
{
    std::vector<std::string> names;
    for (const KeyForm& form : KeyForms())
        names.emplace_back(form.keyer);
    return names;
}

Finding FindKey(const host::PicturePtr& picture, const std::string& keyer)
{
    if (picture->Width() < kLeastSide || picture->Height() < kLeastSide)
        throw NothingToKey("no screen found: the picture is smaller than 16x16");
    const Plate plate = MakePlate(*picture);
    const std::optional<Screen> screen = FindScreen(plate.light);
    if (!screen) throw NothingToKey("no screen found: no even green or blue is large enough");
    const Regions regions = FindRegions(plate.light, *screen);
    constexpr double kLeastScreen = 0.002;
    if (ShareOf(regions.clear) < kLeastScreen)
        throw NothingToKey("no screen found: green and blue are too uneven");
    constexpr double kLeastSubject = 0.0001;
    if (ShareOf(regions.solid) < kLeastSubject)
        throw NothingToKey("no subject found: the picture is all screen");
    const Reference reference = EstimateMatte(plate.light, *screen, regions);
    const Samples samples = TakeSamples(plate, regions, reference);
    Finding finding;
    finding.blue = screen->blue;
    finding.screen = {ByteOf(screen->colour.r) / 255.0, ByteOf(screen->colour.g) / 255.0,
                      ByteOf(screen->colour.b) / 255.0, 1};
    finding.screenShare = ShareOf(regions.clear);
    finding.solidShare = ShareOf(regions.solid);
    finding.edgeWidth = static_cast<double>(regions.edge) * static_cast<double>(plate.side);
    for (const KeyForm& form : KeyForms()) {
        if (keyer.empty() || keyer == form.keyer) finding.keys.push_back(Search(form, *screen, samples));
    }
    std::stable_sort(finding.keys.begin(), finding.keys.end(),
                     [](const Key& a, const Key& b) { return a.distance < b.distance; });
    return finding;
}

} // namespace vfil::keyauto
