/// Commands that write, each as small as it can be, for tests that let a call of the system fail.
#pragma once

#include <ostream>
#include <set>
#include <string>
#include <vector>

#include "cli/command.hpp"

namespace dravo::test {

struct FaultCase {
  std::string title;
  std::vector<Words> before;  ///< what makes the files that the command reads or replaces
  Words command;
  Words again;  ///< what is added to make the same files over complete ones, or to go on
  bool makes_room = false;  ///< earlier results go before the new ones are made
  bool once = false;        ///< over complete results it is refused
};

inline void PrintTo(const FaultCase& tried, std::ostream* out) { *out << tried.title; }

inline const Words kResume{"--resume"};
inline const Words kReplace{"--overwrite"};
inline const Words kQuiet{"--quiet", "--threads", "1"};

/// Three chunks of poses, one part of them.
inline Words scan_of(const Words& more, const std::string& poses = "600") {
  return Words{"scan", "dimer.xyz", "--r", "3.5", "--random", poses} + kQuiet + more;
}

inline Words part_of(const std::string& shard, const Words& more = {}) {
  return scan_of(Words{"--shard", shard} + more, "40");
}

inline const Words kWaters{"scan", "waters.xyz", "--split", "3", "--r", "3:4:0.5"};
inline const Words kEcho{"--energy", "command",        "--run", "cat {xyz}; echo energy 1",
                         "--read",   "energy ([0-9]+)"};

/// Files that are written at once.
inline std::vector<FaultCase> cases_of_texts() {
  const Words place{"place", "dimer.xyz", "--r", "4", "-o", "placed.xyz"};
  const Words earlier_place{"place", "dimer.xyz", "--r", "5", "-o", "placed.xyz"};
  return {
      {"place", {}, place, kReplace},
      {"place_over_earlier", {earlier_place}, place + kReplace, {}},
      {"convert", {}, {"convert", "dimer.xyz", "-o", "pair.xyz"}, kReplace},
      {"prepare", {}, {"prepare", "dimer.xyz", "--r", "4", "-o", "in.xyz"}, kReplace},
      {"draw", {}, {"draw", "dimer.xyz", "-o", "dimer.svg"}, kReplace},
      {"draw_for_chemiscope", {scan_of({}, "10")}, {"draw", "scan", "-o", "shown.json"}, kReplace},
      {"view", {}, {"view", "dimer.xyz", "-o", "dimer.html"}, kReplace},
      {"view_of_scan", {scan_of({}, "10")}, {"view", "scan", "-o", "scan.html"}, kReplace}};
}

/// Files that grow.
inline std::vector<FaultCase> cases_of_long_texts() {
  const Words identify{"identify", "scan.xyz", "--frame", "all", "-o", "frames.csv"};
  const Words extract{"extract", "scan", "--poses", "3:7", "-o", "some.xyz"};
  const Words earlier_extract{"extract", "scan", "--poses", "1", "-o", "some.xyz"};
  return {{"identify", {scan_of({}, "10")}, identify, kReplace},
          {"extract", {scan_of({}, "10")}, extract, kReplace},
          {"extract_over_earlier", {scan_of({}, "10"), earlier_extract}, extract + kReplace, {}}};
}

/// Folders for a program of quantum chemistry, and what is read of them.
inline std::vector<FaultCase> cases_of_exports() {
  const Words pair{"export", "xtb", "waters.xyz", "--split", "3", "--quiet", "-o", "qc"};
  const Words scan{"export", "psi4",    "scan", "--method", "hf", "--basis",
                   "sto-3g", "--poses", "3:4",  "--quiet",  "-o", "qc"};
  const Words collect{"collect", "qc", "--quiet", "-o", "energies.csv"};
  return {{"export", {}, pair, {}, false, true},
          {"export_of_scan", {scan_of({}, "10")}, scan, {}, false, true},
          {"collect", {pair}, collect, kReplace}};
}

inline std::vector<FaultCase> cases_of_scans() {
  return {{"scan", {}, scan_of({}), kResume},
          {"scan_table", {}, scan_of({"--table"}), kResume},
          {"scan_moving", {}, scan_of({"--moving"}), kResume},
          {"scan_best", {}, scan_of({"--best", "5"}), kResume},
          {"scan_files", {}, scan_of({"--files"}, "2"), kResume},
          {"scan_over_earlier", {scan_of({}, "30")}, scan_of(kReplace, "20"), {}, true},
          {"scan_files_over_earlier",
           {scan_of({"--files"}, "2")},
           scan_of({"--files", "--overwrite", "--seed", "1"}, "2"),
           {},
           true},
          {"scan_best_over_earlier",
           {scan_of({"--moving"}, "30")},
           scan_of({"--best", "5", "--overwrite"}, "300"),
           {},
           true}};
}

inline std::vector<FaultCase> cases_of_merges() {
  const Words merge{"merge", "scan", "--quiet"};
  const Words best{"--best", "5"};
  return {{"merge", {part_of("1/2"), part_of("2/2")}, merge, kReplace},
          {"merge_over_earlier",
           {scan_of({}, "30"), part_of("1/2"), part_of("2/2")},
           merge + kReplace,
           {},
           true},
          {"merge_of_best", {part_of("1/2", best), part_of("2/2", best)}, merge, kReplace}};
}

/// Those that start engines.
inline std::vector<FaultCase> cases_of_energies() {
  const Words energy{"energy", "scan", "--energy", "gfn2", "--output", "better"};
  const auto frames_of = [](const std::string& file) {
    return Words{"energy", file,       "--split", "3",  "--frame",
                 "all",    "--energy", "gfn2",    "-o", "energies.csv"} +
           kQuiet;
  };
  const Words dock{"dock", "water.xyz", "water.xyz", "--starts", "2"};
  const auto part = [&](const std::string& shard) {
    return dock + kQuiet + Words{"--shard", shard};
  };
  return {
      {"scan_with_energies", {}, kWaters + Words{"--energy", "gfn2"} + kQuiet, kResume},
      {"scan_with_command", {}, kWaters + kEcho + kQuiet, kResume},
      {"energy_of_scan", {kWaters + kQuiet}, energy + kQuiet, kResume},
      {"energy_of_frames", {}, frames_of("waters.xyz"), kReplace},
      {"energy_of_other_molecules", {}, frames_of("bent.xyz"), kReplace},
      {"dock", {}, dock + kQuiet, kResume},
      {"dock_over_earlier",
       {dock + kQuiet + Words{"--seed", "3"}},
       dock + kQuiet + kReplace,
       {},
       true},
      {"merge_of_docking", {part("1/2"), part("2/2")}, Words{"merge", "dock"} + kQuiet, kReplace}};
}

inline std::vector<FaultCase> all_fault_cases() {
  std::vector<FaultCase> cases;
  for (const auto& some : {cases_of_texts(), cases_of_long_texts(), cases_of_exports(),
                           cases_of_scans(), cases_of_merges(), cases_of_energies()})
    cases.insert(cases.end(), some.begin(), some.end());
  return cases;
}

/// Those that print.
inline std::vector<FaultCase> cases_of_prints() {
  const std::vector<Words> scan{scan_of({}, "10")};
  const std::vector<Words> parts{part_of("1/2"), part_of("2/2")};
  const Words energy{"energy", "waters.xyz", "--split", "3", "--energy", "gfn2"};
  const Words dock{"dock", "water.xyz", "water.xyz", "--starts", "2", "--threads", "1"};
  const Words json{"--json"};
  const Words pair{"export", "xtb", "waters.xyz", "--split", "3", "--quiet", "-o", "qc"};
  return {{"help", {}, {"--help"}, {}},
          {"version", {}, {"--version"}, {}},
          {"place", {}, {"place", "dimer.xyz", "--r", "4"}, {}},
          {"convert", {}, {"convert", "dimer.xyz"}, {}},
          {"draw", {}, {"draw", "dimer.xyz"}, {}},
          {"identify", {}, {"identify", "dimer.xyz"}, {}},
          {"identify_json", {}, {"identify", "dimer.xyz", "--json"}, {}},
          {"identify_frames", scan, {"identify", "scan.xyz", "--frame", "all"}, {}},
          {"extract", scan, {"extract", "scan", "--poses", "all"}, {}},
          {"count", {}, scan_of({"--count"}, "10"), {}},
          {"count_json", {}, scan_of({"--count", "--json"}, "10"), {}},
          {"scan_json", {}, scan_of(json, "10"), {}},
          {"merge_json", parts, {"merge", "scan", "--json"}, {}},
          {"collect", {pair}, {"collect", "qc"}, {}},
          {"energy", {}, energy, {}},
          {"energy_json", {}, energy + json, {}},
          {"dock", {}, dock, {}},
          {"dock_json", {}, dock + json, {}}};
}

/// Those that take a moment.
inline std::vector<FaultCase> few_fault_cases() {
  const std::set<std::string> titles{"place_over_earlier",
                                     "convert",
                                     "prepare",
                                     "draw",
                                     "view",
                                     "identify",
                                     "extract",
                                     "export",
                                     "collect",
                                     "scan_over_earlier",
                                     "scan_files",
                                     "merge",
                                     "energy_of_other_molecules"};
  std::vector<FaultCase> cases = all_fault_cases();
  std::erase_if(cases, [&](const FaultCase& tried) { return titles.count(tried.title) == 0; });
  return cases;
}

}  // namespace dravo::test
