/// \file
/// The blur family: blurs, the convolution, the sharpening.
#include <catalogue/families.h>
#include <catalogue/frame.h>

#include <vfil/blur.h>
#include <vfil/edges.h>

#include <algorithm>
#include <limits>
#include <numeric>
#include <vector>

namespace vfil::catalogue {

namespace {

Entry Blur()
{
    constexpr int kRadius = 4;
    Entry entry = SpatialEntry<FilterAsExpected<vfILBlurImg, kRadius>>(
        "vfILBlurImg", "filter", "blur",
        {ChoiceParameter<&vfILBlurImg::SetType, &vfILBlurImg::GetType>(
             VFIL_BLUR_DISC, "the shape of the blur",
             {{"disc", VFIL_BLUR_DISC, "equal weights in an ellipse"},
              {"gauss", VFIL_BLUR_GAUSS, "a Gaussian that ends at the radius"},
              {"box", VFIL_BLUR_BOX, "equal weights in a rectangle, 8 bits only"},
              {"exponential", VFIL_BLUR_EXPONENTIAL, "falls off exponentially"},
              {"exponential-float", VFIL_BLUR_EXPONENTIAL_FLOAT, "the same in floating point"},
              {"fast-gauss", VFIL_BLUR_FAST_GAUSS, "flat, then falling off exponentially"},
              {"fast-gauss-float", VFIL_BLUR_FAST_GAUSS_FLOAT, "the same in floating point"}},
             0x10024),
         Radius(kRadius, "how far the blur reaches; below 1 in both axes the picture is copied"),
         ShareParameter<&vfILBlurImg::SetDegree, &vfILBlurImg::GetDegree>(
             1, "how much is blurred: the share of the disc, the scale of the others; the box knows only 0",
             0x10026)});
    entry.multiplied = true;
    entry.note = "the disc and the Gaussian take longer with the radius, the other types do not";
    return entry;
}

Entry Sharpen()
{
    constexpr int kRadius = 1;
    Entry entry = SpatialEntry<FilterAsExpected<vfILSharpenImg, kRadius>>(
        "vfILSharpenImg", "filter", "sharpen",
        {ChoiceParameter<&vfILSharpenImg::SetType, &vfILSharpenImg::GetType>(
             VFIL_SHARPEN_PLAIN, "what is sharpened",
             {{"plain", VFIL_SHARPEN_PLAIN, "all of the picture"},
              {"edges", VFIL_SHARPEN_EDGES, "where there is an edge"}},
             0x10025),
         Radius(kRadius, "how far the blur reaches that is taken from the picture"),
         ShareParameter<&vfILSharpenImg::SetDegree, &vfILSharpenImg::GetDegree>(1, "how much is sharpened",
                                                                                0x10026),
         ShareParameter<&vfILSharpenImg::SetEdgeSensitivity, &vfILSharpenImg::GetEdgeSensitivity>(
             1, "of --type edges: 1 takes every edge, 0 none", 0x1002A)});
    entry.channels = VFIL_MODE_RGB;
    return entry;
}

constexpr double kMostOfNumber = 1e9;

// A convolution that holds its kernel.
class Convolution : public FilterAsExpected<vfILConvolveImg, 0> {
public:
    void SetKernel(const Table& table)
    {
        m_table = table;
        Divide();
    }
    const Table& GetKernel() const { return m_table; }

    void SetDivisor(double divisor)
    {
        m_divisor = divisor;
        Divide();
    }
    double GetDivisor() const { return m_divisor; }

private:
    double UsualDivisor() const
    {
        const double sum = std::accumulate(m_table.numbers.begin(), m_table.numbers.end(), 0.0);
        return sum > 0 ? sum : 1;
    }

    void Divide()
    {
        const double divisor = m_divisor == 0 ? UsualDivisor() : m_divisor;
        m_weights = FromBottom<float>(m_table, [divisor](double number) {
            constexpr double kMost = std::numeric_limits<float>::max();
            return static_cast<float>(std::clamp(number / divisor, -kMost, kMost));
        });
        if (m_weights.empty()) return;
        const long radiusX = m_table.columns / 2;
        const long radiusY = m_table.Rows() / 2;
        vfILConvolveImg::SetKernel(m_weights.data(), static_cast<float>(radiusX),
                                   static_cast<float>(radiusY));
    }

    Table m_table;
    double m_divisor = 0;
    std::vector<float> m_weights;
};

Parameter Kernel()
{
    Parameter parameter = TableParameter<&Convolution::SetKernel, &Convolution::GetKernel>(
        -kMostOfNumber, kMostOfNumber, "the weights of a window's pixels");
    parameter.fallback.reset();
    parameter.required = true;
    parameter.refusal = 0x10021;
    return parameter;
}

// A number up to 1e9.
template <auto kSet, auto kGet>
Parameter LargeNumber(double minimum, const char* summary)
{
    Parameter parameter = UnitParameter<kSet, kGet>(ParameterType::Number, Value{0}, summary, 0);
    parameter.minimum = minimum;
    parameter.maximum = kMostOfNumber;
    return parameter;
}

Entry Convolve()
{
    Entry entry = SpatialEntry<Convolution>(
        "vfILConvolveImg", "filter", "weigh the pixels of a window, and add them up",
        {Kernel(),
         LargeNumber<&Convolution::SetDivisor, &Convolution::GetDivisor>(
             0, "divides the weights; 0 stands for their sum, or for 1 where that is not above 0"),
         LargeNumber<&vfILConvolveImg::SetOffset, &vfILConvolveImg::GetOffset>(
             -kMostOfNumber, "added to each result, in units of a sample")});
    entry.channels = VFIL_MODE_RGB;
    entry.note = "a kernel that is a column times a row takes no notice of the offset";
    return entry;
}

} // namespace

std::vector<Entry> BlurEntries()
{
    std::vector<Entry> entries;
    entries.push_back(Blur());
    entries.push_back(Convolve());
    entries.push_back(Sharpen());
    return entries;
}

} // namespace vfil::catalogue
