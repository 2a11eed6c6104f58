/// \file
/// Convolution with a kernel: by one pass, or by one each way.

#include "il/rows/blur/convrows.h"

#include "il/loops/blur/convolvetaps.h"
#include "il/loops/numeric/matrixsolve.h"

#include <vfil/convolve.h>
#include <vfil/matrix.h>

#include <cmath>

using namespace vfil;

namespace {

/// The kernel of a run as the processor has it, and what its passes need beside it.
struct Convolution {
    const vfILProcessor& processor;
    vfILWindowRun& run;
    bool useVectors;

    long Weights() const { return run.kernelWidth * run.kernelHeight; }
    template <class Format>
    std::size_t Samples() const
    {
        return static_cast<std::size_t>(run.processBox.GetSizeX() * Format::kChannels);
    }
    /// Samples from a window's corner to each weight's place, in rows of these windows.
    template <class Sample>
    std::ptrdiff_t PlaceOf(long weight, int channels) const
    {
        return weight / run.kernelWidth * (run.windows.step / std::ptrdiff_t{sizeof(Sample)}) +
               weight % run.kernelWidth * channels;
    }
};

/// The largest magnitude of a sum of bytes by fixed weights, as far as it fits the buffer between the passes.
std::int64_t FixedMagnitude(const FixedWeights& weights)
{
    std::int64_t sum = 0;
    for (std::size_t k = 0; k < weights.EvenCount(); ++k)
        sum += std::abs(int{weights.Data()[k]});
    return std::min<std::int64_t>((255 * sum >> 15) + 1, 32768);
}

/// RunWindowRows for the results of fixed sums, which mix with the input by a rule of their own.
template <class MakeRow>
void RunFixedRows(const vfILProcessor& processor, vfILWindowRun& run, MakeRow makeRow)
{
    vfILWindowRun unmasked = run;
    unmasked.mask.first = nullptr;
    const bool isMasked = run.mask.first != nullptr;
    const long samples = run.processBox.GetSizeX() * 4;
    RunWindowRows<Rgba8>(processor, unmasked, [&](long row, std::uint8_t* results) {
        const bool isMade = MakesRow(makeRow, row, results);
        if (!isMasked || !isMade) return isMade;
        const MaskRow<std::uint8_t> mask(run, row);
        const auto* base = RowOf<const std::uint8_t>(run.centres, row);
        for (long i = 0; i < samples; ++i)
            results[i] = BlendFixed8(results[i], base[i], mask[i / 4]);
        return true;
    });
    run.stopped = unmasked.stopped;
}

bool SinglePassFixed(const Convolution& by, const float* kernel)
{
    FixedTaps<std::uint8_t> taps;
    if (!taps.Allocate(static_cast<std::size_t>(by.Weights()))) return false;
    for (long i = 0; i < by.Weights(); ++i)
        taps.Add(by.PlaceOf<std::uint8_t>(i, 4), FixedWeight(kernel[i]));
    taps.MakeEven();
    const auto sum = FindConvRows(FitFixedSums(taps.Weights(), taps.Count(), 255)).fixed;
    RunFixedRows(by.processor, by.run, [&](long row, std::uint8_t* results) {
        const auto* window = RowOf<const std::uint8_t>(by.run.windows, row);
        sum(taps.Sources([window](std::ptrdiff_t place) { return window + place; }), taps.Weights(),
            taps.Count(), results, by.Samples<Rgba8>());
    });
    return true;
}

/// The kernels of both widths of samples.
template <class Sample>
struct FloatKernels {
    FloatSumRow<Sample, Sample> window;
    FloatSumRow<Sample, float> across;
    FloatSumRow<float, Sample> down;
};

template <class Sample>
FloatKernels<Sample> FindFloatKernels(bool useVectors)
{
    const ConvRows& rows = FindConvRows(useVectors);
    if constexpr (sizeof(Sample) == 1)
        return {rows.float8, rows.float8Across, rows.float8Down};
    else
        return {rows.float16, rows.float16Across, rows.float16Down};
}

template <class Format>
bool SinglePassFloat(const Convolution& by, const float* kernel, float offset)
{
    using Sample = typename Format::Sample;
    FloatTaps<Sample> taps;
    if (!taps.Allocate(static_cast<std::size_t>(by.Weights()))) return false;
    for (long i = 0; i < by.Weights(); ++i)
        taps.Add(by.PlaceOf<Sample>(i, Format::kChannels), kernel[i]);
    const auto sum = FindFloatKernels<Sample>(by.useVectors).window;
    RunWindowRows<Format>(by.processor, by.run, [&](long row, Sample* results) {
        const auto* window = RowOf<const Sample>(by.run.windows, row);
        sum(taps.Sources([window](std::ptrdiff_t place) { return window + place; }), taps.Weights(),
            taps.Count(), offset, results, by.Samples<Format>());
    });
    return true;
}

/// False when there is no row to copy.
template <class Sample>
bool CopyRow(const Sample* row, std::size_t samples, Sample* to)
{
    if (row != nullptr) std::copy_n(row, samples, to);
    return row != nullptr;
}

bool DualPassConvolve_RGBA32_Fixed(const Convolution& by, const float* x, const float* y)
{
    using Passes = TwoPasses<std::uint8_t, std::int16_t, kTileRows>;
    Passes passes(by.processor, by.run);
    FixedWeights kx;
    FixedWeights ky;
    FixedTile tile;
    RunArray<std::uint32_t> pairs;
    if (!kx.SetUp(x, by.run.kernelWidth) || !ky.SetUp(y, by.run.kernelHeight)) return false;
    const std::size_t reach = 4 * static_cast<std::size_t>(kx.Count() - 1);
    const std::size_t room = Passes::kPiece + reach;
    if (!tile.SetUp(ky, by.run.rowStep) || !pairs.Allocate(room) || !passes.SetUp(4)) return false;
    std::fill_n(pairs.Data(), room, 0U);
    const ConvRows& rowsAcross = FindConvRows(FitFixedSums(kx.Data(), kx.EvenCount(), 255));
    const auto sumDown = FindConvRows(FitFixedSums(ky.Data(), ky.EvenCount(), FixedMagnitude(kx))).fixedDown;
    const auto across = [&](const std::uint8_t* from, std::int16_t* to, std::size_t samples) {
        rowsAcross.pairs(from + 4 * kx.First(), pairs.Data(), samples + reach);
        rowsAcross.fixedAcross(pairs.Data(), kx.Data(), kx.EvenCount(), to, samples);
    };
    const auto down = [&](auto sums, std::uint8_t* to, std::size_t samples) {
        const auto source = [&](long k) { return sums(ky.First() + k); };
        sumDown(tile.Sources(source), tile.Weights(), tile.Count(), to, passes.ResultStep(), samples);
    };
    RunFixedRows(by.processor, by.run, [&](long row, std::uint8_t* results) {
        return CopyRow(passes.Row(row, across, down), by.Samples<Rgba8>(), results);
    });
    return true;
}

template <class Format>
bool DualPassFloat(const Convolution& by, const float* x, const float* y)
{
    using Sample = typename Format::Sample;
    TwoPasses<Sample, float, 1> passes(by.processor, by.run);
    FloatTaps<Sample> kx;
    FloatTaps<float> ky;
    if (!SetTaps(kx, x, by.run.kernelWidth, Format::kChannels) || !SetTaps(ky, y, by.run.kernelHeight, 1) ||
        !passes.SetUp(Format::kChannels))
        return false;
    const auto kernels = FindFloatKernels<Sample>(by.useVectors);
    const auto across = [&](const Sample* from, float* to, std::size_t samples) {
        kernels.across(kx.Sources([from](std::ptrdiff_t place) { return from + place; }), kx.Weights(),
                       kx.Count(), 0, to, samples);
    };
    const auto down = [&](auto sums, Sample* to, std::size_t samples) {
        kernels.down(ky.Sources(sums), ky.Weights(), ky.Count(), 0, to, samples);
    };
    RunWindowRows<Format>(by.processor, by.run, [&](long row, Sample* results) {
        return CopyRow(passes.Row(row, across, down), by.Samples<Format>(), results);
    });
    return true;
}

} // namespace

const wchar_t* const vfILConvolveImg::m_ClassName = L"vfILConvolveImg";

const wchar_t* vfILConvolveImg::GetClassNameW() const
{
    return m_ClassName;
}

vfILConvolveImg::vfILConvolveImg()
{
    AllowBands();
}

vfILConvolveImg::~vfILConvolveImg() = default;

vfILStatus vfILConvolveImg::Verify()
{
    if (VerifyFrame(GetClassNameW()) != VFIL_SUCCESS) return VFIL_FAILURE;
    if (m_kernel == nullptr) return Fail(0x10021, GetClassNameW());
    return VFIL_SUCCESS;
}

vfILStatus vfILConvolveImg::CleanData()
{
    m_factorBuffer.Free();
    m_factors = nullptr;
    m_isPlanned = false;
    return vfILMonadicSpatialProc::CleanData();
}

vfILStatus vfILConvolveImg::OutOfMemory(const char* text)
{
    m_isMemoryShort = true;
    return Fail(0x10001, text, GetClassNameW());
}

vfILStatus vfILConvolveImg::DoEffect()
{
    if (m_kernel == nullptr) return Fail(0x10021, GetClassNameW());
    if (!m_isPlanned && FindFactors() != VFIL_SUCCESS) return VFIL_FAILURE;
    m_isPlanned = true;
    return m_factors == nullptr ? SinglePassConvolve(Run(), m_kernel)
                                : DualPassConvolve(m_factors, m_factors + Run().kernelWidth);
}

/// Once a run, though DoEffect comes once a band.
vfILStatus vfILConvolveImg::FindFactors()
{
    const long width = Run().kernelWidth;
    const long height = Run().kernelHeight;
    if (width == 1 || height == 1) return VFIL_SUCCESS;
    m_isMemoryShort = false;
    if (IsKernelSeparable() == 0) return m_isMemoryShort ? VFIL_FAILURE : VFIL_SUCCESS;
    const auto bytes = static_cast<std::size_t>(width + height) * sizeof(float);
    m_factors = reinterpret_cast<float*>(m_factorBuffer.Allocate(bytes));
    if (m_factors == nullptr) return OutOfMemory("%s ERROR DoEffect: insufficient memory space\n");
    return SeparateKernel(m_factors, m_factors + width);
}

vfILStatus vfILConvolveImg::SinglePassConvolve(vfILWindowRun& run, const float* kernel)
{
    const Convolution by{*this, run, m_simdAvailable != 0};
    bool done = true;
    if (FormatOf(run) == PXFormat_RGBA32 && m_simdAvailable != 0 && m_offset == 0 &&
        AreFixedWeightsExact(kernel, by.Weights())) {
        done = SinglePassFixed(by, kernel);
    } else {
        PointFormats::Visit(FormatOf(run), [&](auto format) {
            done = SinglePassFloat<decltype(format)>(by, kernel, m_offset);
        });
    }
    return done ? VFIL_SUCCESS : OutOfMemory("%s ERROR DoEffect: insufficient memory space\n");
}

vfILStatus vfILConvolveImg::DualPassConvolve(const float* kx, const float* ky)
{
    const Convolution by{*this, Run(), m_simdAvailable != 0};
    bool done = true;
    if (FormatOf(Run()) == PXFormat_RGBA32 && m_simdAvailable != 0 &&
        AreFixedPassesExact(kx, Run().kernelWidth, ky, Run().kernelHeight)) {
        done = DualPassConvolve_RGBA32_Fixed(by, kx, ky);
    } else {
        PointFormats::Visit(FormatOf(Run()),
                            [&](auto format) { done = DualPassFloat<decltype(format)>(by, kx, ky); });
    }
    return done ? VFIL_SUCCESS : OutOfMemory("%s ERROR DoEffect: insufficient memory space\n");
}

namespace {

/// Empty without a kernel, and when memory is short.
vfILMatrix MatrixOf(const float* kernel, const vfILVector2l& radius)
{
    if (kernel == nullptr || radius[0] < 0 || radius[1] < 0) return {};
    vfILMatrix matrix(2 * long{radius[1]} + 1, 2 * long{radius[0]} + 1);
    for (long row = 0; row < matrix.GetNumRows(); ++row)
        for (long col = 0; col < matrix.GetNumCols(); ++col)
            matrix(row, col) = *kernel++;
    return matrix;
}

} // namespace

int vfILConvolveImg::IsKernelSeparable()
{
    if (m_kernel == nullptr) return 0;
    // As vfILMatrix::IsSeparable, which does not tell a lack of memory from a kernel that has no factors.
    Svd svd;
    const SvdOutcome outcome = svd.Decompose(MatrixOf(m_kernel, WholeRadius()));
    if (outcome == SvdOutcome::kNothing)
        OutOfMemory("%s ERROR IsKernelSeparable: insufficient memory space\n");
    if (outcome != SvdOutcome::kConverged) return 0;
    const auto counts = [](double value) { return std::fabs(value) >= 1e-6; };
    return std::count_if(svd.w + 1, svd.w + 1 + svd.cols, counts) == 1 ? 1 : 0;
}

vfILStatus vfILConvolveImg::SeparateKernel(float* kx, float* ky)
{
    const vfILMatrix matrix = MatrixOf(m_kernel, WholeRadius());
    if (matrix.IsNotValid()) return OutOfMemory("%s ERROR SeparateKernel: insufficient memory space\n");
    vfILMatrix column;
    vfILMatrix row;
    if (matrix.SeparateIntoTensorProduct(column, row) != VFIL_SUCCESS) {
        // Only what is no number cannot be decomposed.
        const bool isFinite = std::isfinite(matrix.Norm(VFIL_NORM_ROW_SUM));
        return isFinite ? OutOfMemory("%s ERROR SeparateKernel: insufficient memory space\n") : VFIL_FAILURE;
    }
    for (long i = 0; i < row.GetNumCols(); ++i)
        kx[i] = static_cast<float>(row(0, i));
    for (long i = 0; i < column.GetNumRows(); ++i)
        ky[i] = static_cast<float>(column(i, 0));
    return VFIL_SUCCESS;
}

void vfILConvolveImg::SetKernel(float* kernel, float r)
{
    SetKernel(kernel, r, r);
}

void vfILConvolveImg::SetKernel(float* kernel, float rx, float ry)
{
    m_kernel = kernel;
    SetRadius(rx, ry);
}

void vfILConvolveImg::SetKernel(float* kernel, const vfILVector2f& radius)
{
    SetKernel(kernel, radius[0], radius[1]);
}

float* vfILConvolveImg::GetKernel() const
{
    return m_kernel;
}

void vfILConvolveImg::SetOffset(float offset)
{
    m_offset = offset;
}

float vfILConvolveImg::GetOffset() const
{
    return m_offset;
}
