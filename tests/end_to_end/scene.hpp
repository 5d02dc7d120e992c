/// The folder of a run that meets a fault, and what must be in it afterwards.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <filesystem>
#include <string>

#include "end_to_end/program.hpp"

namespace dravo::test {

namespace fs = std::filesystem;

/// Inputs of the same parameters: the output names are the same, the contents differ.
struct SameNames {
  const char* title;
  SampleInput earlier;  ///< its results stand in the folder before the run
  SampleInput input;
  std::array<std::string, 4> names;  ///< in the order in which the run opens them
};

inline SampleInput with_parameters_of(const char* parameters, const char* atoms) {
  SampleInput result = sample(atoms);
  result.parameters = sample(parameters).parameters;
  return result;
}

inline SampleInput moved_closer(SampleInput pair, const char* r) {
  pair.parameters[0] = r;
  return pair;
}

inline const SameNames kPlain{
    "plain",
    with_parameters_of("formamide-dimer", "acetamide-acrylonitrile"),
    sample("formamide-dimer"),
    {kLog, "input-GEOMETRY.xyz", "[0006.5-084-011]-(214-152-306)-QN-DRAVO.xyz",
     "[0006.5-084-011]-(214-152-306)-QN-DRAVO-UCSF-Chimera.bild"}};

// At half an Angstrom the molecules lie in each other.
inline const SameNames kContacts{
    "contacts",
    moved_closer(kPlain.earlier, "0.5"),
    moved_closer(kPlain.input, "0.5"),
    {kLog, "input-GEOMETRY.xyz", "[0000.5-084-011]-(214-152-306)-SHORT-CONTACTS-IDENTIFED.xyz",
     "[0000.5-084-011]-(214-152-306)-SHORT-CONTACTS-IDENTIFIED.bild"}};

/// The folder of a run that meets a fault, and the runs by which it is judged.
class Scene {
 public:
  explicit Scene(const SameNames& inputs)
      : names(inputs.names),
        earlier(run_on(inputs.earlier.text()).files),
        complete(run_on(inputs.input.text())) {
    folder.write(kInput, inputs.input.text());
    for (const Files* files : {&earlier, &complete.files}) {
      EXPECT_EQ(files->size(), names.size());
      for (const std::string& name : names) EXPECT_EQ(files->count(name), 1U) << name;
    }
  }

  void put_earlier_results() const {
    for (const auto& [name, text] : earlier) folder.write(name, text);
  }

  [[nodiscard]] fs::path path(const std::string& name) const { return folder.path() / name; }
  [[nodiscard]] const std::string& whole(std::size_t file) const {
    return complete.files.at(names[file]);
  }

  TemporaryFolder folder;
  std::array<std::string, 4> names;
  Files earlier;
  Outcome complete;
};

inline std::string failure(const std::string& name, const std::string& what) {
  return "qn-dravo: " + name + ": cannot " + what + "\n";
}

/// The records that a run has handed to its log before it writes `file`: up to the headings of the
/// placement, or up to the trailer that follows the last file.
inline std::string log_before(std::size_t file, const std::string& log) {
  const std::string heading = "  CHANGING POSITION ACCORDING TO USER \n";
  const std::string blanks = "    \n    \n";
  const std::size_t placed = log.rfind(heading) + heading.size();
  EXPECT_EQ(log.substr(placed, blanks.size()), blanks);
  if (file == 1) return log.substr(0, placed + blanks.size());
  return log.substr(0, log.find("   \n  USER-DEFINED PARAMETERS APPLIED \n"));
}

/// Contacts are reported before the pair is written, the parameters at the end of the run.
inline std::string screen_before(std::size_t file, const std::string& screen) {
  const std::size_t closing = screen.find("  Dravo Placement of Molecular Partners \n");
  EXPECT_NE(closing, std::string::npos);
  const std::size_t contacts = screen.find("  CHECK THE SUPRAMOLECULAR SYSTEM  \n");
  return screen.substr(0, file < 2 ? std::min(closing, contacts) : closing);
}

/// The log, which is open, goes on to the first file that cannot be opened beside it.
inline void expect_first_geometry_refused(const Outcome& outcome, const Scene& scene,
                                          const std::string& reason) {
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.messages, failure("input-GEOMETRY.xyz.part", "open for writing: " + reason));
  Files expected = scene.earlier;
  expected[kLog] = log_before(1, scene.whole(0));
  EXPECT_TRUE(outcome.files == expected);
}

/// A pair of so many atoms that its geometry is longer than the log; the copies keep the directions
/// of the axes.
inline SampleInput enlarged(const SampleInput& pair, std::size_t copies) {
  SampleInput large = pair;
  large.atoms.clear();
  const auto first_of_molecule2 = pair.atoms.begin() + static_cast<std::ptrdiff_t>(pair.n1);
  const auto copy = [&](auto begin, auto end) {
    for (std::size_t k = 0; k < copies; ++k)
      for (auto atom = begin; atom != end; ++atom)
        large.atoms.push_back(
            {atom->label, (1.0 + 0.01 * static_cast<double>(k)) * atom->position});
  };
  copy(pair.atoms.begin(), first_of_molecule2);
  copy(first_of_molecule2, pair.atoms.end());
  large.n1 = pair.n1 * copies;
  large.parameters[0] = "2000";
  return large;
}

}  // namespace dravo::test
