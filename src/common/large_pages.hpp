#pragma once

#include <sys/mman.h>

#include <cstddef>
#include <cstdint>

namespace dravo {

/// Memory of some megabytes that is about to be filled comes in large pages, where the system has
/// them: a fault for each four kilobytes takes as long as what is computed to fill them.
inline void prefer_large_pages(void* memory, std::size_t bytes) {
  constexpr std::size_t kLargePage = std::size_t{1} << 21U;
  constexpr std::size_t kPage = 4096;
  if (bytes < kLargePage) return;
  const std::size_t before = (kPage - reinterpret_cast<std::uintptr_t>(memory) % kPage) % kPage;
  // Refused or not, the memory is as good.
  static_cast<void>(::madvise(static_cast<char*>(memory) + before, bytes - before, MADV_HUGEPAGE));
}

}  // namespace dravo
