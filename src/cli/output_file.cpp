#include "cli/output_file.hpp"

#include <fmt/format.h>

#include <cstddef>
#include <filesystem>
#include <system_error>

#include "common/atom_table.hpp"
#include "common/errors.hpp"
#include "common/record_format.hpp"
#include "molecules/fragments.hpp"

namespace dravo {

void require_folder_of(const std::string& name) {
  const std::filesystem::path path(name);
  if (!path.has_parent_path() || !path.has_filename()) return;
  const std::string folder = path.parent_path().string();
  std::error_code ignored;  // whatever it is, writing meets it too
  const auto status = std::filesystem::status(folder, ignored);
  if (status.type() == std::filesystem::file_type::not_found)
    throw IoFailure(folder + ": there is no such folder");
  if (std::filesystem::exists(status) && !std::filesystem::is_directory(status))
    throw IoFailure(folder + ": is not a folder");
}

void require_replaceable(const std::string& name, bool overwrite) {
  require_folder_of(name);
  std::error_code ignored;  // whatever it is, writing meets it too
  const auto status = std::filesystem::symlink_status(name, ignored);
  if (!std::filesystem::exists(status)) return;
  if (!std::filesystem::is_regular_file(status) && !std::filesystem::is_symlink(status))
    throw IoFailure(name + ": cannot replace it: not a regular file");
  if (!overwrite) throw IoFailure(name + ": exists already; --overwrite replaces it");
}

void refuse_inputs_as_output(const std::string& name, const std::vector<std::string>& inputs) {
  for (const std::string& input : inputs) {
    std::error_code ignored;  // what does not exist is not the same
    if (std::filesystem::equivalent(input, name, ignored))
      throw IoFailure(input + ": would be replaced by the results; choose another --output");
  }
}

std::string atom_lines(const std::vector<Label>& labels, const std::vector<Vec3>& positions,
                       std::optional<std::int32_t> n1) {
  constexpr int kWidth = 15, kDecimals = 8;
  std::string text;
  for (std::size_t k = 0; k < labels.size(); ++k) {
    text += text_of(labels[k]);
    for (const double coordinate : {positions[k].x, positions[k].y, positions[k].z}) {
      text += ' ';
      append_fixed_field(text, coordinate, kWidth, kDecimals);
    }
    if (n1) text += static_cast<std::int32_t>(k) < *n1 ? " 1" : " 2";
    text += '\n';
  }
  return text;
}

std::string written_line(const std::string& name, const Pair& pair) {
  return fmt::format("wrote {}: molecule 1 has {}, molecule 2 has {}", name, atoms_text(pair.n1()),
                     pair.size() - pair.n1());
}

}  // namespace dravo
