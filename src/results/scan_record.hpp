/// What a scan is and what it found, as its files tell it.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "dravo/dock.hpp"
#include "dravo/energy.hpp"
#include "dravo/molecule.hpp"
#include "results/scan_totals.hpp"
#include "scan/pair_placer.hpp"
#include "scan/plan.hpp"

namespace dravo {

/// The I-th of N parts of a scan, I from 1: poses [first, end), numbered from 0.
struct Shard {
  std::int64_t number = 1;
  std::int64_t of = 1;

  [[nodiscard]] std::int64_t first(std::int64_t poses) const;
  [[nodiscard]] std::int64_t end(std::int64_t poses) const;
  /// NAME-I-of-N.
  [[nodiscard]] std::string name(const std::string& scan) const;
};

/// What a scan writes of its poses.
enum class Writing {
  nothing,
  table,   ///< their rows alone
  moving,  ///< and frames of molecule 1; molecule 2, which stands still, once
  frames,  ///< and frames of both molecules
  files,   ///< and for each pose the files of qn-dravo
};

/// The poses with the smallest values of a column are kept, or those with the largest.
struct BestRule {
  std::int64_t count;
  std::string column;
  bool largest;
};

/// `by` is a column, or one behind a hyphen for its largest values. Without it the column is that
/// of the energy where there is one, else that of the shortest distance.
BestRule best_rule(std::int64_t count, std::string by, bool energies);

/// The files that a scan may have besides its record and its progress.
enum class ResultFile : std::size_t {
  frames,
  table,
  molecule2,
  best1,  ///< of an unfinished scan, the best poses so far: this file and the next in turn
  best2,
  starts,  ///< of an unfinished docking, and of a part of one
};

/// What a file is called in a record, and behind NAME.
struct ResultName {
  const char* key;
  const char* ending;
};
inline constexpr std::array<ResultName, 6> kResultNames{{{"frame", ".xyz"},
                                                         {"table", ".csv"},
                                                         {"molecule2", "-molecule-2.xyz"},
                                                         {"best1", ".best-1"},
                                                         {"best2", ".best-2"},
                                                         {"starts", "-starts.csv"}}};

constexpr const char* ending_of(ResultFile file) {
  return kResultNames.at(static_cast<std::size_t>(file)).ending;
}

/// How much of a file is there.
struct FileState {
  std::int64_t bytes = 0;
  std::optional<std::uint64_t> checksum = std::nullopt;  ///< not in records of earlier versions
};

/// What was placed: enough to place it again.
struct ScannedPair {
  Pair pair;
  std::optional<Pair> like;  ///< whose axes were carried along
};

inline constexpr auto kEndedByTime = "time";

/// What a docking found, besides its files.
struct DockSummary {
  std::string ended;  ///< why it made no more starts
  std::int64_t minima = 0;
  std::array<std::int64_t, kDockEnds.size()> starts{};  ///< that ended so, by `DockEnd`

  [[nodiscard]] std::int64_t starts_of(DockEnd end) const {
    return starts.at(static_cast<std::size_t>(end));
  }
};

/// As `EnergyModel::references` has them, Hartree, by the names of methods.
using ReferenceEnergies = std::map<std::string, std::vector<double>>;

/// Of a scan, or of a docking, whose starts are its poses.
struct ScanRecord {
  /// Pair, plan and program, key and text: the results follow from them.
  std::map<std::string, std::string> origin;
  std::int64_t poses = 0;  ///< of all parts
  Shard shard;
  ScanTotals totals;
  std::map<ResultFile, FileState> files;
  /// Null in the progress of a scan and in records of earlier versions.
  std::shared_ptr<const ScannedPair> molecules = nullptr;
  /// No part of the origin: their last digits depend on the machine.
  ReferenceEnergies reference_energies = {};
  std::optional<DockSummary> docking = std::nullopt;  ///< of a finished one that is in one part

  [[nodiscard]] bool is_docking() const;
  [[nodiscard]] const char* kind() const { return is_docking() ? "docking" : "scan"; }

  [[nodiscard]] Writing writing() const;

  /// Empty for a scan that keeps all poses. Throws a std::exception, but not for records that were
  /// parsed.
  [[nodiscard]] std::optional<BestRule> best() const;

  /// The files of the finished scan.
  [[nodiscard]] std::vector<ResultFile> results() const;
};

/// Tells pairs apart: "6+9 atoms, 1234567890".
std::string fingerprint_of(const Pair& pair);

/// Pair, plan and the way of placing as `ScanRecord::origin` has them.
std::map<std::string, std::string> origin_of(const PairPlacer& placer, const ScannedPair& molecules,
                                             const ScanPlan& plan);

/// Adds what of the poses is written, and where.
void add_to_origin(std::map<std::string, std::string>& origin, Writing writing,
                   const std::optional<BestRule>& best);

/// Engine, charges and unpaired electrons of a method, as origins have them.
std::map<std::string, std::string> description_of(const EnergyModel& energy);

/// Adds what the energies of a method are counted from.
void add_references(ScanRecord& record, const EnergyModel& energy);

/// Adds how energies are computed, and which bound they keep to.
void add_to_origin(std::map<std::string, std::string>& origin, const EnergyModel& energy,
                   const std::optional<double>& keep_below);

/// To that of a finished scan: how its poses are computed again, each key behind the name of the
/// method and a hyphen, and what is written now.
void add_again_to_origin(std::map<std::string, std::string>& origin, const EnergyModel& energy,
                         Writing writing);

/// The charges that the energies of a record were computed with, or those of unpaired electrons:
/// "0,-1". The first method that tells it; empty without any.
std::optional<std::string> told_charges(const ScanRecord& record);
std::optional<std::string> told_unpaired(const ScanRecord& record);

/// Whether the poses of a scan have energies.
bool has_energies(const ScanRecord& record);

/// Whether the poses of a scan are placed exactly.
bool is_exact(const ScanRecord& record);

/// Throws IoFailure with every key that differs, unless both are records of the same scan; also
/// when their reference energies differ by more than rounding explains. `name` is the file of the
/// earlier one.
void require_same_origin(const std::string& name, const ScanRecord& earlier, const ScanRecord& now);

/// One sentence for people; `written`: a scan wrote what it counted.
std::string sentence_about(const ScanTotals& totals, bool written = true);

/// Totals and the way of placing as JSON, on one line.
std::string json_text_of(const ScanTotals& totals, bool exact);

/// The same of a finished scan. Records of earlier versions do not tell the way of placing.
std::string json_text_of(const ScanRecord& record);

/// The whole record as JSON, on one line.
std::string text_of(const ScanRecord& record);

/// Throws IoFailure for anything else than such a text; `name` is the file's.
ScanRecord parse_record(const std::string& name, const std::string& text);

}  // namespace dravo
