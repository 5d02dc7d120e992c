/// Molecules that are odd, far away or very large, and what a run makes of them.
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "driver/odd_runs.hpp"
#include "support/sample_input.hpp"

namespace dravo::test {
namespace {

const std::string kStoppedBySymmetry = kStopped + "  version: QN-DRAVO 1.14 \n   \n";

Lines atoms_of(const std::vector<std::string>& labels, const std::string& position) {
  Lines lines;
  for (const std::string& label : labels) lines.push_back(label + " " + position);
  return lines;
}

/// The dimer with other atoms.
std::string with_atoms(const Lines& atoms, const std::string& n1 = "6") {
  Lines lines{std::to_string(atoms.size())};
  lines.insert(lines.end(), atoms.begin(), atoms.end());
  lines.insert(lines.end(), kDimer.begin() + 13, kDimer.end());
  lines[atoms.size() + 2] = n1;
  return joined(lines);
}

/// The atoms of the dimer, moved along x.
Lines moved_atoms(double x) {
  Lines atoms;
  for (std::size_t line = 2; line <= 13; ++line) {
    std::istringstream in(kDimer[line - 1]);
    std::string label, y, z;
    double own_x = 0.0;
    in >> label >> own_x >> y >> z;
    std::ostringstream out;
    out.precision(17);
    out << label << ' ' << own_x + x << ' ' << y << ' ' << z;
    atoms.push_back(out.str());
  }
  return atoms;
}

// A molecule needs two axes whose angles to the reference, from its centre of mass to the centre
// of its heaviest element, differ enough from a right angle.
TEST(OddGeometry, WithoutDirectionsStopsTheRun) {
  const Lines formamide(kDimer.begin() + 1, kDimer.begin() + 7);
  const Lines line{"C 0 0 0", "O 1 0 0", "H 2 0 0", "C 0 0 4", "O 1 0 4", "H 2 0 4"};
  const std::string unknown_labels =
      "qn-dravo: warning: unknown element labels count as mass 0: \"X\" (atoms 7-12)\n";
  const auto molecule2_with = [](const std::string& label) {
    std::vector<Change> changes;
    for (std::size_t k = 8; k <= 13; ++k) changes.push_back({k, label + kDimer[k - 1].substr(1)});
    return with(changes);
  };
  const struct {
    const char* name;
    std::string input;
    bool molecule1;  ///< named on the screen
    bool molecule2;
    std::string warnings;
  } rows[] = {
      // No element has its centre off the centre of mass.
      {"all atoms on one point", with_atoms(atoms_of({"C", "O", "H", "C", "O", "H"}, "1 2 3"), "3"),
       true, true, ""},
      // The reference lies on the line, at right angles to the other two axes.
      {"a straight line", with_atoms(line, "3"), true, true, ""},
      // The centre of mass does not tell one atom from the other any more: what is left of a
      // distance is zero, or so long that its square is infinite.
      {"atoms at 1e200", with_atoms(moved_atoms(1e200)), true, true, ""},
      // No mass, no centre, no element.
      {"unknown labels", molecule2_with("X"), false, true, unknown_labels},
      {"no molecule 2", with_atoms(formamide), false, true, ""},
      // Both formamides together have a centre of inversion, and their oxygens lie about it.
      {"n1 larger than N", with(15, "13"), true, true, ""},
      {"the largest n1", with(15, "2147483647"), true, true, ""},
      // One such coordinate makes a centre of mass that has no number, or a tensor without finite
      // numbers.
      {"not-a-number in molecule 1", with(2, "C nan -1.07 0"), true, false, ""},
      {"infinity in molecule 1", with(2, "C inf -1.07 0"), true, false, ""},
      {"1e308 in molecule 1", with(2, "C 1e308 -1.07 0"), true, false, ""},
      {"not-a-number in molecule 2", with(13, "H 4.53 -1.29 NaN"), false, true, ""},
      {"minus infinity in molecule 2", with(13, "H 4.53 -Infinity 0"), false, true, ""},
      {"1e308 in molecule 2", with(8, "C 3.43 1e308 0"), false, true, ""},
  };
  const auto named = [](const MemoryRun& outcome, const char* molecule) {
    return outcome.screen.find(std::string("  Molecule ") + molecule + " is symmetric") !=
           std::string::npos;
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    const MemoryRun outcome = quick_run(row.input);
    EXPECT_TRUE(outcome.screen.ends_with(kStoppedBySymmetry));
    EXPECT_EQ(named(outcome, "1"), row.molecule1);
    EXPECT_EQ(named(outcome, "2"), row.molecule2);
    EXPECT_EQ(outcome.warnings, row.warnings);
    EXPECT_EQ(names_of(outcome), std::set{kLog});
  }
}

TEST(MoreAtomsInMolecule1ThanInAll, LeavesMolecule2EmptyAndStops) {
  for (const char* n1 : {"13", "200000", "2147483647"}) {
    const MemoryRun outcome = quick_run(with(15, n1));
    EXPECT_NE(outcome.screen.find("  Molecule 2 is symmetric concerning \n"), std::string::npos)
        << n1;
    EXPECT_TRUE(outcome.screen.ends_with(kStoppedBySymmetry)) << n1;
    EXPECT_NE(outcome.files.at(kLog).find("NaN"), std::string::npos) << "the centre of no mass";
  }
}

WrittenGeometry written_pair(const MemoryRun& outcome) {
  return parse_geometry(outcome.files.at(kDimerStem + "QN-DRAVO.xyz"));
}

// Where the input stands does not matter, but for the digits that large coordinates cost: those of
// 1e12 are multiples of 0.00012, and sums of 45 mass units times them multiples of 0.0078.
TEST(OddGeometry, FarFromTheOriginGivesTheSamePair) {
  const WrittenGeometry near = written_pair(quick_run(joined(kDimer)));
  ASSERT_EQ(near.positions.size(), 12U);
  for (const auto& [x, tolerance] : {std::pair{1e6, 1e-6}, std::pair{1e12, 0.01}}) {
    const MemoryRun outcome = quick_run(with_atoms(moved_atoms(x)));
    ASSERT_EQ(names_of(outcome), files_without_contacts(kDimerStem)) << x;
    const WrittenGeometry far = written_pair(outcome);
    EXPECT_EQ(far.atomic_numbers, near.atomic_numbers);
    for (std::size_t i = 0; i < near.positions.size(); ++i)
      EXPECT_LE(modulus(far.positions[i] - near.positions[i]), tolerance) << x << ", atom " << i;
  }
}

// Every atom 12500 times: the copies are indistinguishable, so each is placed like the first.
TEST(OddGeometry, OfAsManyAtomsAsAllowedGivesAPair) {
  constexpr std::size_t kCopies = 12500;
  std::string text = "150000\n";
  for (std::size_t line = 2; line <= 13; ++line) text += repeated(kDimer[line - 1] + "\n", kCopies);
  text += "n1\n75000\n" + joined(Lines(kDimer.begin() + 15, kDimer.end()));
  const MemoryRun outcome = run_in_memory(text);
  EXPECT_EQ(outcome.warnings, "");
  ASSERT_EQ(names_of(outcome), files_without_contacts(kDimerStem));

  const WrittenGeometry all = written_pair(outcome);
  const WrittenGeometry dimer = written_pair(run_in_memory(joined(kDimer)));
  ASSERT_EQ(all.positions.size(), 12 * kCopies);
  std::size_t misplaced = 0;
  for (std::size_t i = 0; i < all.positions.size(); ++i) {
    const Vec3 first = all.positions[i - i % kCopies];
    if (!(modulus(all.positions[i] - first) <= 0.0)) ++misplaced;
    if (!(modulus(first - dimer.positions[i / kCopies]) <= 1e-6)) ++misplaced;
  }
  EXPECT_EQ(misplaced, 0U);
}

struct FarMolecule {
  const char* title;
  int molecule;
  Vec3 displacement;
  bool warned;  ///< whether already the first alignment finds no rotation
};

// A frame is kept as the tips of unit vectors from its centre. Neighbouring numbers near 1e15 are
// an eighth apart, near 1e16 two: such tips point anywhere, and no rotation brings the two frames
// together. Frames are moved to molecule 2, so its own suffers only in the first alignment.
constexpr std::array kFarMolecules{FarMolecule{"molecule 1", 1, {1e15, 0.0, 0.0}, false},
                                   FarMolecule{"molecule 2", 2, {0.0, 0.0, 1e16}, true}};

TEST(PrescribedStop, WithoutEulerAnglesIsTheLastRecordOfLogAndScreen) {
  std::string stop;
  for (int i = 0; i < 4; ++i) stop += "  ERROR - EULER ANGLES NOT FOUND \n";
  const std::string heading = "  ############################################# \n   \n";
  for (const FarMolecule& far : kFarMolecules) {
    SampleInput pair = sample("formamide-dimer");
    for (std::size_t i = 0; i < pair.atoms.size(); ++i)
      if ((i < pair.n1) == (far.molecule == 1))
        pair.atoms[i].position = pair.atoms[i].position + far.displacement;
    const MemoryRun outcome = run_in_memory(pair.text());
    EXPECT_EQ(outcome.warnings, "") << far.title;
    ASSERT_EQ(outcome.files.size(), 1U) << "nothing but the log is written";
    const std::string& log = outcome.files.at(kLog);
    EXPECT_TRUE(log.ends_with(heading + stop)) << far.title;
    EXPECT_TRUE(outcome.screen.ends_with((far.warned ? "" : "   \n   \n") + stop)) << far.title;
    for (const std::string* unit : {&log, &outcome.screen})
      EXPECT_EQ(unit->find("WARNING - NO GUESS ANGLE") != std::string::npos, far.warned)
          << far.title;
  }
}

}  // namespace
}  // namespace dravo::test
