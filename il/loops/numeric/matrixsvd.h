/// \file
/// The singular value decomposition behind every solver of vfILMatrix, on arrays with unit offset.
#pragma once

namespace vfil {

enum class SvdOutcome {
    kConverged,
    kFailed,  ///< too many iterations, the arrays hold what stood by then; NaN when an element is not finite
    kNothing, ///< memory ran out, or there is nothing to decompose
};

/// Decomposes a (m by n) = U diag(w) V^T: \p a becomes U, \p v receives V.
///
/// \param a Of an ordinary scale, or all of it is: see ScaleExponent.
SvdOutcome DecomposeUnitOffset(double** a, long m, long n, double* w, double** v) noexcept;

} // namespace vfil
