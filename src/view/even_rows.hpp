/// Evenly spaced rows of a stream whose length nobody knows.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

namespace dravo {

/// Keeps every row at first, and every second of what is there whenever that is too much. The
/// first row with the smallest value stays in any case.
template <class Row>
class EvenRows {
 public:
  /// Fewer than twice `most`, from 1 on, are in memory.
  explicit EvenRows(std::size_t most) : most_(most) {}

  void add(Row row, double value) {
    const std::int64_t number = seen_++;
    const bool best = value < lowest_;
    if (best) lowest_ = value;
    if (number % step_ == 0) {
      if (best) best_.reset();
      if (best) best_kept_ = number;
      rows_.push_back({number, std::move(row)});
      if (rows_.size() == 2 * most_) halve();
    } else if (best) {
      best_ = Numbered{number, std::move(row)};
      best_kept_ = -1;
    }
  }

  [[nodiscard]] std::int64_t seen() const { return seen_; }

  /// In the order in which they came; between one and two times `most`, once there were so many.
  [[nodiscard]] std::vector<Row> take() {
    std::vector<Row> rows;
    for (Numbered& kept : rows_) {
      if (best_ && best_->number < kept.number) {
        rows.push_back(std::move(best_->row));
        best_.reset();
      }
      rows.push_back(std::move(kept.row));
    }
    if (best_) rows.push_back(std::move(best_->row));
    return rows;
  }

 private:
  struct Numbered {
    std::int64_t number;
    Row row;
  };

  void halve() {
    step_ *= 2;
    std::vector<Numbered> kept;
    for (Numbered& row : rows_) {
      if (row.number % step_ == 0)
        kept.push_back(std::move(row));
      else if (row.number == best_kept_)
        best_ = std::move(row);
    }
    rows_ = std::move(kept);
  }

  std::size_t most_;
  std::int64_t seen_ = 0;
  std::int64_t step_ = 1;
  double lowest_ = std::numeric_limits<double>::infinity();
  std::vector<Numbered> rows_;    ///< every `step_`-th
  std::optional<Numbered> best_;  ///< when it is not among them
  std::int64_t best_kept_ = -1;   ///< its number, when it is
};

}  // namespace dravo
