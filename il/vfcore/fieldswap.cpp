/// \file
/// The rows of a picture change their field.

#include "il/loops/field/fieldrows.h"

#include "il/rows/field/weaverows.h"

#include <algorithm>

using namespace vfil;

const wchar_t* const vfILFieldSwap::m_ClassName = L"vfILFieldSwap";

vfILFieldSwap::~vfILFieldSwap() = default;

const wchar_t* vfILFieldSwap::GetClassNameW() const
{
    return m_ClassName;
}

IPXImage* vfILFieldSwap::GetInputImg() const
{
    return m_inputImgA;
}

void vfILFieldSwap::SetInputImg(IPXImage* image)
{
    m_inputImgA = image;
}

int vfILFieldSwap::GetSwapLines() const
{
    return m_swapLines;
}

void vfILFieldSwap::SetSwapLines(int swap)
{
    m_swapLines = swap;
}

vfILStatus vfILFieldSwap::Verify()
{
    return VerifyOneInput(GetClassNameW());
}

namespace {

/// Which row a row takes, of a region of \p height rows.
long SourceRow(long row, long height, bool trade)
{
    long source = trade ? row ^ 1 : row - 1;
    if (source == -1) source = 1;
    if (source == height) source = height - 2;
    return std::clamp(source, 0L, height - 1);
}

} // namespace

vfILStatus vfILFieldSwap::DoEffect()
{
    HeldRows input(Run());
    const RegionRows output(Run().output);
    const long height = Run().processBox.GetSizeY();
    const WeaveRow weave = FindWeaveRow(m_simdAvailable != 0, Run().streaming);
    const auto source = [&](long row) { return SourceRow(row, height, m_swapLines != 0); };
    ForEachFieldRow(*this, Run(), [&](long row, long next) {
        input.Hold(row);
        const unsigned char* const from = input[source(row)];
        if (from != output[row]) weave(from, input[source(next)], output[row], Run().rowBytes);
    });
    return VFIL_SUCCESS;
}
