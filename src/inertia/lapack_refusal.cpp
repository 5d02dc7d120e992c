#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

/// What LAPACK calls when it is given an argument that it refuses: the place that it leaves to its
/// users. Its own writes by the runtime of Fortran, for which every run would have to start that.
/// Nothing here gives it such an argument.
extern "C" [[noreturn]] void xerbla_(const char* routine, const std::int32_t* argument,
                                     std::size_t length);

void xerbla_(const char* routine, const std::int32_t* argument, std::size_t length) {
  static_cast<void>(std::fprintf(stderr, "LAPACK: argument %d of %.*s is refused\n", *argument,
                                 static_cast<int>(length), routine));
  std::abort();
}
