/// \file
/// The fields of a picture are melted into each other.

#include "il/loops/field/fieldrows.h"

#include "il/rows/field/weaverows.h"

using namespace vfil;

const wchar_t* const vfILFieldMerge::m_ClassName = L"vfILFieldMerge";

vfILFieldMerge::~vfILFieldMerge() = default;

const wchar_t* vfILFieldMerge::GetClassNameW() const
{
    return m_ClassName;
}

IPXImage* vfILFieldMerge::GetInputImg() const
{
    return m_inputImgA;
}

void vfILFieldMerge::SetInputImg(IPXImage* image)
{
    m_inputImgA = image;
}

vfILStatus vfILFieldMerge::Verify()
{
    return VerifyOneInput(GetClassNameW());
}

namespace {

template <class Sample>
void MergeFields(const vfILProcessor& processor, const vfILFieldRun& run, bool useVectors)
{
    const MergeRow<Sample> merge = FindMergeRow<Sample>(useVectors, run.streaming);
    HeldRows input(run);
    const RegionRows output(run.output);
    const long last = run.processBox.GetSizeY() - 1;
    const auto samples = [&](long row) { return reinterpret_cast<const Sample*>(input[row]); };
    ForEachFieldRow(processor, run, [&](long row, long) {
        input.Hold(row);
        const long below = row > 0 ? row - 1 : std::min(1L, last);
        const long above = row < last ? row + 1 : std::max(last - 1, 0L);
        merge(samples(below), samples(row), samples(above), reinterpret_cast<Sample*>(output[row]),
              run.rowBytes / sizeof(Sample));
    });
}

} // namespace

vfILStatus vfILFieldMerge::DoEffect()
{
    const bool wide = Run().output.picture.format->sampleBytes == 2;
    (wide ? MergeFields<std::uint16_t> : MergeFields<std::uint8_t>)(*this, Run(), m_simdAvailable != 0);
    return VFIL_SUCCESS;
}
