#include "cli/output_file.hpp"

#include <fmt/format.h>

#include <filesystem>
#include <system_error>

#include "common/errors.hpp"
#include "molecules/fragments.hpp"

namespace dravo {

void require_replaceable(const std::string& name, bool overwrite) {
  std::error_code ignored;  // whatever it is, writing meets it too
  const auto status = std::filesystem::symlink_status(name, ignored);
  if (!std::filesystem::exists(status)) return;
  if (!std::filesystem::is_regular_file(status) && !std::filesystem::is_symlink(status))
    throw IoFailure(name + ": cannot replace it: not a regular file");
  if (!overwrite) throw IoFailure(name + ": exists already; --overwrite replaces it");
}

std::string written_line(const std::string& name, const Pair& pair) {
  return fmt::format("wrote {}: molecule 1 has {}, molecule 2 has {}", name, atoms_text(pair.n1()),
                     pair.size() - pair.n1());
}

}  // namespace dravo
