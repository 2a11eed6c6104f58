/// \file
/// The simplex.
#include "keyauto/simplex.h"

#include <algorithm>

namespace vfil::keyauto {

namespace {

struct Corner {
    Point point;
    double height;
};

class Simplex {
public:
    Simplex(const std::function<double(const Point&)>& height, const Point& start, const Point& steps)
        : m_height(height)
    {
        m_corners.push_back(At(start));
        for (std::size_t i = 0; i < steps.size(); ++i) {
            Point point = start;
            point[i] += steps[i];
            m_corners.push_back(At(point));
        }
        Sort();
    }

    // Moves the highest corner through the middle of the others, or all towards the lowest.
    void Crawl()
    {
        Corner& worst = m_corners.back();
        const Corner mirrored = At(Beyond(-1));
        if (mirrored.height < m_corners.front().height) {
            const Corner farther = At(Beyond(-2));
            worst = farther.height < mirrored.height ? farther : mirrored;
        } else if (mirrored.height < m_corners[m_corners.size() - 2].height) {
            worst = mirrored;
        } else {
            constexpr double kHalf = 0.5;
            Corner nearer = At(Beyond(mirrored.height < worst.height ? -kHalf : kHalf));
            if (nearer.height < std::min(mirrored.height, worst.height))
                worst = std::move(nearer);
            else
                Shrink();
        }
        Sort();
    }

    const Point& Lowest() const { return m_corners.front().point; }

private:
    Corner At(const Point& point) const { return {point, m_height(point)}; }

    void Sort()
    {
        std::stable_sort(m_corners.begin(), m_corners.end(),
                         [](const Corner& a, const Corner& b) { return a.height < b.height; });
    }

    // The point on the line from the middle of the others to the highest corner, so many times as far.
    Point Beyond(double times) const
    {
        const Point& worst = m_corners.back().point;
        Point point(worst.size(), 0);
        for (std::size_t i = 0; i < point.size(); ++i) {
            double middle = 0;
            for (std::size_t corner = 0; corner + 1 < m_corners.size(); ++corner)
                middle += m_corners[corner].point[i] / static_cast<double>(worst.size());
            point[i] = middle + times * (worst[i] - middle);
        }
        return point;
    }

    void Shrink()
    {
        const Point lowest = Lowest();
        for (std::size_t corner = 1; corner < m_corners.size(); ++corner) {
            Point point = m_corners[corner].point;
            for (std::size_t i = 0; i < point.size(); ++i)
                point[i] = (point[i] + lowest[i]) / 2;
            m_corners[corner] = At(point);
        }
    }

    const std::function<double(const Point&)>& m_height;
    std::vector<Corner> m_corners;
};

} // namespace

Point FindLowest(const std::function<double(const Point&)>& height, const Point& start, const Point& steps,
                 int rounds)
{
    Simplex simplex(height, start, steps);
    for (int round = 0; round < rounds; ++round)
        simplex.Crawl();
    return simplex.Lowest();
}

} // namespace vfil::keyauto
