/// Ends the process when somebody asks for a large piece of memory, which only a number in the
/// input explains. Sanitizers have a limit of their own, and their own `operator new`.
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <new>

namespace {

constexpr std::size_t kMostMemory = std::size_t{64} << 20U;  // bytes

}  // namespace

void* operator new(std::size_t size) {
  if (size > kMostMemory) {
    std::fprintf(stderr, "%zu bytes in one piece\n", size);
    std::abort();
  }
  if (void* memory = std::malloc(size == 0 ? 1 : size)) return memory;
  throw std::bad_alloc();
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t /*size*/) noexcept { std::free(memory); }
