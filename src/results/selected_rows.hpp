/// Rows of a scan's table that somebody selects by their indices.
#pragma once

#include <cstdint>
#include <string>

#include "common/index_selection.hpp"
#include "results/scan_record.hpp"
#include "results/table_rows.hpp"

namespace dravo {

/// In the order of the table, in no memory that grows with it.
class SelectedRows {
 public:
  /// Of the finished scan of this name. Throws IoFailure for a table that cannot be read.
  SelectedRows(const std::string& scan, const ScanRecord& record, IndexSelection poses);

  [[nodiscard]] const std::string& table() const { return table_; }
  [[nodiscard]] const std::string& heading() const { return rows_.heading(); }

  /// Throws InvalidInput, in the name of --poses, when the table lacks a pose that was named alone
  /// or has none of all.
  void require_named(const ScanRecord& record);

  /// Before the first of them.
  void rewind();

  /// The next one without its end of line. False behind the last one. Throws IoFailure.
  bool next(std::string& row);

 private:
  std::string table_;
  TableRows rows_;
  IndexSelection poses_;
  bool ordered_;            ///< rows stand in the order of their indices
  std::int64_t index_ = 0;  ///< of the row that was handed on
};

}  // namespace dravo
