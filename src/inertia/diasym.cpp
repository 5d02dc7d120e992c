#include "inertia/diasym.hpp"

#include <cstddef>
#include <vector>

// Fortran passes the lengths of its text arguments behind the argument list.
extern "C" void dsyev_(const char* jobz, const char* uplo, const std::int32_t* n, double* a,
                       const std::int32_t* lda, double* w, double* work, const std::int32_t* lwork,
                       std::int32_t* info, std::size_t jobz_length, std::size_t uplo_length);

namespace dravo {

void diasym(std::span<double> a, std::span<double> r, std::int32_t n) {
  const std::int32_t lwork = n * (3 + n / 2);
  std::vector<double> work(static_cast<std::size_t>(lwork));
  std::int32_t info = 0;
  dsyev_("V", "U", &n, a.data(), &n, r.data(), work.data(), &lwork, &info, 1, 1);
}

}  // namespace dravo
