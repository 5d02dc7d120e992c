/// The poses that a page or a file for a viewer shows: one pair, the frames of a file, results.
#pragma once

#include <CLI/CLI.hpp>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/pair_shown.hpp"
#include "common/index_selection.hpp"
#include "view/view_data.hpp"

namespace dravo {

/// The first file or the name of results, how it is read, `--frame`, and the options of a pair.
/// Filled when the arguments are parsed; `frame` stays empty without the option.
void add_poses_shown(CLI::App& command, PairShown& shown, std::string& frame);

class PosesShown {
 public:
  /// Finds out what the first file of the request is. `frame` is what `--frame` was told; without
  /// it all frames of a file with several are meant. Throws InvalidInput for options that do not
  /// belong to that. `shown` must live as long.
  PosesShown(const CLI::App& command, const PairShown& shown, const std::string& frame);

  /// Files that are read.
  [[nodiscard]] std::vector<std::string> inputs() const;

  /// What a file of them is called, without ending.
  [[nodiscard]] std::string name() const;

  /// Remarks go to standard error. Throws what reading and placing throw.
  [[nodiscard]] ViewData data() const;

 private:
  const PairShown* shown_;
  IndexSelection selection_;
  std::optional<std::string> results_;  ///< their name
  bool several_ = false;
};

/// "molecule 1 has 6 atoms, molecule 2 has 6", "12 poses", "100000 of 250000 frames, evenly chosen:
/// " and what limits their number.
std::string words_of(const ViewData& data, std::string_view limit);

}  // namespace dravo
