/// `dravo export`: its folder holds the poses as they stand in frames and tables, and what it
/// refuses leaves nothing.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "cli/exported.hpp"
#include "results/checksum.hpp"

namespace dravo::test {
namespace {

namespace fs = std::filesystem;
using Json = nlohmann::json;

const Words kSplit{"--split", "6"};

std::string hex_checksum_of(const std::string& text) {
  Checksum checksum;
  checksum.add(text);
  std::array<char, 17> digits{};
  std::snprintf(digits.data(), digits.size(), "%016lx", checksum.value());
  return digits.data();
}

/// Names of the files of the exported folder.
std::set<std::string> names_in(const ExportFolder& folder) {
  std::set<std::string> names;
  for (const auto& [name, text] : folder.tree())
    if (name.starts_with("qc")) names.insert(name);
  return names;
}

std::set<std::string> with_scripts(std::set<std::string> names) {
  for (const char* name :
       {"folders.txt", "manifest.json", "poses.csv", "run-pose.sh", "run.sbatch", "run.sh"})
    names.insert(std::string("qc/") + name);
  return names;
}

struct ProgramFiles {
  const char* program;
  std::vector<const char*> inputs;
  Words more;
};

TEST(ExportedPair, HasTheFilesOfEveryProgram) {
  const std::vector<ProgramFiles> programs{
      {"psi4", {"pair.dat"}, {}},
      {"psi4", {"molecule-2.dat"}, {"--ghost", "1"}},
      {"orca", {"molecule-1.inp", "molecule-2.inp", "pair.inp"}, {}},
      {"gaussian", {"pair.gjf"}, {}},
      {"gaussian", {"molecule-1.gjf", "molecule-2.gjf", "pair.gjf"}, {"--no-counterpoise"}},
      {"nwchem", {"pair.nw"}, {}},
      {"qchem", {"molecule-1.in", "molecule-2.in", "pair.in"}, {}},
      {"cp2k", {"pair.inp"}, {}},
      {"gamess", {"molecule-1.inp", "molecule-2.inp", "pair.inp"}, {}},
      {"xtb", {"molecule-1.xyz", "molecule-2.xyz", "pair.xyz"}, {}},
      {"qcschema", {"molecule-1.json", "molecule-2.json", "pair.json"}, {}},
      {"template", {"pair.com"}, {"--template", "own.com"}}};
  for (const ProgramFiles& program : programs) {
    const ExportFolder folder;
    folder.write("own.com", "{symbols_xyz}\n");
    const Outcome outcome =
        folder.run(export_words("dimer.xyz", kSplit + program.more, program.program));
    EXPECT_EQ(outcome.status, 0) << program.program << outcome.messages;
    EXPECT_EQ(outcome.screen, "");
    const std::string files = program.inputs.size() == 1 ? "1 input file" : "3 input files";
    EXPECT_EQ(outcome.messages,
              "dravo: wrote qc: 1 pose for " + std::string(program.program) + ", " + files +
                  " each\n"
                  "dravo: qc/run.sh computes them, and dravo collect qc reads the results\n");
    std::set<std::string> names{"qc/000/000001/pose.xyz"};
    for (const char* input : program.inputs) names.insert(std::string("qc/000/000001/") + input);
    EXPECT_EQ(names_in(folder), with_scripts(names)) << program.program;
    for (const char* script : {"run-pose.sh", "run.sh", "run.sbatch"})
      EXPECT_EQ(::access((folder.path() / "qc" / script).c_str(), X_OK), 0) << script;
    EXPECT_EQ(folder.exported_rows(), (Lines{"index", "1"}));
    EXPECT_EQ(folder.read("qc/folders.txt"), "000/000001\n");
  }
}

TEST(ExportedPair, IsWhereTheFileHasIt) {
  const ExportFolder folder;
  folder.quietly(export_words("dimer.xyz", kSplit));
  // The lines of the file itself: symbol and coordinates with six decimals or more.
  const Lines lines = lines_of(file_text(kFormamide));
  const std::vector<Lines> atoms = atoms_of_pose(folder, "1");
  ASSERT_EQ(atoms.size(), 12U);
  for (std::size_t k = 0; k < atoms.size(); ++k) {
    std::istringstream in(lines.at(k + 2));
    std::string symbol;
    std::array<double, 3> position{};
    in >> symbol >> position[0] >> position[1] >> position[2];
    EXPECT_EQ(atoms[k][0], symbol);
    for (std::size_t i = 0; i < 3; ++i) {
      EXPECT_EQ(atoms[k][i + 1].size() - atoms[k][i + 1].find('.'), 9U) << "eight decimals";
      EXPECT_NEAR(std::stod(atoms[k][i + 1]), position.at(i), 5e-9);
    }
    EXPECT_EQ(atoms[k][4], k < 6 ? "1" : "2");
  }
}

TEST(ExportedFrames, AreThoseThatWereChosen) {
  const ExportFolder folder;
  folder.quietly({"scan", kInput, "--r", "4", "--random", "5", "--output", "s"});
  const std::vector<Frame> frames = frames_of(folder.read("s.xyz"));
  const std::vector<std::pair<std::string, std::vector<std::string>>> cases{
      {"all", {"1", "2", "3", "4", "5"}}, {"2:3", {"2", "3"}}, {"4", {"4"}}, {"1,5", {"1", "5"}}};
  for (const auto& [choice, indices] : cases) {
    fs::remove_all(folder.path() / "qc");
    folder.quietly(export_words("s.xyz", {"--frame", choice}));
    Lines rows{"index"};
    rows.insert(rows.end(), indices.begin(), indices.end());
    EXPECT_EQ(folder.exported_rows(), rows) << choice;
    for (const std::string& index : indices)
      EXPECT_EQ(atoms_of_pose(folder, index), atoms_in(frames.at(std::stoul(index) - 1)));
  }
}

TEST(ExportedFrames, StandInFoldersOfAThousand) {
  const ExportFolder folder;
  std::string frames;
  for (int k = 1; k <= 1234; ++k) frames += "2\n\nHe 0 0 0\nHe 0 0 " + std::to_string(k) + "\n";
  folder.write("helium.xyz", frames);
  folder.quietly(export_words("helium.xyz", {"--split", "1", "--frame", "17,999,1000,1234"}));
  EXPECT_EQ(folder.read("qc/folders.txt"), "000/000017\n000/000999\n001/001000\n001/001234\n");
  const std::vector<Lines> atoms = atoms_of_pose(folder, "1234");
  EXPECT_EQ(atoms.at(1), (Lines{"He", "0.00000000", "0.00000000", "1234.00000000", "2"}));
}

struct KindOfScan {
  const char* title;
  Words words;
};

std::vector<KindOfScan> kinds_of_scans() {
  return {{"as qn-dravo", {"--r", "4", "--random", "9", "--as-qn-dravo"}},
          {"singular angles", Words{"--r", "3", "--theta", "0:180:90", "--phi", "0,90,180"} +
                                  Words{"--alpha", "0", "--beta", "0,90", "--gamma", "0"}},
          {"exact", {"--r", "4", "--random", "9", "--exact"}},
          {"exact singular angles", Words{"--r", "3", "--theta", "0:180:90", "--exact"} +
                                        Words{"--alpha", "0", "--beta", "0,90", "--gamma", "0"}},
          {"above contact", {"--r", "contact + 0,0.5", "--random", "4"}},
          {"with contacts", {"--r", "3", "--random", "20", "--contacts", "only"}},
          {"best", {"--r", "4", "--random", "20", "--best", "5", "--by", "-clearance"}}};
}

TEST(ExportedScan, HasTheAtomsOfItsFramesAndTheRowsOfItsTable) {
  for (const KindOfScan& kind : kinds_of_scans()) {
    const ExportFolder folder;
    folder.quietly(Words{"scan", kInput, "--output", "s"} + kind.words);
    folder.quietly(export_words("s"));
    EXPECT_EQ(folder.read("qc/poses.csv"), folder.read("s.csv")) << kind.title;
    const std::vector<Frame> frames = frames_of(folder.read("s.xyz"));
    ASSERT_GE(frames.size(), 3U) << kind.title;
    for (const Frame& frame : frames)
      EXPECT_EQ(atoms_of_pose(folder, frame.values.at("index")), atoms_in(frame)) << kind.title;
  }
}

TEST(ExportedScan, NeedsNoFrames) {
  const ExportFolder folder;
  folder.quietly({"scan", kInput, "--r", "4", "--random", "6", "--output", "s"});
  folder.quietly(export_words("s"));
  const Files expected = folder.tree();
  for (const char* writing : {"--table", "--moving", "--files"}) {
    const ExportFolder other;
    other.quietly({"scan", kInput, "--r", "4", "--random", "6", "--output", "s", writing});
    for (const char* name : {"s", "s.csv", "s.json"}) {
      fs::remove_all(other.path() / "qc");
      other.quietly(export_words(name));
      for (const auto& [file, text] : other.tree()) {
        if (!file.starts_with("qc/")) continue;
        EXPECT_TRUE(text == expected.at(file)) << file << writing;
      }
    }
  }
}

/// A scan of 40 poses, and what its table says of them.
class ChosenPoses : public ::testing::Test {
 protected:
  ChosenPoses() {
    folder_.quietly({"scan", kInput, "--r", "3.5", "--random", "40", "--table", "--output", "s"});
    rows_ = rows_of(folder_.read("s.csv"));
  }

  /// Numbers of the rows that were exported, which are those of the table.
  std::vector<std::string> exported(const Words& choice, const std::string& name = "s") {
    fs::remove_all(folder_.path() / "qc");
    folder_.quietly(export_words(name, choice));
    const Lines table = lines_of(folder_.read(name + ".csv"));
    std::vector<std::string> indices;
    for (const std::string& row : folder_.exported_rows()) {
      EXPECT_NE(std::find(table.begin(), table.end(), row), table.end()) << row;
      if (row != table[0]) indices.push_back(row.substr(0, row.find(',')));
    }
    return indices;
  }

  /// The poses of the table with the smallest values of a column, in the order of the table.
  static std::vector<std::string> smallest(std::vector<Row> rows, std::size_t count,
                                           const std::string& column, double sign = 1.0) {
    const auto value = [&](const Row& row) { return sign * number(row, column); };
    std::stable_sort(rows.begin(), rows.end(),
                     [&](const Row& a, const Row& b) { return value(a) < value(b); });
    rows.resize(std::min(count, rows.size()));
    std::vector<std::string> indices;
    for (const Row& row : rows) indices.push_back(row.at("index"));
    std::sort(indices.begin(), indices.end(),
              [](const auto& a, const auto& b) { return std::stoi(a) < std::stoi(b); });
    return indices;
  }

  ExportFolder folder_;
  std::vector<Row> rows_;
};

using Indices = std::vector<std::string>;

TEST_F(ChosenPoses, AreNamed) {
  EXPECT_EQ(exported({"--poses", "17"}), Indices{"17"});
  EXPECT_EQ(exported({"--poses", "40,3,11:15:2"}), (Indices{"3", "11", "13", "15", "40"}));
  EXPECT_EQ(exported({"--poses", "39:60"}), (Indices{"39", "40"}));
  EXPECT_EQ(exported({"--poses", "all"}).size(), 40U);
}

TEST_F(ChosenPoses, AreTheBest) {
  EXPECT_EQ(exported({"--best", "4"}), smallest(rows_, 4, "shortest"));
  EXPECT_EQ(exported({"--best", "4", "--by", "-clearance"}), smallest(rows_, 4, "clearance", -1.0));
  EXPECT_EQ(exported({"--best", "100"}).size(), 40U);
}

TEST_F(ChosenPoses, SatisfyAConditionAndAreTheBestOfThose) {
  std::vector<Row> free;
  for (const Row& row : rows_)
    if (row.at("contacts") == "0" && number(row, "theta") <= 90.0) free.push_back(row);
  ASSERT_GE(free.size(), 5U);
  ASSERT_LE(free.size(), 30U);
  const std::string condition = "contacts == 0 and theta <= 90";
  EXPECT_EQ(exported({"--where", condition}), smallest(free, 40, "index"));
  EXPECT_EQ(exported({"--where", condition, "--best", "3"}), smallest(free, 3, "shortest"));
  std::vector<Row> early;
  for (const Row& row : free)
    if (number(row, "index") <= 20) early.push_back(row);
  ASSERT_GE(early.size(), 1U);
  EXPECT_EQ(exported({"--where", condition, "--poses", "1:20"}), smallest(early, 40, "index"));
}

TEST_F(ChosenPoses, OfATableOfEnergiesHaveItsColumns) {
  const ReciprocalDistances program(folder_);
  const Outcome outcome = folder_.run(Words{"energy", "s"} + program.options());
  ASSERT_EQ(outcome.status, 0) << outcome.messages;
  std::vector<Row> computed;
  for (const Row& row : rows_of(folder_.read("s-command.csv")))
    if (row.at("status_command") == "ok") computed.push_back(row);
  ASSERT_GE(computed.size(), 4U);
  ASSERT_LT(computed.size(), 40U) << "some clash";
  const std::string column = "e_int_command_kcal_mol";
  EXPECT_EQ(exported({"--best", "3", "--by", column}, "s-command"), smallest(computed, 3, column));
  EXPECT_EQ(exported({"--where", "status_command == ok"}, "s-command"),
            smallest(computed, 40, "index"));
  EXPECT_TRUE(folder_.exported_rows().at(0).ends_with("," + column + ",status_command"));
}

TEST(ExportedDocking, HasItsMinimaByTheirRanks) {
  if (!has_libxtb()) GTEST_SKIP() << "built without libxtb";
  const ExportFolder folder;
  folder.quietly({"dock", "dimer.xyz", "--split", "6", "--starts", "12", "--output", "d"});
  const Lines table = lines_of(folder.read("d.csv"));
  const std::vector<Frame> minima = frames_of(folder.read("d.xyz"));
  ASSERT_GE(minima.size(), 3U);
  const std::vector<std::pair<Words, std::size_t>> cases{{{}, minima.size()},
                                                         {{"--where", "rank <= 2"}, 2},
                                                         {{"--best", "3"}, 3},
                                                         {{"--poses", "1"}, 1}};
  for (const auto& [choice, count] : cases) {
    fs::remove_all(folder.path() / "qc");
    folder.quietly(export_words("d", choice));
    EXPECT_EQ(folder.exported_rows(),
              Lines(table.begin(), table.begin() + static_cast<std::ptrdiff_t>(count) + 1));
    for (std::size_t k = 0; k < count; ++k)
      EXPECT_EQ(atoms_of_pose(folder, std::to_string(k + 1)), atoms_in(minima[k]));
  }
}

TEST(ExportedManifest, TellsWhatWasExported) {
  const ExportFolder folder;
  folder.quietly({"scan", kInput, "--r", "4", "--random", "3", "--output", "s"});
  folder.quietly(export_words("s", {"--keywords", "scf_type df; freeze_core true;", "--charges",
                                    "2,-2", "--multiplicities", "1,3", "--poses", "2:3"}));
  const Json manifest = Json::parse(folder.read("qc/manifest.json"));
  EXPECT_EQ(manifest["program"], "psi4");
  EXPECT_EQ(manifest["method"], "hf");
  EXPECT_EQ(manifest["basis"], "sto-3g");
  EXPECT_EQ(manifest["keywords"], (Json{"scf_type df", "freeze_core true"}));
  EXPECT_EQ(manifest["charges"], (Json{2, -2}));
  EXPECT_EQ(manifest["multiplicities"], (Json{1, 3}));
  EXPECT_EQ(manifest["treatment"], "counterpoise");
  EXPECT_EQ(manifest["source"], "scan s");
  EXPECT_EQ(manifest["selection"], "2:3");
  EXPECT_EQ(manifest["source_xxh3"], Json::parse(folder.read("s.json"))["table_xxh3"]);
  EXPECT_EQ(manifest["poses_csv_xxh3"], hex_checksum_of(folder.read("qc/poses.csv")));
  EXPECT_EQ(manifest["n1"], 6);
  EXPECT_EQ(manifest["symbols"].size(), 12U);
  ASSERT_EQ(manifest["poses"].size(), 2U);
  for (const int k : {0, 1}) {
    const Json& pose = manifest["poses"][static_cast<std::size_t>(k)];
    EXPECT_EQ(pose["index"], k + 2);
    const std::string name = "000/00000" + std::to_string(k + 2);
    EXPECT_EQ(pose["folder"], name);
    const Lines lines = lines_of(folder.read("qc/" + name + "/pose.xyz"));
    EXPECT_EQ(pose["geometry_xxh3"],
              hex_checksum_of(joined(Lines(lines.begin() + 2, lines.end()))));
  }
}

TEST(ExportedFolder, MayHaveAnyName) {
  const ExportFolder folder;
  const std::string absolute = (folder.path() / "whole").string();
  for (const std::string name :
       {"with blanks", "-hyphen", "ö \xE9 '", "slash/", "./here", absolute.c_str()}) {
    folder.quietly({"export", "xtb", "dimer.xyz", "--split", "6", "-o" + name});
    EXPECT_TRUE(fs::exists(folder.path() / name / "manifest.json")) << name;
    const Outcome collected = folder.run({"collect", "--quiet", "--", name});
    EXPECT_EQ(collected.status, 0) << collected.messages;
    EXPECT_EQ(collected.screen, "index,e_int_xtb_kcal_mol,status_xtb\n1,,missing\n");
  }
  fs::create_directory(folder.path() / "empty");
  folder.quietly({"export", "xtb", "dimer.xyz", "--split", "6", "-o", "empty"});
  EXPECT_TRUE(fs::exists(folder.path() / "empty/manifest.json"));
}

TEST(ExportedTemplate, HasItsEndingWhereScriptsCanHaveIt) {
  const std::vector<std::pair<const char*, const char*>> endings{
      {"own.com", ".com"},    {"own", ".inp"},     {"own.in put", ".inp"}, {"own.it's", ".inp"},
      {"own.failed", ".inp"}, {"own.out", ".inp"}, {"own.", ".inp"}};
  for (const auto& [file, ending] : endings) {
    const ExportFolder folder;
    folder.write(file, "{symbols_xyz}\n");
    folder.quietly(export_words("dimer.xyz", kSplit + Words{"--template", file}, "template"));
    EXPECT_TRUE(fs::exists(folder.path() / pose_folder("1") / (std::string("pair") + ending)))
        << file;
  }
}

/// Words, and the message that they get.
using Refusals = std::vector<std::pair<Words, std::string>>;

/// Every one leaves all files as they are.
void expect_refusals(const ExportFolder& folder, const Refusals& refusals) {
  const Files before = folder.tree();
  for (const auto& [words, message] : refusals) {
    const Outcome outcome = folder.run(words);
    EXPECT_EQ(outcome.status, 2) << message;
    EXPECT_EQ(outcome.screen, "") << message;
    EXPECT_EQ(outcome.messages, "dravo: " + message + "\n");
    expect_files(folder.tree(), before, "after " + message);
    EXPECT_FALSE(fs::exists(folder.path() / "qc.part")) << message;
  }
}

TEST(ExportedPair, HasPerturbationTheoryInOneFile) {
  const ExportFolder folder;
  folder.quietly(
      {"export", "psi4", "dimer.xyz", "--split", "6", "--sapt", "--basis", "sto-3g", "-o", "qc"});
  EXPECT_TRUE(folder.read(pose_folder("1") + "/pair.dat").ends_with("\nenergy('sapt0')\n"));
}

TEST(RefusedExport, OfAJobThatTheProgramDoesNotHave) {
  const ExportFolder folder;
  const auto words = [](const std::string& program, const Words& more) {
    return Words{"export", program, "dimer.xyz", "--split", "6", "-o", "qc"} + more;
  };
  const Words hf{"--method", "hf"};
  expect_refusals(
      folder,
      {{words("mopac", {}),
        "PROGRAM: expected one of psi4, orca, gaussian, nwchem, qchem, cp2k, gamess, xtb, qcschema, "
        "template, found \"mopac\""},
       {words("psi4", {"--basis", "sto-3g"}), "--method: psi4 needs one, such as --method hf"},
       {words("orca", {"--basis", "sto-3g"}), "--method: orca needs one, such as --method hf"},
       {words("psi4", hf), "--basis: psi4 needs one, such as --basis cc-pvdz"},
       {words("psi4", hf + Words{"--basis", ""}),
        "--basis: psi4 needs one, such as --basis cc-pvdz"},
       {words("orca", hf), "--basis: orca needs one, such as --basis cc-pvdz"},
       {words("xtb", {"--basis", "sto-3g"}), "--basis: xtb has no choice of basis functions"},
       {words("xtb", {"--method", "am1"}),
        "--method: expected gfn0, gfn1, gfn2 or gfnff for xtb, found \"am1\""},
       {words("gamess", hf + Words{"--basis", "def2-svp"}),
        "--basis: expected one of sto-3g, 3-21g, 6-31g, 6-31g*, 6-31g(d), 6-31g**, 6-31g(d,p), "
        "6-311g**, cc-pvdz, cc-pvtz, cc-pvqz, aug-cc-pvdz, aug-cc-pvtz, aug-cc-pvqz, or the words "
        "of a $BASIS group such as GBASIS=CCD, found \"def2-svp\""},
       {words("psi4", hf + Words{"--basis", "sto-3g\nset x"}),
        "--basis: expected one line of at most 200 printable characters, found \"sto-3g?set x\""},
       {words("orca", kSmall + Words{"--sapt"}),
        "--sapt: orca has no symmetry-adapted perturbation theory here; psi4 has"},
       {words("psi4", {"--method", "sSAPT0", "--basis", "sto-3g"}),
        "--method: sSAPT0 needs the option --sapt"},
       {words("psi4", kSmall + Words{"--sapt"}), "--method: hf does not go with --sapt"},
       {words("psi4", {"--method", "hf'", "--basis", "sto-3g"}),
        "--method: expected the name of a method, found \"hf'\""},
       {words("xtb", {"--ghost", "1"}), "--ghost: xtb has no basis functions to lend"},
       {words("xtb", {"--counterpoise"}),
        "--counterpoise: xtb has no basis functions to correct for"},
       {words("qcschema", kSmall + Words{"--keywords", "scf_type"}),
        "--keywords: expected NAME=VALUE for qcschema, found \"scf_type\""},
       {words("psi4", kSmall + Words{"--charges", "30,0"}),
        "--charges: molecule 1 cannot have charge +30: its nuclei have +24"},
       {words("psi4", kSmall + Words{"--charges", "1,0"}),
        "--multiplicities: molecule 1 with charge +1 has 23 electrons: expected an even "
        "multiplicity up to 24, found 1"},
       {words("psi4", kSmall + Words{"--multiplicities", "1,0"}),
        "--multiplicities: molecule 2 with charge 0 has 24 electrons: expected an odd "
        "multiplicity up to 25, found 0"},
       {words("psi4", kSmall + Words{"--multiplicities", "1,27"}),
        "--multiplicities: molecule 2 with charge 0 has 24 electrons: expected an odd "
        "multiplicity up to 25, found 27"},
       {words("psi4", kSmall + Words{"--charges", "1"}),
        "--charges: expected two whole numbers, of molecule 1 and molecule 2, such as 0,-1, found "
        "\"1\""}});
}

TEST(RefusedExport, OfATemplateThatIsNone) {
  const ExportFolder folder;
  folder.write("own.com", "{symbols_xyz}\n{charge} {radius}\n");
  folder.write("good.com", "{symbols_xyz}\n");
  const auto words = [](const std::string& program, const Words& more) {
    return Words{"export", program, "dimer.xyz", "--split", "6", "-o", "qc"} + more;
  };
  expect_refusals(
      folder,
      {{words("template", {}), "template: expected --template FILE, the text of the input files"},
       {words("psi4", kSmall + Words{"--template", "good.com"}),
        "--template: psi4 has input files of its own; with a template PROGRAM is \"template\""},
       {words("template", {"--template", "none.com"}),
        "none.com: cannot read: No such file or directory"},
       {words("template", {"--template", "own.com"}),
        "own.com:2: {radius} stands for nothing; there are index, method, basis, keywords, "
        "charge, charge_1, charge_2, multiplicity, multiplicity_1, multiplicity_2, atoms, atoms_1, "
        "atoms_2, symbols_xyz, symbols_xyz_1, symbols_xyz_2, cores\n{charge} {radius}\n         "
        "^^^^^^^^"},
       {words("template", {"--template", "good.com", "--run", "mine > {output}"}),
        "--run: expected {input}, the name of the input file, found none in \"mine > {output}\""},
       {words("template", {"--template", "good.com", "--run", "mine {input}\nrm"}),
        "--run: expected one line, found several; a script may have more"}});
}

TEST(RefusedExport, OfPosesThatAreNotThere) {
  const ExportFolder folder;
  folder.quietly({"scan", kInput, "--r", "4", "--random", "3", "--table", "--output", "s"});
  folder.write("begun.progress", "of a scan in work");
  folder.write("two.xyz", "2\n\nHe 0 0 0\nHe 0 0 3\n2\n\nHe 0 0 0\nNe 0 0 3\n");
  const auto words = [](const std::string& name, const Words& more) {
    return export_words(name, more, "xtb");
  };
  const std::string only_frames = "is for the frames of a file, but s is a scan or a docking";
  const std::string only_poses = "is for the poses of a scan or a docking, but dimer.xyz is a file";
  expect_refusals(
      folder,
      {{words("none", {}),
        "none: there is no such file, and no scan or docking of this name, which "
        "has none.json"},
       {words("begun", {}),
        "begun: is unfinished; the command that makes it goes on with --resume"},
       {words("s", {"--frame", "2"}), "--frame " + only_frames},
       {words("s", {"--split", "6"}), "--split " + only_frames},
       {words("dimer.xyz", {"--where", "r < 3"}), "--where " + only_poses},
       {words(kInput, {"--frame", "1:2"}),
        kInput + ": holds one pair; --frame is for files with several"},
       {words("dimer.xyz", {"--poses", "2"}), "--poses " + only_poses},
       {words("dimer.xyz", {"--best", "2"}), "--best " + only_poses},
       {words("s", {"--where", "radius < 3"}),
        "--where: there is no column \"radius\"; there are index, r, theta, phi, alpha, beta, "
        "gamma, r_applied, theta_applied, phi_applied, alpha_applied, beta_applied, gamma_applied, "
        "shortest, contacts, clearance, clearance_atom1, clearance_atom2"},
       {words("s", {"--where", "r < 3"}), "--where: no pose of s.csv has r < 3"},
       {words("s", {"--where", "r = 3"}),
        "--where: expected comparisons such as \"contacts == 0 and shortest < 3\", with one of == "
        "!= < <= > >=, found \"r = 3\""},
       {words("s", {"--poses", "4"}),
        "--poses: s.csv has no pose 4; the scan has 3 poses and may have left some of them out"},
       {words("two.xyz", {"--split", "1", "--frame", "all"}),
        "frame 2: atom 2 is Ne, in the first frame He; the frames must be of one pair, with its atoms "
        "in one order"},
       {words("two.xyz", {"--split", "1", "--frame", "3"}),
        "two.xyz: there is no frame 3: the file holds 2 frames"},
       {words("dimer.xyz", {"--split", "6", "--frame", "0"}),
        "--frame: expected a whole number from 1 on, found \"0\"\n0\n^"}});
}

TEST(RefusedExport, OfAPartOfADocking) {
  if (!has_libxtb()) GTEST_SKIP() << "built without libxtb";
  const ExportFolder folder;
  folder.quietly({"dock", "dimer.xyz", "--split", "6", "--starts", "2", "--shard", "1/2"});
  expect_refusals(
      folder, {{export_words("dock-1-of-2"),
                "dock-1-of-2: is a part of a docking; dravo merge makes the minima of all parts"}});
}

TEST(RefusedExport, LeavesWhatIsThere) {
  const ExportFolder folder;
  fs::create_directory(folder.path() / "qc");
  folder.write("qc/mine.txt", "of somebody");
  folder.write("file", "of somebody");
  const auto to = [](const std::string& name) {
    return Words{"export", "xtb", "dimer.xyz", "--split", "6", "-o", name};
  };
  expect_refusals(folder,
                  {{to(""), "--output: expected the name of a folder, found none"},
                   {to("qc"), "qc: exists already; choose another --output, or remove it"},
                   {to("qc/"), "qc: exists already; choose another --output, or remove it"},
                   {to("file"), "file: exists already; choose another --output, or remove it"},
                   {to("file/qc"), "file: is not a folder"},
                   {to("none/qc"), "none: there is no such folder"}});
  fs::create_directory(folder.path() / "other.part");
  folder.write("other.part/theirs.txt", "of another export");
  expect_refusals(
      folder, {{to("other"),
                "other.part: is there already, left of an export that was stopped, or of one that "
                "goes on; remove it if it is not needed"}});
}

TEST(InterruptedExport, LeavesNothing) {
  const ExportFolder folder;
  folder.quietly({"scan", kInput, "--r", "4", "--random", "30", "--table", "--output", "s"});
  const Files before = folder.tree();
  for (const auto& [signal, status] : {std::pair{SIGINT, 130}, std::pair{SIGTERM, 143}}) {
    const std::string at_a_write = std::to_string(signal) + " 20 1";
    const Outcome outcome = run_command(folder, export_words("s"), Screen::kept, [&] {
      ::setenv("LD_PRELOAD", DRAVO_WATCHED_SYSTEM, 1);
      ::setenv("ASAN_OPTIONS", "detect_leaks=0:verify_asan_link_order=0", 1);
      ::setenv("WATCHED_SIGNAL", at_a_write.c_str(), 1);
    });
    EXPECT_EQ(outcome.status, status);
    EXPECT_EQ(outcome.screen, "");
    EXPECT_EQ(outcome.messages, "dravo: interrupted: qc is not written\n");
    expect_files(folder.tree(), before, "after a signal");
    EXPECT_FALSE(fs::exists(folder.path() / "qc.part"));
  }
  folder.quietly(export_words("s"));
}

}  // namespace
}  // namespace dravo::test
