/// \file
/// Our decompositions of matrices.
#include "filters.h"

#include <vfil/matrix.h>

#include <cstdlib>

namespace bench {

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

} // namespace bench
