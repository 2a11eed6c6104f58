/// \file
/// The error value, the one table that pairs each code with its text, and the messages.

#include <vfil/processor.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace {

struct ErrorText {
    std::uint32_t code;
    const char* text;
};

/// A code that operators share has a text that fits all of them, the sites have texts of their own then.
constexpr auto kErrorTexts = std::to_array<ErrorText>({
    // clang-format off
    {0, "%s: no error\n"},
    {0x10001, "%s ERROR DoEffect: insufficient memory space\n"},
    {0x10002, "%s ERROR Verify: Output image is NULL\n"},
    {0x10003, "%s ERROR Verify: Output image pixel array is NULL\n"},
    {0x10004, "%s ERROR Verify: Default color is invalid\n"},
    {0x10005, "%s ERROR Verify: Mask pixel array is NULL\n"},
    {0x10006, "%s ERROR Verify: Mask width and height don't match mask resolution\n"},
    {0x10007, "%s ERROR Verify: Invalid mask image format\n"},
    {0x10008, "%s ERROR Verify: Invalid mask channel\n"},
    {0x10009, "%s ERROR Verify: Output image format must match mask format\n"},
    {0x1000A, "%s ERROR Verify: ROI and output offset does not fit into output image\n"},
    {0x1000B, "%s ERROR Verify: Input image is NULL\n"},
    {0x1000C, "%s ERROR Verify: Input image pixel array is NULL\n"},
    {0x1000D, "%s ERROR Verify: Invalid image format \n"},
    {0x1000E, "%s ERROR: Verify(): Input and output image formats do not match\n"},
    {0x1000F, "%s ERROR Verify: Interpolation type not supported\n"},
    {0x10010, "%s ERROR Verify: Inconsistency in the mapping funcions\n"},
    {0x10011, "%s ERROR Verify: Color invalid\n"},
    {0x10012, "%s ERROR Verify: Alpha invalid\n"},
    {0x10013, "%s ERROR Verify: Input image A is NULL\n"},
    {0x10014, "%s ERROR Verify: Input image B is NULL\n"},
    {0x10015, "%s ERROR Verify: Input image A pixel array is NULL\n"},
    {0x10016, "%s ERROR Verify: Input image B pixel array is NULL\n"},
    {0x10017, "%s ERROR Verify: Invalid dominant input image\n"},
    {0x10018, "%s ERROR Verify: Lut invalid\n"},
    {0x10019, "%s ERROR Verify: Red threshold value is not in range [0..1]\n"},
    {0x1001A, "%s ERROR Verify: Green threshold value is not in range [0..1]\n"},
    {0x1001B, "%s ERROR Verify: Blue threshold value is not in range [0..1]\n"},
    {0x1001C, "%s ERROR Verify: Alpha threshold value is not in range [0..1]\n"},
    {0x1001D, "%s ERROR Verify: Type of noise is unknown\n"},
    {0x1001E, "%s ERROR Verify: Color of noise is unknown\n"},
    {0x1001F, "%s ERROR Verify: Level of noise is not in range [0..4]\n"},
    {0x10020, "%s ERROR Verify: Edge mode handling is unknown\n"},
    {0x10021, "%s ERROR Verify: Kernel is NULL\n"},
    {0x10023, "%s ERROR Verify: Radius or tolerance is not in valid range\n"},
    {0x10024, "%s ERROR Verify: Type of blurring is unknown\n"},
    {0x10025, "%s ERROR Verify: Type of sharpening is unknown\n"},
    {0x10026, "%s ERROR Verify: Degree is not in range [0..1]\n"},
    {0x10027, "%s ERROR Verify: Type of Laplace is unknown\n"},
    {0x10028, "%s ERROR Verify: Direction is unknown\n"},
    {0x10029, "%s ERROR Verify: Bias value is not in range [0..1]\n"},
    {0x1002A, "%s ERROR Verify: Edge sensitivity is not in range [0..1]\n"},
    {0x1002B, "%s ERROR Verify: Input DIB is NULL\n"},
    {0x1002D, "%s ERROR ImgToDIB: DIB handle is invalid\n"},
    {0x1002E, "%s ERROR Dib32ToImage32: Region is invalid\n"},
    {0x1002F, "%s ERROR Verify: Pathname is NULL\n"},
    {0x10030, "%s ERROR LoadDIB: Cannot open DIB file\n"},
    {0x10031, "%s ERROR LoadDIB: Cannot read DIB file\n"},
    {0x10032, "%s ERROR SaveDIB: Cannot save DIB file\n"},
    {0x10033, "%s ERROR Verify: Input and Output image color models must be different\n"},
    {0x10034, "%s ERROR Verify: Invalid input image format\n"},
    {0x10035, "%s ERROR Verify: Channel selection is not valid\n"},
    {0x10036, "%s ERROR Verify: Seed coordinates are invalid\n"},
    {0x10037, "%s ERROR Verify: Tolerance level is not in range [0,1]\n"},
    {0x10038, "%s ERROR Verify: Increment on the Tolerance level is not in range [0,0.3]\n"},
    {0x10039, "%s ERROR Verify: Type of fill is unknown\n"},
    {0x1003A, "%s ERROR Verify: Aliasing choice is invalid\n"},
    {0x1003C, "%s ERROR Verify: Input and Output images must be different\n"},
    {0x1003D, "%s ERROR Verify: Input images must have the same size\n"},
    {0x1003E, "%s ERROR Verify: Type of the color gradient is unknown\n"},
    {0x1003F, "%s ERROR Verify: Vector of the color gradient is invalid\n"},
    {0x10040, "%s ERROR Verify: Color of the color gradient is invalid\n"},
    {0x10041, "%s ERROR Verify: Color of the color gradient is invalid\n"},
    {0x10042, "%s ERROR Verify: Color of the color gradient is invalid\n"},
    {0x10043, "%s ERROR Verify: Color of the color gradient is invalid\n"},
    {0x10044, "%s ERROR Verify: Color of the color gradient is invalid\n"},
    {0x10045, "%s ERROR Verify: Ratio of the color gradient is invalid\n"},
    {0x10046, "%s ERROR Verify: Threshold is not in range [0..1]\n"},
    {0x10047, "%s ERROR Verify: Invert flag of the color gradient is invalid\n"},
    {0x10048, "%s ERROR Verify: Color is invalid\n"},
    {0x10049, "%s ERROR Verify: Type of edge detection is unknown\n"},
    {0x1004A, "%s ERROR Verify: Snapping radius is not in a valid range \n"},
    {0x1004B, "%s ERROR Verify: Starting coordinates must be inside the image\n"},
    {0x1004C, "%s ERROR Verify: Edge neighborhood size\tis invalid\n"},
    {0x1004D, "%s ERROR Verify: Blur radius is invalid\n"},
    {0x1004E, "%s ERROR Verify: The Seed is invalid\n"},
    {0x10053, "%s:ERROR Correlate8 has zero region\n"},
    {0x10054, "%s:ERROR SetFastApproximationAmount: p_dAmount is invalid.\n"},
    {0x10055, "%s:ERROR Correlate 8: Cannot correlate flat image(s)!\n"},
    {0x10056, "%s:ERROR PrepareData8: Search Area smaller than Target Area.\n"},
    {0x10057, "%s:ERROR Verify: Vertical and/or horizontal locking only works if the target's location is inside the "
              "search area\n"},
    {0x10058, "%s:ERROR SetLocking: Unknown locking mode specified\n"},
    {0x10059, "%s ERROR Verify: Mask image must be used\n"},
    {0x1005A, "%s ERROR Verify: Alpha mode invalid\n"},
    {0x1005B, "%s:ERROR in Verify(): Invalid structural type specified\n"},
    {0x1005D, "%s:ERROR in Verify(): Invalid morphological mode specified\n"},
    {0x1005E, "%s:ERROR in Verify(): Too many don't care pixels specified\n"},
    {0x10060, "%s ERROR Verify: Image format does not support ROI\n"},
    {0x10061, "%s ERROR Verify: Input offset not supported\n"},
    {0x10062, "%s ERROR Verify: Input/Output images must have the same size\n"},
    {0x10063, "%s ERROR Verify: Mode is unknown\n"},
    {0x10064, "%s ERROR Verify: Invalid Adjustment Factor\n"},
    {0x10065, "%s ERROR Verify: No Input image specified\n"},
    {0x10066, "%s ERROR Verify: Number of offsets is invalid\n"},
    {0x10067, "%s ERROR Verify: Invalid fill in mode\n"},
    {0x10068, "%s ERROR Verify: Invalid Ranking mode\n"},
    {0x10069, "%s:Invalid crop dimensions!!!\n"},
    {0x1006A, "%s ERROR Verify: Color model not supprted\n"},
    {0x1006B, "%s:ERROR SetTrackingColourSpace: in_eTrackColourSpace is invalid.\n"},
    {0x1006C, "%s ERROR Verify: Output image is used as mask\n"},
    {0x1006E, "%s ERROR Verify: Invalid opacity\n"},
    {0x1006F, "%s ERROR Verify: Opacity falloff too large.\n"},
    {0x10070, "%s ERROR Verify: Border softness too large.\n"},
    {0x10071, "%s ERROR Verify: Field masking, background color or alpha mode is invalid\n"},
    {0x10072, "%s:ERROR Verify: Invalid search region field masking parameter\n"},
    {0x10073, "%s:ERROR Verify: Target and search regions field masking must match\n"},
    {0x20001, "%s WARNING Verify: Mask are not allowed\n"},
    {0x20002, "%s WARNING Verify: Specified channels cannot be processed\n"},
    {0x20004, "%s WARNING Snap8: Search area too small. Could not snap to object.\n"},
    {0xFFFFFFFF, "%s ERROR: Failure\n"},
    // clang-format on
});
static_assert(std::ranges::is_sorted(kErrorTexts, {}, &ErrorText::code));

} // namespace

vfILError::vfILError() : m_code(0)
{}

vfILError::vfILError(unsigned long code) : m_code(static_cast<std::uint32_t>(code))
{}

vfILError::vfILError(const vfILError& other) = default;
vfILError& vfILError::operator=(const vfILError& other) = default;
vfILError::~vfILError() = default;

int vfILError::operator==(const vfILError& other) const
{
    return m_code == other.m_code;
}

vfILError::operator unsigned long() const
{
    return m_code;
}

unsigned long vfILError::GetErrorCode() const
{
    return m_code;
}

void vfILError::SetErrorCode(unsigned long code)
{
    m_code = static_cast<std::uint32_t>(code);
}

int vfILError::IsNoError() const
{
    return m_code == 0;
}

int vfILError::IsFatalError() const
{
    return m_code >= 0x10000 && m_code <= 0x1FFFF;
}

int vfILError::IsWarning() const
{
    return m_code >= 0x20000 && m_code <= 0x2FFFF;
}

const char* vfILErrorText(unsigned long code)
{
    const auto key = static_cast<std::uint32_t>(code);
    const auto found = std::ranges::lower_bound(kErrorTexts, key, {}, &ErrorText::code);
    return found != kErrorTexts.end() && found->code == key ? found->text : nullptr;
}

namespace {

/// Writes to a buffer of any size, and counts on when it is full.
class Line {
public:
    Line(char* buffer, std::size_t size) : m_buffer(buffer), m_size(size) {}

    void Put(char c)
    {
        if (m_length + 1 < m_size) m_buffer[m_length] = c;
        ++m_length;
    }
    /// Class names are plain letters and digits: what is wider than a char becomes a question mark.
    template <class Char>
    void Put(const Char* text)
    {
        for (; *text != 0; ++text)
            Put(*text > 0 && *text < 0x7F ? static_cast<char>(*text) : '?');
    }
    void PutHex(std::uint32_t value)
    {
        Put("0x");
        int shift = 28;
        while (shift > 0 && (value >> shift) == 0)
            shift -= 4;
        for (; shift >= 0; shift -= 4)
            Put("0123456789ABCDEF"[(value >> shift) & 0xFU]);
    }
    std::size_t End()
    {
        if (m_size > 0) m_buffer[std::min(m_length, m_size - 1)] = 0;
        return m_length;
    }

private:
    char* m_buffer;
    std::size_t m_size;
    std::size_t m_length = 0;
};

/// The text without what it ends in, and with \p name once.
template <class Char>
std::size_t Format(std::string_view text, unsigned long code, const Char* name, Line line)
{
    const std::size_t last = text.find_last_not_of(" \n");
    text = text.substr(0, last == std::string_view::npos ? 0 : last + 1);
    const std::size_t hole = text.find("%s");
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (i == hole) {
            line.Put(name);
            ++i;
        } else {
            line.Put(text[i]);
        }
    }
    if (text.empty()) {
        line.Put(name);
        line.Put(" ERROR ");
        line.PutHex(static_cast<std::uint32_t>(code));
    }
    return line.End();
}

std::string_view OrEmpty(const char* text)
{
    return text != nullptr ? std::string_view(text) : std::string_view();
}

} // namespace

std::size_t vfILFormatError(const vfILProcessor& processor, char* buffer, std::size_t size,
                            const char* name) noexcept
{
    const Line line(buffer, size);
    const unsigned long code = processor.GetLastError().GetErrorCode();
    const std::string_view text = OrEmpty(processor.GetLastErrorText());
    const wchar_t* className = processor.GetLastErrorClass();
    if (name != nullptr) return Format(text, code, name, line);
    return Format(text, code, className != nullptr ? className : L"vfILProcessor", line);
}

std::size_t vfILFormatError(const vfILError& error, char* buffer, std::size_t size, const char* name) noexcept
{
    const unsigned long code = error.GetErrorCode();
    return Format(OrEmpty(vfILErrorText(code)), code, name != nullptr ? name : "vfILProcessor",
                  Line(buffer, size));
}
