/// \file
/// The shape of a window as runs of its rows, and how much of a large window a picture can fill.

#include "il/loops/frame/windowshape.h"

#include "il/loops/frame/imageview.h"
#include "il/loops/frame/saturate.h"

#include <algorithm>
#include <numeric>

namespace vfil {

namespace {

bool IsPeriodic(vfILEdgeMode mode)
{
    return mode == VFIL_EDGE_WRAP || mode == VFIL_EDGE_MIRROR;
}

/// After so many places the samples of a periodic axis come again.
long Period(vfILEdgeMode mode, long size)
{
    return mode == VFIL_EDGE_MIRROR ? 2 * size : size;
}

long TaughtReach(vfILEdgeMode mode, long size)
{
    if (mode == VFIL_EDGE_WRAP) return size / 2;
    return mode == VFIL_EDGE_CLAMP || mode == VFIL_EDGE_MIRROR ? size - 1 : size;
}

/// The largest half width that counts: no wider row of a clamped or coloured picture meets more.
long WidestHalf(const WindowGround& ground, long radius)
{
    return IsPeriodic(ground.mode) ? radius : std::min(radius, TaughtReach(ground.mode, ground.width));
}

/// The columns that a row of this half width meets before it meets them again, from the window's middle.
ShapeRun MetColumns(long row, long half, const WindowGround& ground)
{
    const long period = Period(ground.mode, ground.width);
    if (IsPeriodic(ground.mode) && 2 * half + 1 >= period) return {row, -(half % period), period};
    return {row, -half, 2 * half + 1};
}

/// Rows of a window that show one row of the picture, wherever the window is.
class RowClasses {
public:
    explicit RowClasses(const WindowGround& ground)
        : m_isPeriodic(IsPeriodic(ground.mode)),
          m_size(m_isPeriodic ? Period(ground.mode, ground.height) : ground.height)
    {}
    std::size_t Count() const { return static_cast<std::size_t>(m_isPeriodic ? m_size : 2 * m_size + 1); }
    std::size_t Of(long row) const
    {
        return static_cast<std::size_t>(m_isPeriodic ? (row % m_size + m_size) % m_size
                                                     : std::clamp(row, -m_size, m_size) + m_size);
    }
    /// A row of the same class that is near the middle.
    long NearestOf(long row) const
    {
        if (!m_isPeriodic) return std::clamp(row, -m_size, m_size);
        const auto place = static_cast<long>(Of(row));
        return place > m_size / 2 ? place - m_size : place;
    }
    /// The row after \p row that may be of a class which the rows since \p first were not of.
    long NextOfNewClass(long row, long first) const
    {
        if (!m_isPeriodic) return std::max(row + 1, -m_size + 1);
        return row + 1 < first + m_size ? row + 1 : std::numeric_limits<std::int32_t>::max();
    }
    /// Rows further up are of classes that lower rows, which are as near to the middle, were of.
    long Highest() const { return m_size; }

private:
    const bool m_isPeriodic;
    const long m_size;
};

/// The first row from \p row on, up to the middle, in which the ellipse reaches further; 1 for none.
long NextWiderRow(const Ellipse<double>& ellipse, long row, long half)
{
    long next = 1;
    while (next - row > 1) {
        const long between = row + (next - row) / 2;
        (ellipse.Holds(half + 1, between) ? next : row) = between;
    }
    return next;
}

/// Calls meet(run) for the runs of an ellipse that may meet something new, in their order, until it returns
/// false. Rows of equal width are looked at once a class.
template <class Meet>
void ForEachMeeting(const Ellipse<double>& ellipse, const vfILVector2l& radius, const WindowGround& ground,
                    Meet meet)
{
    const RowClasses classes(ground);
    const long widest = WidestHalf(ground, radius[0]);
    for (long first = -long{radius[1]}; first <= 0;) {
        const long half = ellipse.HalfWidth(first, widest);
        if (half < 0) return;
        const long next = half == widest ? 1 : NextWiderRow(ellipse, first, half);
        for (long row = first; row < next; row = classes.NextOfNewClass(row, first))
            if (!meet(MetColumns(row, half, ground))) return;
        first = next;
    }
    for (long row = 1; row <= std::min(long{radius[1]}, classes.Highest()); ++row)
        if (!meet(MetColumns(row, ellipse.HalfWidth(row, widest), ground))) return;
}

} // namespace

vfILVector2l TaughtRadius(const WindowGround& ground, const vfILVector2l& radius)
{
    if (ground.width < 1 || ground.height < 1) return radius;
    return {std::min(long{radius[0]}, TaughtReach(ground.mode, ground.width)),
            std::min(long{radius[1]}, TaughtReach(ground.mode, ground.height))};
}

bool WindowShape::Reserve(std::size_t runs)
{
    m_count = 0;
    return m_runs.Allocate(runs);
}

bool WindowShape::SetRectangle(const vfILVector2l& radius)
{
    m_radius = radius;
    const long width = 2 * long{radius[0]} + 1;
    const long height = 2 * long{radius[1]} + 1;
    if (!Reserve(static_cast<std::size_t>(height))) return false;
    for (long row = 0; row < height; ++row)
        Add({row, 0, width});
    return true;
}

bool WindowShape::SetEllipse(double rx, double ry, const vfILVector2l& radius)
{
    m_radius = radius;
    const Ellipse<double> ellipse(rx, ry);
    if (!Reserve(2 * static_cast<std::size_t>(radius[1]) + 1)) return false;
    for (long y = -long{radius[1]}; y <= radius[1]; ++y) {
        const long half = ellipse.HalfWidth(y, radius[0]);
        if (half >= 0) Add({radius[1] + y, radius[0] - half, 2 * half + 1});
    }
    return true;
}

bool WindowShape::SetEntries(const long* entries, const vfILVector2l& radius)
{
    m_radius = radius;
    const long width = 2 * long{radius[0]} + 1;
    const long height = 2 * long{radius[1]} + 1;
    const auto forEachRun = [&](auto use) {
        const auto isEmpty = [](long entry) { return entry == 0; };
        const long* from = entries;
        for (long y = 0; y < height; ++y, from += width)
            for (const long *at = from, *end = from + width; at != end;) {
                const long* const first = std::find_if_not(at, end, isEmpty);
                at = std::find_if(first, end, isEmpty);
                if (first != at) use(ShapeRun{y, static_cast<long>(first - from), at - first});
            }
    };
    std::size_t runs = 0;
    forEachRun([&runs](const ShapeRun&) { ++runs; });
    if (!Reserve(runs)) return false;
    forEachRun([this](const ShapeRun& run) { Add(run); });
    return true;
}

bool WindowShape::SetFirstMeetings(double rx, double ry, const WindowGround& ground)
{
    const vfILVector2l radius(TruncateToInt32(rx), TruncateToInt32(ry));
    if (ground.width < 1 || ground.height < 1 || radius[0] < 0 || radius[1] < 0) {
        m_radius = radius;
        return Reserve(0);
    }
    const RowClasses classes(ground);
    RunArray<long> met; // the longest run that a class had, which holds its shorter ones
    if (!met.Allocate(classes.Count())) return false;
    const auto forEachFirst = [&](auto use) {
        std::fill_n(met.Data(), classes.Count(), 0L);
        std::size_t classesLeft = classes.Count();
        ForEachMeeting({rx, ry}, radius, ground, [&](const ShapeRun& run) {
            long& longest = met[classes.Of(run.row)];
            if (run.length <= longest) return true;
            longest = run.length;
            use(run);
            const bool isAll = IsPeriodic(ground.mode) && longest == Period(ground.mode, ground.width);
            return !isAll || --classesLeft != 0;
        });
    };
    std::size_t runs = 0;
    forEachFirst([&runs](const ShapeRun&) { ++runs; });
    if (!Reserve(runs)) return false;
    forEachFirst([this](const ShapeRun& run) { Add(run); });
    MoveRows(ground);
    Enclose();
    return true;
}

/// Brings rows that are far from the middle to nearer ones of their classes. Runs keep their order, their
/// rows need not.
void WindowShape::MoveRows(const WindowGround& ground)
{
    const RowClasses classes(ground);
    std::for_each_n(m_runs.Data(), m_count, [&](ShapeRun& run) { run.row = classes.NearestOf(run.row); });
}

/// Makes the window that holds runs which are placed from its middle.
void WindowShape::Enclose()
{
    long rx = 0;
    long ry = 0;
    for (const ShapeRun& run : *this) {
        rx = std::max({rx, -run.first, run.first + run.length - 1});
        ry = std::max({ry, -run.row, run.row});
    }
    m_radius = vfILVector2l(rx, ry);
    std::for_each_n(m_runs.Data(), m_count, [=](ShapeRun& run) {
        run.row += ry;
        run.first += rx;
    });
}

std::size_t WindowShape::Entries() const
{
    return std::accumulate(begin(), end(), std::size_t{0}, [](std::size_t sum, const ShapeRun& run) {
        return sum + static_cast<std::size_t>(run.length);
    });
}

bool WindowShape::IsWholeWindow() const
{
    const long width = 2 * long{m_radius[0]} + 1;
    return m_count == 2 * static_cast<std::size_t>(m_radius[1]) + 1 &&
           std::all_of(begin(), end(), [width](const ShapeRun& run) { return run.length == width; });
}

} // namespace vfil
