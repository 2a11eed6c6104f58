/// \file
/// The box blur: the sums of the windows' columns move down a row at a time, and a row's results are running
/// sums of these, so that the cost does not depend on the radius.

#include "il/loops/frame/runarray.h"
#include "il/loops/frame/windowloop.h"
#include "il/rows/blur/boxrows.h"

#include <vfil/blur.h>

using namespace vfil;

namespace {

/// The sums of each column of the windows of one row.
template <class Sum>
class ColumnSums {
public:
    bool Allocate(std::size_t samples, std::size_t channels)
    {
        m_samples = samples;
        m_channels = channels;
        const std::size_t count = channels + samples + kColumnSlack;
        if (!m_sums.Allocate(count) || !m_zeros.Allocate(samples)) return false;
        std::fill_n(m_sums.Data(), count, Sum{0});
        std::fill_n(m_zeros.Data(), samples, std::uint8_t{0});
        return true;
    }
    const Sum* First() const { return m_sums.Data() + m_channels; }

    /// Moves on to the windows of a row at or below the last one's, or begins with the run's first row.
    void MoveTo(long row, const vfILWindowRun& run, MoveColumns<Sum> move)
    {
        const auto source = [&run](long y) { return RowOf<const std::uint8_t>(run.windows, y); };
        Sum* first = m_sums.Data() + m_channels;
        if (m_row < 0) {
            for (m_row = row; m_row < row + run.kernelHeight; ++m_row)
                move(source(m_row), m_zeros.Data(), first, m_samples);
            m_row = row;
        }
        for (; m_row < row; ++m_row)
            move(source(m_row + run.kernelHeight), source(m_row), first, m_samples);
    }

private:
    RunArray<Sum> m_sums;
    RunArray<std::uint8_t> m_zeros;
    std::size_t m_samples = 0;
    std::size_t m_channels = 0;
    long m_row = -1;
};

template <class Format, class Sum>
bool RunBox(const vfILProcessor& processor, vfILWindowRun& run, bool useVectors)
{
    constexpr auto kChannels = std::size_t{Format::kChannels};
    const auto pixels = static_cast<std::size_t>(run.processBox.GetSizeX());
    const auto width = static_cast<std::size_t>(run.kernelWidth);
    ColumnSums<Sum> columns;
    if (!columns.Allocate((pixels + width - 1) * kChannels, kChannels)) return false;
    const auto move = FindMoveColumns<Sum>(useVectors);
    const auto box = FindBoxRow<Sum>(useVectors, Format::kChannels);
    const double weights = static_cast<double>(run.kernelWidth) * static_cast<double>(run.kernelHeight);
    const auto scale = static_cast<std::uint32_t>(4294967295.0 / weights);
    RunWindowRows<Format>(processor, run, [&](long row, std::uint8_t* results) {
        columns.MoveTo(row, run, move);
        box(columns.First(), width, scale, results, pixels);
    });
    return true;
}

template <class Format>
bool RunBox(const vfILProcessor& processor, vfILWindowRun& run, bool useVectors)
{
    const double most = 255.0 * static_cast<double>(run.kernelWidth) * static_cast<double>(run.kernelHeight);
    return most < 4294967296.0 ? RunBox<Format, std::uint32_t>(processor, run, useVectors)
                               : RunBox<Format, std::uint64_t>(processor, run, useVectors);
}

} // namespace

vfILStatus vfILBlurImg::BlurBox()
{
    bool done = true;
    FormatList<Rgba8, Mono8>::Visit(OutputFormat(), [&](auto format) {
        done = RunBox<decltype(format)>(*this, Run(), m_simdAvailable != 0);
    });
    if (done) return VFIL_SUCCESS;
    return Fail(0x10001, "%s ERROR DoEffect: insufficient memory space\n", GetClassNameW());
}
