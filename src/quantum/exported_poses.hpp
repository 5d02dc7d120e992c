/// The poses that are handed to a program of quantum chemistry, one by one.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "common/index_selection.hpp"
#include "dravo/molecule.hpp"
#include "results/pose_choice.hpp"

namespace dravo {

/// Where poses come from.
struct PoseOrigin {
  std::string words;           ///< "scan big", "docking pairs", "file dimer.xyz"
  std::uint64_t checksum = 0;  ///< XXH3 of the table or the file
  std::string selection;       ///< which of its poses
};

/// All are of one pair: the same atoms in the same order.
class ExportedPoses {
 public:
  ExportedPoses() = default;
  ExportedPoses(const ExportedPoses&) = delete;
  ExportedPoses& operator=(const ExportedPoses&) = delete;
  virtual ~ExportedPoses() = default;

  [[nodiscard]] virtual PoseOrigin origin() const = 0;

  /// What the user should know about the reading.
  [[nodiscard]] virtual std::vector<std::string> remarks() const { return {}; }

  /// Of the rows, without an end of line. The first column is the index.
  [[nodiscard]] virtual std::string heading() const = 0;

  /// Goes to the next pose. False behind the last one. Throws InvalidInput and IoFailure.
  virtual bool next() = 0;

  /// Of the pose; valid until the next one.
  [[nodiscard]] virtual std::int64_t index() const = 0;
  [[nodiscard]] virtual const std::string& row() const = 0;
  [[nodiscard]] virtual const Pair& pair() const = 0;
};

/// Of a finished scan or docking. Throws InvalidInput and IoFailure.
std::unique_ptr<ExportedPoses> poses_of_results(const std::string& name, const PoseChoice& choice);

/// The pair of one frame, or of several frames that are selected. Throws InvalidInput and
/// IoFailure.
std::unique_ptr<ExportedPoses> poses_of_file(const PairRequest& request,
                                             const std::optional<IndexSelection>& frames);

}  // namespace dravo
