/// Folders of `dravo export`, and a pair that is exported.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <sstream>
#include <string>
#include <vector>

#include "cli/known_energies.hpp"
#include "cli/scanned.hpp"

namespace dravo::test {

inline const Words kSmall{"--method", "hf", "--basis", "sto-3g"};

/// What `dravo export PROGRAM NAME` needs besides, written to the folder "qc".
inline Words export_words(const std::string& name, const Words& more = {},
                          const std::string& program = "psi4") {
  const bool has_basis = program != "xtb" && program != "template";
  return Words{"export", program, name, "-o", "qc"} + (has_basis ? kSmall : Words{}) + more;
}

inline std::string pose_folder(const std::string& index) {
  const std::string number = std::string(6 - index.size(), '0') + index;
  return "qc/" + number.substr(0, 3) + "/" + number;
}

/// Symbol, coordinates and molecule of every atom, as texts.
inline std::vector<Lines> atoms_in(const Frame& frame) {
  std::vector<Lines> atoms;
  for (std::size_t k = 0; k < frame.atoms.size(); ++k) {
    std::istringstream in(frame.atoms[k] + " " + frame.molecules[k]);
    Lines& words = atoms.emplace_back();
    for (std::string word; in >> word;) words.push_back(word);
  }
  return atoms;
}

/// The same of an exported pose, whose columns stand elsewhere.
inline std::vector<Lines> atoms_of_pose(const TemporaryFolder& folder, const std::string& index) {
  const Lines lines = lines_of(folder.read(pose_folder(index) + "/pose.xyz"));
  std::vector<Lines> atoms;
  for (std::size_t k = 2; k < lines.size(); ++k) {
    std::istringstream in(lines[k]);
    Lines& words = atoms.emplace_back();
    for (std::string word; in >> word;) words.push_back(word);
  }
  EXPECT_EQ(std::to_string(atoms.size()), lines.at(0));
  EXPECT_EQ(lines.at(1), "Properties=species:S:1:pos:R:3:molecule:I:1 index=" + index);
  return atoms;
}

/// A folder with the formamide dimer as "dimer.xyz" and as the input of qn-dravo.
class ExportFolder : public Dimer {
 public:
  ExportFolder() { write("dimer.xyz", file_text(kFormamide)); }

  [[nodiscard]] Outcome run(const Words& words) const { return run_command(*this, words); }

  /// Must succeed without a word.
  void quietly(const Words& words) const {
    const Outcome outcome = run(words + Words{"--quiet"});
    EXPECT_EQ(outcome.status, 0) << outcome.messages;
    EXPECT_EQ(outcome.screen + outcome.messages, "");
  }

  [[nodiscard]] Lines exported_rows() const { return lines_of(read("qc/poses.csv")); }
};

}  // namespace dravo::test
