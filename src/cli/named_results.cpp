#include "cli/named_results.hpp"

#include <filesystem>
#include <system_error>

#include "molecules/input_file.hpp"
#include "results/progress_file.hpp"
#include "results/result_files.hpp"

namespace dravo {
namespace {

bool is_file(const std::string& name) {
  std::error_code ignored;  // whatever it is, reading meets it too
  const auto status = std::filesystem::status(name, ignored);
  return std::filesystem::exists(status) && !std::filesystem::is_directory(status);
}

}  // namespace

std::optional<std::string> results_named(const std::string& given, std::string_view kinds) {
  for (const std::string_view ending : {".csv", ".json"}) {
    if (!given.ends_with(ending)) continue;
    std::string name = given.substr(0, given.size() - ending.size());
    if (has_finished_record(name)) return name;
  }
  if (is_standard_input(given) || is_file(given)) return std::nullopt;
  if (has_finished_record(given) || has_progress(given)) return given;
  throw InvalidInput(
      fmt::format("{}: there is no such file, and no {} of this name, which has {}{}", given, kinds,
                  given, kRecordEnding));
}

}  // namespace dravo
