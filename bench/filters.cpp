/// \file
/// Names, kernels and matrices that all filters of one kind are measured with.
#include "filters.h"

#include <algorithm>
#include <cstdlib>
#include <numeric>
#include <random>

namespace bench {

namespace {

std::string Square(int side)
{
    return std::to_string(side) + "x" + std::to_string(side);
}

} // namespace

std::string Sized(const std::string& filter, int radius, const Layout& layout)
{
    return Named(filter + " " + Square(2 * radius + 1), layout);
}

std::string Named(const std::string& filter, const Layout& layout)
{
    return filter + ", " + layout.name;
}

std::vector<float> Kernel::Scaled() const
{
    std::vector<float> scaled;
    for (const double weight : weights)
        scaled.push_back(static_cast<float>(weight / divisor));
    return scaled;
}

Kernel NoiseKernel(int radius)
{
    const std::size_t side = 2 * static_cast<std::size_t>(radius) + 1;
    std::vector<double> weights(side * side);
    std::mt19937 random(1);
    std::generate(weights.begin(), weights.end(), [&] { return static_cast<double>(random() % 16 + 1); });
    return {weights, std::accumulate(weights.begin(), weights.end(), 0.0)};
}

Kernel TriangleRow(int radius)
{
    std::vector<double> weights;
    for (int x = -radius; x <= radius; ++x)
        weights.push_back(radius + 1 - std::abs(x));
    return {weights, std::accumulate(weights.begin(), weights.end(), 0.0)};
}

Kernel TriangleKernel(int radius)
{
    const Kernel row = TriangleRow(radius);
    std::vector<double> weights;
    for (const double y : row.weights) {
        for (const double x : row.weights)
            weights.push_back(x * y);
    }
    return {weights, row.divisor * row.divisor};
}

std::string SvdName(int size)
{
    return "svd " + Square(size) + kMicroseconds;
}

std::vector<double> NoiseMatrix(int size)
{
    std::vector<double> values(static_cast<std::size_t>(size) * static_cast<std::size_t>(size));
    std::mt19937 random(1);
    std::uniform_real_distribution<double> distribution(-1, 1);
    std::generate(values.begin(), values.end(), [&] { return distribution(random); });
    return values;
}

} // namespace bench
