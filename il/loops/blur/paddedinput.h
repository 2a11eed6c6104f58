/// \file
/// What the windows of a run cover, row by row, for the recursive blurs.
#pragma once

#include "il/loops/frame/padding.h"
#include "il/loops/frame/runarray.h"

#include <vfil/spatial.h>

namespace vfil {

/// The padded input's rows, without the columns that repeat others beyond an edge.
class PaddedInput {
public:
    /// Of a run whose filter reads its input itself.
    PaddedInput(const vfILMonadicSpatialProc& filter, const vfILWindowRun& run, bool useVectors)
        : m_run(run), m_input(InputOf(run)), m_edge(EdgeRuleOf(filter, run)), m_useVectors(useVectors)
    {}
    /// False when memory is short.
    bool Prepare();
    const vfILWindowRun& Run() const { return m_run; }
    bool UsesVectors() const { return m_useVectors; }
    long Width() const { return m_run.windowBox.GetSizeX(); }
    long Height() const { return m_run.windowBox.GetSizeY(); }
    /// Columns that rows have.
    long Columns() const { return m_columns; }
    /// Which of them column \p x of the padded input is.
    long ColumnOf(long x) const { return m_columnOf[static_cast<std::size_t>(x)]; }
    /// Some rows, at most kRowsAtOnce, until the next call.
    vfILRowWalk Rows(long first, long count) const;
    static constexpr long kRowsAtOnce = 16;

private:
    bool FindColumns();

    const vfILWindowRun& m_run;
    const ImageView m_input;
    const EdgeRule m_edge;
    const bool m_useVectors;
    long m_firstColumn = 0; ///< in input coordinates
    long m_columns = 0;
    RunArray<std::int32_t> m_columnOf;
    RunArray<unsigned char> m_rows;
};

} // namespace vfil
