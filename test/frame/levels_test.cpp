/// \file
/// The tables of kernels, whose building ends the program on a null: here a family that forgot one is named.
#include "il/rows/blur/boxrows.h"
#include "il/rows/blur/convrows.h"
#include "il/rows/blur/recursionrows.h"
#include "il/rows/convert/depthrows.h"
#include "il/rows/convert/modelrows.h"
#include "il/rows/convert/yccrows.h"
#include "il/rows/edge/edgerows.h"
#include "il/rows/fillkey/fillkeyrows.h"
#include "il/rows/layer/comprows.h"
#include "il/rows/pixel/pointrows.h"
#include "il/rows/rank/rankrows.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace vfil {
namespace {

/// Builds a family's tables, of all levels, in a process of its own.
template <auto tableAt>
void Build()
{
    tableAt(Level::Plain);
    std::_Exit(0);
}

TEST(Levels, NoKernelIsMissing)
{
    struct Family {
        const char* table;
        void (*build)();
    };
    const Family families[] = {
        {"BoxRows", Build<BoxRowsAt>},
        {"ConvRows", Build<ConvRowsAt>},
        {"RecursionRows", Build<RecursionRowsAt>},
        {"DepthRows", Build<DepthRowsAt>},
        {"ModelRows", Build<ModelRowsAt>},
        {"YccRows", Build<YccRowsAt>},
        {"EdgeRows", Build<EdgeRowsAt>},
        {"FillKeyRows", Build<FillKeyRowsAt>},
        {"CompRows", Build<CompRowsAt>},
        {"PointRows", Build<PointRowsAt>},
        {"RankRows", Build<RankRowsAt>},
    };
    for (const Family& family : families)
        EXPECT_EXIT(family.build(), testing::ExitedWithCode(0), "") << family.table << " has a null";
}

} // namespace
} // namespace vfil
