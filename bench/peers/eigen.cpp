/// \file
/// Decompositions of matrices by Eigen, of a size that is known at run time, as ours.
#include "bench/filters.h"

#include <Eigen/SVD>

#include <cstdlib>

namespace bench {

namespace {

template <class Svd>
void AddSvd(int size, const char* who)
{
    using RowMajor = Eigen::Matrix<double, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>;
    const Eigen::MatrixXd matrix = Eigen::Map<const RowMajor>(NoiseMatrix(size).data(), size, size);
    Add(SvdName(size), who, [matrix](const Frame&) {
        const Svd svd(matrix, Eigen::ComputeThinU | Eigen::ComputeThinV);
        if (svd.info() != Eigen::Success) std::abort();
    });
}

void AddEigen()
{
    for (const int size : kMatrixSizes) {
        AddSvd<Eigen::JacobiSVD<Eigen::MatrixXd>>(size, "Eigen Jacobi");
        AddSvd<Eigen::BDCSVD<Eigen::MatrixXd>>(size, "Eigen BDC");
    }
}

const Source s_source(AddEigen);

} // namespace
} // namespace bench
