#pragma once

#include <cstdint>
#include <span>

namespace dravo {

/// Diagonalises a real symmetric matrix with LAPACK's `dsyev`.
///
/// `a`: n x n, stored column by column; only the upper triangle is read. On return column k holds
/// the unit eigenvector of eigenvalue k, with the sign that the solver gave it. `r`: n eigenvalues
/// in ascending order.
///
/// The solver's status is not examined: a matrix without a decomposition (not-a-number) shows in
/// the printed values.
void diasym(std::span<double> a, std::span<double> r, std::int32_t n);

}  // namespace dravo
