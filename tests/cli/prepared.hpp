/// Folders to prepare inputs in, and what `dravo prepare` makes there.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <string>

#include "cli/command.hpp"
#include "support/text_lines.hpp"

namespace dravo::test {

inline const std::string kWritten =
    "dravo: wrote QN-input-GEOMETRY.xyz: molecule 1 has 6 atoms, molecule 2 has 6\n";
// None of them is moved off its place.
inline const Words kPlainAngles{"--theta", "84",     "--phi", "11",      "--alpha",
                                "214",     "--beta", "152",   "--gamma", "306"};

inline std::string bundled(const std::string& name) { return file_text(sample_path(name)); }

/// Lines of the atoms of a bundled input, first to last from 1.
inline Lines atoms_of(const std::string& name, std::size_t first, std::size_t last) {
  const Lines lines = lines_of(bundled(name));
  return {lines.begin() + static_cast<std::ptrdiff_t>(first),
          lines.begin() + static_cast<std::ptrdiff_t>(last) + 1};
}

inline std::string xyz(const Lines& atoms, const std::string& comment = "made by hand") {
  return std::to_string(atoms.size()) + '\n' + comment + '\n' + joined(atoms);
}

/// The atoms of a bundled input as a standard xyz file.
inline std::string bundled_as_xyz(const std::string& name) {
  return xyz(atoms_of(name, 1, sample(name).atoms.size()));
}

inline bool has_input(const TemporaryFolder& folder) {
  return std::filesystem::exists(folder.path() / kInput);
}

inline std::string input_in(const TemporaryFolder& folder) {
  return has_input(folder) ? folder.read(kInput) : "(no file)";
}

/// A folder with the bundled formamide dimer as pair.xyz.
class XyzDimer : public TemporaryFolder {
 public:
  XyzDimer() { write("pair.xyz", bundled_as_xyz("formamide-dimer")); }
};

/// What a successful run writes.
inline std::string prepared(const TemporaryFolder& folder, const Words& words) {
  const Outcome outcome = run_command(folder, Words{"prepare"} + words);
  EXPECT_EQ(outcome.status, 0) << outcome.messages;
  EXPECT_EQ(outcome.screen, "") << "the result is the file";
  return input_in(folder);
}

}  // namespace dravo::test
