/// \file
/// The 27 pixel formats as the tests know them: a table of its own, so that the library's is checked against
/// it and the test pictures do not depend on it.
#pragma once

#include <vfil/pxformat.h>

#include <array>
#include <cstring>

namespace vfil::test {

struct FormatCase {
    const char* name;
    GUID id;
    const char* text; ///< the identifier in its usual notation
    int model;
    /// A alpha, T top-down, 6 BT.601, 7 BT.709, Y YCC, P alpha plane, C chroma first, S split field, E even
    /// field first.
    const char* flags;
    int channels;
    int sampleBytes;
    int pixelBytes;

    bool Is(char flag) const { return std::strchr(flags, flag) != nullptr; }
    /// Two pixels share a pair of chroma samples.
    bool IsSubsampled() const { return Is('Y') && std::strstr(name, "422") != nullptr; }
    int Full() const { return sampleBytes == 2 ? 65535 : 255; }
};

#define FORMAT(name) #name, PXFormat_##name
inline constexpr std::array<FormatCase, 27> kFormats{{
    {FORMAT(RGBA32), "0CB9135C-5A29-11CE-BABC-00AA00629284", 1, "A", 4, 1, 4},
    {FORMAT(RGBA64), "0CB9135E-5A29-11CE-BABC-00AA00629284", 1, "A", 4, 2, 8},
    {FORMAT(Mono8), "0CB9135D-5A29-11CE-BABC-00AA00629284", 2, "", 1, 1, 1},
    {FORMAT(Mono16), "0CB91360-5A29-11CE-BABC-00AA00629284", 2, "", 1, 2, 2},
    {FORMAT(BGRA32), "E8077D07-478C-11D4-9C07-0090275055DE", 1, "", 4, 1, 4},
    {FORMAT(BGR24), "29C1AE01-52B3-11D4-963E-0090275055DE", 1, "", 3, 1, 3},
    {FORMAT(RGB24), "05D2ABB1-747C-11D0-90F7-00A02429B9E8", 1, "", 3, 1, 3},
    {FORMAT(Dib24), "05D2ABB2-747C-11D0-90F7-00A02429B9E8", 0, "", 3, 1, 3},
    {FORMAT(Dib32), "0654EA71-E3EA-11CF-885E-00AA006D38F7", 1, "A", 4, 1, 4},
    {FORMAT(YCCA32), "599171A0-8B9F-11CE-8B97-00AA00629455", 0x40, "AT6Y", 4, 1, 4},
    {FORMAT(YCCA64), "599171A1-8B9F-11CE-8B97-00AA00629455", 0x40, "AT6Y", 4, 2, 8},
    {FORMAT(YCC422_601), "408FA7C1-E26D-11D0-8F9B-00A024190344", 0x40, "T6Y", 3, 1, 2},
    {FORMAT(YCC422_601_SplitEven), "6C48CE31-E1C6-11D0-8F9A-00A024190344", 0x40, "T6YSE", 3, 1, 2},
    {FORMAT(YCC422_601_SplitOdd), "0CFB5961-E91B-11D0-8F9D-00A024190344", 0x40, "T6YS", 3, 1, 2},
    {FORMAT(YCC422_709), "5A3169B5-8BF5-11D3-8B11-080036043475", 0x200, "T7Y", 3, 1, 2},
    {FORMAT(YCC422_709_SplitEven), "5A3169B6-8BF5-11D3-8B11-080036043475", 0x200, "T7YSE", 3, 1, 2},
    {FORMAT(YCC422_709_SplitOdd), "5A3169B7-8BF5-11D3-8B11-080036043475", 0x200, "T7YS", 3, 1, 2},
    {FORMAT(YUV422_601), "DE438CF2-E948-11D3-901A-00A024190344", 0x40, "T6YC", 3, 1, 2},
    {FORMAT(YUV422_601_SplitEven), "DE438CF3-E948-11D3-901A-00A024190344", 0x40, "T6YCSE", 3, 1, 2},
    {FORMAT(YUV422_601_SplitOdd), "DE438CF4-E948-11D3-901A-00A024190344", 0x40, "T6YCS", 3, 1, 2},
    {FORMAT(YUV422_709), "DE438CF5-E948-11D3-901A-00A024190344", 0x200, "T7YC", 3, 1, 2},
    {FORMAT(YUV422_709_SplitEven), "DE438CF6-E948-11D3-901A-00A024190344", 0x200, "T7YCSE", 3, 1, 2},
    {FORMAT(YUV422_709_SplitOdd), "DE438CF7-E948-11D3-901A-00A024190344", 0x200, "T7YCS", 3, 1, 2},
    {FORMAT(YCCA422_601), "C299BB08-F46D-11D3-A296-0800360443CA", 0x40, "AT6YPC", 4, 1, 3},
    {FORMAT(YCCA422_709), "C299BB07-F46D-11D3-A296-0800360443CA", 0x200, "AT7YPC", 4, 1, 3},
    {FORMAT(HLSA32), "599171A2-8B9F-11CE-8B97-00AA00629455", 4, "A", 4, 1, 4},
    {FORMAT(HLSA64), "599171A3-8B9F-11CE-8B97-00AA00629455", 4, "A", 4, 2, 8},
}};
#undef FORMAT

inline const FormatCase& FormatOf(const GUID& id)
{
    for (const FormatCase& format : kFormats)
        if (format.id == id) return format;
    return kFormats.front();
}

} // namespace vfil::test
