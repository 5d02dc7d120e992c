/// Runs a fuzz target once on every file of the given folders. None may take long.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size);

namespace {

/// Of one input and one core; sanitized code takes ten times longer than other code.
constexpr double kMostSeconds = 5.0;

std::vector<std::uint8_t> bytes_of(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

double seconds() { return static_cast<double>(std::clock()) / CLOCKS_PER_SEC; }

void run_on(const std::filesystem::path& file) {
  const auto bytes = bytes_of(file);
  const double begin = seconds();
  LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
  if (seconds() - begin < kMostSeconds) return;
  std::printf("%s took %g seconds\n", file.c_str(), seconds() - begin);
  std::exit(1);
}

}  // namespace

int main(int argc, char** argv) {
  int runs = 0;
  for (int i = 1; i < argc; ++i)
    for (const auto& entry : std::filesystem::recursive_directory_iterator(argv[i])) {
      if (!entry.is_regular_file()) continue;
      run_on(entry.path());
      ++runs;
    }
  std::printf("%d inputs\n", runs);
  return runs == 0 ? 1 : 0;
}
