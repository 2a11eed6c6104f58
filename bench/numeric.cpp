/// \file
/// Our decompositions of matrices.
#include "filters.h"

#include <vfil/matrix.h>

#include <cstdlib>

namespace bench {

namespace {

void AddMatrices()
{
    for (const int size : kMatrixSizes) {
        const vfILMatrix matrix(NoiseMatrix(size).data(), size, size);
        Add(SvdName(size), kOurs, [matrix](const Frame&) {
            vfILMatrix u, w, v;
            if (matrix.ThinSVD(u, w, v) != VFIL_SUCCESS) std::abort();
        });
    }
}

const Source s_source(AddMatrices);

} // namespace
} // namespace bench
