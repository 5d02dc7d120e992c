/// Contacts by any criterion, clearance, closest atoms and hydrogen bonds, as commands tell them.
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "cli/prepared.hpp"
#include "cli/scanned.hpp"
#include "common/vector.hpp"
#include "support/molecule_sets.hpp"

namespace dravo::test {
namespace {

/// A folder with published dimers whose hydrogen bonds everybody knows.
class Dimers : public Dimer {
 public:
  Dimers() {
    for (const char* name : {"Formamide_dimer", "Adenine-thymine_Watson-Crick_complex"}) {
      const NamedPair dimer = s22(name);
      Lines atoms;
      for (std::int32_t i = 0; i < dimer.atoms.size(); ++i) {
        const Vec3& p = dimer.atoms.positions()[static_cast<std::size_t>(i)];
        atoms.push_back(fmt::format("{} {} {} {}", dimer.atoms.symbol(i), p.x, p.y, p.z));
      }
      write(name == std::string("Formamide_dimer") ? "formamide.xyz" : "base-pair.xyz", xyz(atoms));
    }
    write("radon.xyz", xyz({"Rn 0 0 0"}));
    write("water.xyz", xyz({"O 0 0 0", "H 0.757 0 -0.586", "H -0.757 0 -0.586"}));
  }

  [[nodiscard]] Outcome run(const Words& words) const { return run_command(*this, words); }

  [[nodiscard]] nlohmann::json identified(const Words& words) const {
    const Outcome outcome = run(Words{"identify"} + words + Words{"--split", "auto", "--json"});
    EXPECT_EQ(outcome.status, 0) << outcome.messages;
    return nlohmann::json::parse(outcome.screen);
  }

  /// How many lines of what `place` tells begin so.
  [[nodiscard]] std::size_t told(const Words& words, const std::string& beginning) const {
    const Lines lines = lines_of(run(Words{"place"} + words + Words{"--split", "auto"}).messages);
    return static_cast<std::size_t>(std::count_if(
        lines.begin(), lines.end(),
        [&](const std::string& line) { return line.starts_with("dravo: " + beginning); }));
  }
};

struct Counted {
  const char* file;
  const char* distance;  ///< empty for none given
  std::size_t contacts;
};

/// Hydrogen bonds of 1.82 to 1.84 Angstrom are 0.67 times the sum of the radii of H and O, or of H
/// and N: 2.72 and 2.75 Angstrom.
TEST(ContactDistance, DecidesWhetherHydrogenBondsAreContacts) {
  const Dimers folder;
  for (const auto& [file, distance, contacts] :
       {Counted{"formamide.xyz", "", 2}, Counted{"formamide.xyz", "1.6", 0},
        Counted{"formamide.xyz", "vdw*0.65", 0}, Counted{"formamide.xyz", "vdw*0.8", 2},
        Counted{"base-pair.xyz", "", 1}, Counted{"base-pair.xyz", "1.6", 0},
        Counted{"base-pair.xyz", "vdw*0.65", 0}, Counted{"base-pair.xyz", "vdw*0.8", 2}}) {
    const Words given = *distance == '\0' ? Words{} : Words{"--contact-distance", distance};
    EXPECT_EQ(folder.identified(Words{file} + given).at("contacts"), contacts) << file << distance;
    EXPECT_EQ(folder.told(Words{file} + given, "short contact: "), contacts) << file << distance;
    EXPECT_EQ(folder.told(Words{file} + given, "hydrogen bond: "), 2 - contacts)
        << "one line for what is both";
    EXPECT_EQ(folder.told(Words{file} + given, "closest atoms: "), 1U);
  }
}

TEST(Identify, TellsClosestAtomsAndHydrogenBonds) {
  const Dimers folder;
  const auto json = folder.identified({"formamide.xyz"});
  EXPECT_EQ(json.at("contact_distance"), "1.9");
  EXPECT_NEAR(json.at("shortest").get<double>(), 1.84056, 1e-5);
  EXPECT_NEAR(json.at("clearance").get<double>(), 1.84056 / (1.20 + 1.52), 1e-5);
  EXPECT_EQ(json.at("clearance_atom1"), 2);
  EXPECT_EQ(json.at("clearance_atom2"), 11);
  ASSERT_EQ(json.at("closest").size(), 5U);
  const auto& closest = json.at("closest")[2];  // behind both hydrogen bonds
  EXPECT_EQ(closest.at("atom1"), 5);
  EXPECT_EQ(closest.at("atom2"), 11);
  EXPECT_NEAR(closest.at("ratio").get<double>(), closest.at("distance").get<double>() / 2.4, 1e-9);
  EXPECT_EQ(closest.at("contact"), false);
  EXPECT_EQ(json.at("closest")[0].at("contact"), true);
  const auto& bonds = json.at("hydrogen_bonds");
  ASSERT_EQ(bonds.size(), 2U);
  EXPECT_EQ(bonds[0].at("donor"), 9);
  EXPECT_EQ(bonds[0].at("hydrogen"), 11);
  EXPECT_EQ(bonds[0].at("acceptor"), 2);
  EXPECT_EQ(bonds[1].at("hydrogen"), 5);
  EXPECT_NEAR(bonds[0].at("distance").get<double>(), 1.84056, 1e-5);
  EXPECT_GT(bonds[0].at("angle").get<double>(), 170.0);
}

TEST(Identify, ShowsTheSameAsText) {
  const Dimers folder;
  const Outcome outcome = folder.run({"identify", "formamide.xyz", "--split", "6"});
  const std::string section = outcome.screen.substr(outcome.screen.find("\nclosest atoms of"));
  for (const char* line :
       {"\n  O2      H11         1.8406        0.6767  contact\n",
        "\n  H5      H11         2.5367        1.0570\n",
        "\n  contacts        2, up to 1.9 Angstrom\n",
        "\n  clearance       0.6767 of the van der Waals radii, O2 and H11\n",
        "\n  hydrogen bonds  N9-H11...O2         1.8406 Angstrom, 174.3 degrees\n"
        "                  N3-H5...O8          1.8406 Angstrom, 174.3 degrees\n"})
    EXPECT_NE(section.find(line), std::string::npos) << line << section;
  folder.write("far.xyz", xyz({"He 0 0 5", "O 0 0 0", "H 0.757 0 -0.586", "H -0.757 0 -0.586"}));
  const Outcome none =
      folder.run({"identify", "far.xyz", "--split", "1", "--contact-distance", "vdw*0.8"});
  for (const char* line : {"\n  contacts        0, up to 0.8 of the van der Waals radii\n",
                           "\n  hydrogen bonds  none\n"})
    EXPECT_NE(none.screen.find(line), std::string::npos) << line;
}

TEST(Place, TellsOfAHydrogenBondThatIsAShortContactInOneLine) {
  const Dimers folder;
  const Outcome outcome = folder.run({"place", "formamide.xyz", "--split", "6"});
  const Lines lines = lines_of(outcome.messages);
  ASSERT_EQ(lines.size(), 3U) << outcome.messages;
  EXPECT_EQ(lines[0],
            "dravo: short contact: O2 of molecule 1 and H11 of molecule 2, 1.8406 Angstrom; "
            "hydrogen bond N9-H11...O2, 174.3 degrees");
  const Outcome other =
      folder.run({"place", "formamide.xyz", "--split", "6", "--contact-distance", "1.6"});
  EXPECT_EQ(lines_of(other.messages).at(0),
            "dravo: hydrogen bond: N9-H11...O2, 1.8406 Angstrom, 174.3 degrees");
  EXPECT_EQ(other.screen, outcome.screen);
}

TEST(Place, TellsTheThreeClosestPairs) {
  const Dimers folder;
  folder.write("methane.xyz", xyz({"C 0 0 0"}));
  folder.write("nitrogen.xyz", xyz({"N 0 0 0", "N 0 0 1"}));
  // Carbon on the axis, 4 and 5 Angstrom from the atoms; 1.70 and 1.55 are the radii.
  const Outcome outcome =
      folder.run({"place", "methane.xyz", "nitrogen.xyz", "--r", "4.5", "--phi", "90"});
  EXPECT_EQ(
      outcome.messages,
      "dravo: closest atoms: C1 and N3 4.0000, C1 and N2 5.0000 Angstrom; clearance 1.2308 of "
      "the van der Waals radii, C1 and N3\n");
}

// --- scans --------------------------------------------------------------------------------------

struct Atom {
  std::string symbol;
  Vec3 position;
};

std::vector<Atom> atoms_in(const Frame& frame) {
  std::vector<Atom> atoms;
  for (const std::string& line : frame.atoms) {
    std::istringstream in(line);
    Atom atom;
    in >> atom.symbol >> atom.position.x >> atom.position.y >> atom.position.z;
    EXPECT_TRUE(in) << line;
    atoms.push_back(atom);
  }
  return atoms;
}

const Words kRandom{"--random", "150", "--seed", "5"};

TEST(ScanContacts, CountByTheCriterionAndKeepTheirPoses) {
  const Dimers folder;
  const Words poses = Words{"--r", "3:5:0.5"} + kRandom;
  const auto rows = scanned(folder, poses).rows;
  for (const auto& [text, factor] : {std::pair{"vdw*0.8", 0.8}, {"vdw", 1.0}, {"vdw*0.3", 0.3}}) {
    const auto others = scanned(folder, poses + Words{"--contact-distance", text}).rows;
    ASSERT_EQ(others.size(), rows.size());
    std::size_t with = 0;
    for (std::size_t k = 0; k < rows.size(); ++k) {
      for (const char* same : {"r", "gamma_applied", "shortest", "clearance", "clearance_atom2"})
        EXPECT_EQ(others[k].at(same), rows[k].at(same));
      EXPECT_EQ(others[k].at("contacts") != "0", number(others[k], "clearance") <= factor);
      with += others[k].at("contacts") == "0" ? 0 : 1;
    }
    EXPECT_GT(with, 10U) << text;
    EXPECT_LT(with, rows.size() - 10U) << text;
    const auto dropped =
        scanned(folder, poses + Words{"--contact-distance", text, "--contacts", "drop"}).rows;
    EXPECT_EQ(dropped.size(), rows.size() - with);
    for (const Row& row : dropped) EXPECT_GT(number(row, "clearance"), factor);
    const auto only =
        scanned(folder, poses + Words{"--contact-distance", text, "--contacts", "only"}).rows;
    EXPECT_EQ(only.size(), with);
  }
}

TEST(ScanContacts, BeginWhereTheCriterionSaysThatAtomsTouch) {
  const Dimers folder;
  const Words poses = Words{"--r", "contact + 0:1:0.5"} + kRandom;
  for (const auto& [text, column, touching] :
       {std::tuple{"1.6", "shortest", 1.6}, {"vdw*0.8", "clearance", 0.8}}) {
    const auto rows = scanned(folder, poses + Words{"--contact-distance", text}).rows;
    ASSERT_EQ(rows.size(), 450U);
    for (std::size_t k = 0; k < rows.size(); ++k) {
      EXPECT_EQ(rows[k].at("contacts"), "0");
      if (k < 150)
        EXPECT_NEAR(number(rows[k], column), touching, 1e-5);
      else
        EXPECT_GT(number(rows[k], column), touching);
    }
  }
}

TEST(ScanContacts, HaveAClearanceOfTheAtomsThatAreNamed) {
  const Dimers folder;
  const std::map<std::string, double> radii{{"H", 1.2}, {"C", 1.7}, {"N", 1.55}, {"O", 1.52}};
  const Scan scan = scanned(folder, Words{"--r", "4:6:1"} + kRandom);
  for (std::size_t k = 0; k < scan.rows.size(); ++k) {
    const std::vector<Atom> atoms = atoms_in(scan.frames[k]);
    double smallest = 1e9;
    std::size_t one = 0, two = 0;
    for (std::size_t i = 0; i < 6; ++i)
      for (std::size_t j = 6; j < 12; ++j) {
        const double ratio = modulus(atoms[i].position - atoms[j].position) /
                             (radii.at(atoms[i].symbol) + radii.at(atoms[j].symbol));
        if (ratio > smallest) continue;
        smallest = ratio;
        one = i + 1;
        two = j + 1;
      }
    EXPECT_NEAR(number(scan.rows[k], "clearance"), smallest, 1e-6);
    EXPECT_EQ(scan.rows[k].at("clearance_atom1"), std::to_string(one));
    EXPECT_EQ(scan.rows[k].at("clearance_atom2"), std::to_string(two));
  }
}

TEST(ScanContacts, AreAKeyOfThePlanThatAnotherScanMustShare) {
  const Dimers folder;
  folder.write("plan.toml", "r = 4\nrandom = 40\ncontact-distance = \"vdw * 0.8\"\n");
  folder.write("number.toml", "r = 4\nrandom = 40\ncontact-distance = 1.6\n");
  const Words same{"--r", "4", "--random", "40", "--contact-distance", "vdw*0.8"};
  const auto rows = scanned(folder, {"--plan", "plan.toml"}).rows;
  EXPECT_EQ(scanned(folder, same).rows, rows);
  EXPECT_EQ(run_scan(folder, {"--plan", "number.toml", "--resume", "--quiet"}).messages,
            "dravo: scan.json: is of another scan: contact-distance was vdw*0.8, is 1.6\n");
  EXPECT_EQ(run_scan(folder, {"--r", "4", "--random", "40", "--resume", "--quiet"}).messages,
            "dravo: scan.json: is of another scan: contact-distance was vdw*0.8, is not given\n");
  EXPECT_EQ(run_scan(folder, same + Words{"--resume", "--quiet"}).messages, "");
}

TEST(ScanContacts, OfElementsWithoutRadiusHaveEmptyCells) {
  const Dimers folder;
  const Outcome outcome =
      folder.run({"scan", "water.xyz", "radon.xyz", "--r", "4:5:1", "-o", "around"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_NE(outcome.messages.find("dravo: there is no clearance: no van der Waals radius is known "
                                  "of 1 atom Rn (4)\n"),
            std::string::npos);
  const Lines rows = lines_of(outcome.files.at("around.csv"));
  ASSERT_EQ(rows.size(), 3U);
  EXPECT_TRUE(rows[1].ends_with(",0,,,")) << rows[1];
  EXPECT_EQ(outcome.files.at("around.xyz").find("clearance"), std::string::npos);
  folder.write("both.xyz", xyz({"Rn 0 0 4", "O 0 0 0", "H 0.757 0 -0.586", "H -0.757 0 -0.586"}));
  const auto json = folder.identified({"both.xyz"});
  for (const char* key : {"clearance", "clearance_atom1", "clearance_atom2"})
    EXPECT_TRUE(json.at(key).is_null()) << key;
  EXPECT_TRUE(json.at("closest")[0].at("ratio").is_null());
}

// --- refusals -----------------------------------------------------------------------------------

TEST(ContactDistance, RefusesWhatIsNoCriterion) {
  const Dimers folder;
  const std::string expected =
      "expected a distance in Angstrom (1.6) or a factor of the sum of the van der Waals radii "
      "(vdw*0.8), found \"near\"";
  for (const char* command : {"place", "identify"}) {
    const Outcome outcome = folder.run({command, kInput, "--contact-distance", "near"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.messages, "dravo: --contact-distance: " + expected + "\n" + kUsage);
  }
  const Outcome scan = run_scan(folder, kOnePose + Words{"--contact-distance", "near"});
  EXPECT_EQ(scan.status, 2);
  EXPECT_EQ(scan.messages, "dravo: --contact-distance: " + expected + "\nnear\n^^^^\n");
}

TEST(ContactDistance, NamesTheElementThatHasNoRadius) {
  const Dimers folder;
  const Words pair{"radon.xyz", "water.xyz", "--r", "4", "--contact-distance", "vdw*0.8"};
  for (const char* command : {"place", "scan"}) {
    const Outcome outcome = folder.run(Words{command} + pair);
    EXPECT_EQ(outcome.status, 2);
    EXPECT_NE(outcome.messages.find("Rn of molecule 1 (atom 1): no van der Waals radius is known; "
                                    "give the contact distance in Angstrom\n"),
              std::string::npos)
        << outcome.messages;
    EXPECT_EQ(outcome.screen, "");
  }
}

TEST(ContactDistance, IsNotForTheFilesOfQnDravo) {
  const Dimers folder;
  const Outcome outcome =
      run_scan(folder, kOnePose + Words{"--files", "--contact-distance", "1.6"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_EQ(outcome.messages,
            "dravo: --contact-distance: with files the short contacts are those of qn-dravo, 1.9 "
            "Angstrom and less; leave contact-distance out\n1.6\n^^^\n");
}

}  // namespace
}  // namespace dravo::test
