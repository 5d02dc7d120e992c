/// Runs a fuzz target once on every file of the given folders.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size);

namespace {

std::vector<std::uint8_t> bytes_of(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

}  // namespace

int main(int argc, char** argv) {
  int runs = 0;
  for (int i = 1; i < argc; ++i)
    for (const auto& entry : std::filesystem::recursive_directory_iterator(argv[i])) {
      if (!entry.is_regular_file()) continue;
      const auto bytes = bytes_of(entry.path());
      LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
      ++runs;
    }
  std::printf("%d inputs\n", runs);
  return runs == 0 ? 1 : 0;
}
