#include "common/installed_file.hpp"

#include <fmt/format.h>
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

std::vector<fs::path> places_of(const std::string& name, const char* variable) {
  if (const char* const told = std::getenv(variable)) return {fs::path(told)};
  std::error_code ignored;
  const fs::path program = fs::read_symlink("/proc/self/exe", ignored);
  return {program.parent_path() / name, program.parent_path().parent_path() / kLibexecFolder / name,
          fs::path(kInstalledLibexec) / name};
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
