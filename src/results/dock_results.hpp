/// Where the starts of a docking go while it is made, and its minima at the end.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "results/dock_tables.hpp"
#include "results/scan_results.hpp"

namespace dravo {

/// What a docking has found so far.
struct DockFindings {
  explicit DockFindings(const Docking& docking) : search(docking) {}

  std::vector<DockStart> starts;  ///< in the order of their numbers
  DockSearch search;              ///< to which they were added
  /// Of the whole docking, once it is done; a part of one has none.
  std::optional<DockTexts> texts = std::nullopt;
  std::optional<DockSummary> summary = std::nullopt;

  void add(const DockStart& start) {
    starts.push_back(start);
    search.add(start);
  }
};

/// Writes the minima and the record of a whole docking. Throws IoFailure.
void write_minima(const std::string& name, const DockTexts& texts, ScanRecord& record);

/// The starts are in memory and in a file that grows, which is all that a part of a docking leaves.
/// A whole one leaves its minima instead.
class DockResults final : public ScanResults {
 public:
  /// `found` has nothing yet.
  DockResults(const std::string& name, const DockOptions& options,
              std::shared_ptr<DockFindings> found);

  void begin(ScanRecord& record) override;
  [[nodiscard]] bool take_up(const ScanRecord& record) override;
  void append(const TextChunk& chunk, ScanRecord& record) override;
  void sync(ScanRecord& /*record*/) override { files_.sync(); }
  void finish(ScanRecord& record) override;

 private:
  std::string name_;
  ResultFiles files_;
  Columns<DockStart> columns_;
  std::shared_ptr<DockFindings> found_;
};

/// The text of a start, of which the record counts one more.
TextChunk chunk_of(const DockStart& start, const Columns<DockStart>& columns);

}  // namespace dravo
