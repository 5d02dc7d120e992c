/// Minima that are one, gathered.
#pragma once

#include <cstddef>
#include <vector>

#include "dock/same_minimum.hpp"

namespace dravo {

/// The first minimum of each kind, or the lowest, stands for it.
class Clusters {
 public:
  /// Not owned.
  explicit Clusters(const SameMinimum& same) : same_(&same) {}

  /// The number, from 0, of the cluster that it belongs to: the lowest of those that it is one
  /// with, or a new one, the last. It stands for the cluster from now on if it lies lower.
  std::size_t add(FoundMinimum minimum);

  [[nodiscard]] const std::vector<FoundMinimum>& lowest() const { return lowest_; }

 private:
  const SameMinimum* same_;
  std::vector<FoundMinimum> lowest_;
};

}  // namespace dravo
