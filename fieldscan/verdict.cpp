/// \file
/// Orders of pairs, and of the clip.
#include "fieldscan/verdict.h"

#include <algorithm>
#include <array>

namespace vfil::fieldscan {

namespace {

// Of the lesser excess of combs to the greater: 1 for progressive frames, 0 for the others. But codecs take
// from the combs of a frame, and bring it to 0.5 at low rates, or to 0.8 where little moves.
constexpr double kMostInterlaced = 0.52;
constexpr double kLeastProgressive = 0.85;
// Between the two an order shows in that nearly all pairs lean to one side.
constexpr double kLeaning = 0.9;
constexpr long kLeaningPairs = 4;

// A scene changes where the picture changes by so much more than before and behind, and by so many levels.
constexpr double kCutTimes = 3;
constexpr double kCutLevels = 4;

// An order is there when so many pairs say so, and they are a share of all, ...
constexpr long kFewPairs = 3;
constexpr double kShare = 0.2;
// ... or when so many do one behind the other.
constexpr long kRun = 6;

constexpr std::array kOrders{Order::Progressive, Order::Top, Order::Bottom};

bool IsCut(const std::vector<Pair>& pairs, std::size_t index)
{
    if (pairs.size() < 2) return false;
    double around = 0;
    if (index > 0) around = pairs[index - 1].change;
    if (index + 1 < pairs.size()) around = std::max(around, pairs[index + 1].change);
    return pairs[index].change > kCutTimes * around + kCutLevels;
}

// A pair that says something, and where.
struct Said {
    long pair;
    Order order;
};

// Pairs one behind the other that say the same.
struct Run {
    std::size_t first;
    std::size_t end;
};

std::vector<Run> RunsOf(const std::vector<Said>& said)
{
    std::vector<Run> runs;
    for (std::size_t i = 0; i < said.size(); ++i) {
        if (i > 0 && said[i].order == said[i - 1].order)
            runs.back().end = i + 1;
        else
            runs.push_back({i, i + 1});
    }
    return runs;
}

std::vector<Order> OrdersIn(const std::vector<Said>& said, const std::vector<Run>& runs)
{
    std::vector<Order> present;
    for (const Order order : kOrders) {
        const auto count =
            std::count_if(said.begin(), said.end(), [&](const Said& s) { return s.order == order; });
        const bool often =
            count >= kFewPairs && static_cast<double>(count) >= kShare * static_cast<double>(said.size());
        const bool long_run = std::any_of(runs.begin(), runs.end(), [&](const Run& run) {
            return said[run.first].order == order && run.end - run.first >= kRun;
        });
        if (often || long_run) present.push_back(order);
    }
    return present;
}

// Where the order stays for a while, and what lies between such stretches: as it changes there, or not worth
// a stretch of its own.
std::vector<Stretch> StretchesOf(const std::vector<Said>& said, const std::vector<Run>& runs, long pairs)
{
    std::vector<Stretch> stretches;
    const auto add = [&](Order order, std::size_t first) {
        if (!stretches.empty() && stretches.back().order == order) return;
        const long start = stretches.empty() ? 0 : said[first].pair;
        if (!stretches.empty()) stretches.back().end = start;
        stretches.push_back({start, pairs + 1, order});
    };
    std::size_t behind = 0; // the last long run
    for (const Run& run : runs) {
        if (run.end - run.first < kRun) continue;
        if (run.first - behind >= kRun) add(Order::Mixed, behind);
        add(said[run.first].order, run.first);
        behind = run.end;
    }
    if (said.size() - behind >= kRun) add(Order::Mixed, behind);
    return stretches;
}

long& CountOf(Finding& finding, Order order)
{
    switch (order) {
    case Order::Progressive:
        return finding.progressive;
    case Order::Top:
        return finding.top;
    case Order::Bottom:
        return finding.bottom;
    default:
        return finding.undecided;
    }
}

Combs& operator+=(Combs& sum, const Combs& combs)
{
    sum.own += combs.own;
    sum.nextTop += combs.nextTop;
    sum.nextBottom += combs.nextBottom;
    return sum;
}

Combs Divided(const Combs& sum, double divisor)
{
    return {sum.own / divisor, sum.nextTop / divisor, sum.nextBottom / divisor};
}

// Pairs that tell something of the order.
std::vector<bool> Telling(const std::vector<Pair>& pairs, Finding& finding)
{
    std::vector<bool> telling;
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        const bool cut = IsCut(pairs, i);
        finding.cuts += cut ? 1 : 0;
        telling.push_back(pairs[i].moves && !cut);
    }
    return telling;
}

// What a telling pair says. Where each frame was made of one field, the one pair seems to have the top field
// first and the next pair the bottom field: those that disagree so, or do not know, say it together.
Order OrderAt(const std::vector<Pair>& pairs, const std::vector<bool>& telling, std::size_t index)
{
    const Order alone = OrderOf(pairs[index].combs);
    if (alone == Order::Progressive) return alone;
    for (const std::size_t other : {index + 1, index - 1}) {
        if (other >= pairs.size() || !telling[other]) continue;
        const Order beside = OrderOf(pairs[other].combs);
        if (beside == alone && alone != Order::Unknown) return alone;
        if (beside == Order::Progressive) continue;
        Combs both = pairs[index].combs;
        return OrderOf(both += pairs[other].combs);
    }
    return alone;
}

// What the telling pairs say, with the figures.
std::vector<Said> Count(const std::vector<Pair>& pairs, Finding& finding)
{
    const std::vector<bool> telling = Telling(pairs, finding);
    std::vector<Said> said;
    double count = 0;
    for (std::size_t i = 0; i < pairs.size(); ++i) {
        if (!telling[i]) continue;
        const Order order = OrderAt(pairs, telling, i);
        ++CountOf(finding, order);
        if (order != Order::Unknown) said.push_back({static_cast<long>(i), order});
        finding.combs += pairs[i].combs;
        ++count;
    }
    finding.combs = Divided(finding.combs, std::max(1.0, count));
    return said;
}

} // namespace

const char* Word(Order order)
{
    constexpr std::array kWords{"unknown", "progressive", "top", "bottom", "mixed"};
    return kWords.at(static_cast<std::size_t>(order));
}

Order OrderOf(const Combs& combs)
{
    const double top = combs.nextTop - combs.own;
    const double bottom = combs.nextBottom - combs.own;
    const double lesser = std::min(top, bottom);
    const double greater = std::max(top, bottom);
    const double spread = std::max(greater, 0.0) - std::min(lesser, 0.0);
    if (spread <= 0) return Order::Unknown;
    const Order first = top < bottom ? Order::Top : Order::Bottom;
    if (lesser < kMostInterlaced * greater) return first;
    // Frames that comb more than either weave have fields of different moments, but no order.
    if (greater < 0) return greater - lesser > (1 - kMostInterlaced) * spread ? first : Order::Unknown;
    return lesser > kLeastProgressive * greater ? Order::Progressive : Order::Unknown;
}

namespace {

// The order where most pairs lie between two.
Order VagueOrder(const std::vector<Pair>& pairs, const Finding& finding)
{
    const Order order = OrderOf(finding.combs);
    if (order != Order::Unknown) return order;
    double moving = 0;
    double toTop = 0;
    for (const Pair& pair : pairs) {
        moving += pair.moves ? 1 : 0;
        toTop += pair.moves && pair.combs.nextTop < pair.combs.nextBottom ? 1 : 0;
    }
    if (moving < kLeaningPairs) return Order::Unknown;
    if (toTop >= kLeaning * moving) return Order::Top;
    return toTop <= (1 - kLeaning) * moving ? Order::Bottom : Order::Unknown;
}

} // namespace

Finding Judge(const std::vector<Pair>& pairs, const std::optional<Combs>& faint)
{
    Finding finding;
    finding.pairs = static_cast<long>(pairs.size());
    const std::vector<Said> said = Count(pairs, finding);
    const std::vector<Run> runs = RunsOf(said);
    const std::vector<Order> present = OrdersIn(said, runs);
    if (finding.undecided > static_cast<long>(said.size())) {
        finding.order = VagueOrder(pairs, finding);
    } else if (present.size() > 1) {
        finding.order = Order::Mixed;
        finding.stretches = StretchesOf(said, runs, finding.pairs);
    } else if (present.size() == 1) {
        finding.order = present.front();
    } else if (faint) {
        finding.order = OrderOf(*faint);
        finding.faint = true;
        finding.combs = *faint;
    }
    if (finding.stretches.empty() && finding.order != Order::Unknown)
        finding.stretches = {{0, finding.pairs + 1, finding.order}};
    return finding;
}

} // namespace vfil::fieldscan
