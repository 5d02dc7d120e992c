#include "common/installed_file.hpp"

#include <dlfcn.h>
#include <fmt/format.h>
#include <sys/auxv.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <vector>

#include "common/build_options.hpp"
#include "dravo/error.hpp"

namespace dravo {
namespace {

namespace fs = std::filesystem;

/// The file of which this code is a part: a program, or a module of Python.
fs::path own_file() {
  std::error_code ignored;
  const fs::path program = fs::read_symlink("/proc/self/exe", ignored);
  Dl_info own{}, main{};
  // The system tells where the program begins as a number.
  const auto* const entry =
      reinterpret_cast<const void*>(::getauxval(AT_ENTRY));  // NOLINT(performance-no-int-to-ptr)
  const bool known =
      ::dladdr(reinterpret_cast<const void*>(&own_file), &own) != 0 && ::dladdr(entry, &main) != 0;
  return known && own.dli_fbase != main.dli_fbase ? fs::absolute(own.dli_fname) : program;
}

/// Beside that file, and below the prefix, which is one of the folders above: bin/dravo, or
/// lib/python3.11/site-packages/dravo/_core.so.
std::vector<fs::path> places_of(const std::string& name, const char* variable) {
  if (const char* const told = std::getenv(variable)) return {fs::path(told)};
  constexpr int kMostLevels = 4;
  fs::path folder = own_file().parent_path();
  std::vector<fs::path> places{folder / name};
  for (int level = 0; level < kMostLevels && folder.has_relative_path(); ++level) {
    folder = folder.parent_path();
    places.push_back(folder / kLibexecFolder / name);
  }
  places.push_back(fs::path(kInstalledLibexec) / name);
  return places;
}

}  // namespace

std::string installed_file(const std::string& what, const std::string& name, const char* variable) {
  std::string looked_for;
  for (const fs::path& place : places_of(name, variable)) {
    if (::access(place.c_str(), R_OK) == 0) return fs::absolute(place).string();
    looked_for.append(looked_for.empty() ? "" : ", ").append(place.string());
  }
  throw IoFailure(
      fmt::format("the {} {} is not there: looked for {}; the variable {} can tell its path", what,
                  name, looked_for, variable));
}

}  // namespace dravo
