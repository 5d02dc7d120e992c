#pragma once

#include <sys/mman.h>

#include <cstddef>
#include <cstdint>

namespace dravo {

/// Memory of some megabytes that is about to be filled comes in large pages, where the system has
/// them: a fault for each four kilobytes takes as long as what is computed to fill them.
inline void prefer_large_pages(void* memory, std::size_t bytes) {
  constexpr std::size_t kLargePage = std::size_t{1} << 21U;
  constexpr std::uintptr_t kPage = 4096;
  if (bytes < kLargePage) return;
  const auto begin = (reinterpret_cast<std::uintptr_t>(memory) + kPage - 1) / kPage * kPage;
  const auto end = (reinterpret_cast<std::uintptr_t>(memory) + bytes) / kPage * kPage;
  // Refused or not, the memory is as good.
  static_cast<void>(::madvise(reinterpret_cast<void*>(begin), end - begin, MADV_HUGEPAGE));
}

}  // namespace dravo
