#include "cli/pair_shown.hpp"

#include <fmt/format.h>

#include <filesystem>
#include <optional>
#include <span>

#include "common/number_format.hpp"
#include "dravo/identify.hpp"
#include "dravo/molecule.hpp"
#include "molecules/fragments.hpp"
#include "molecules/input_file.hpp"

namespace dravo {
namespace {

std::string file_title(const std::string& file) {
  return is_standard_input(file) ? "standard input"
                                 : std::filesystem::path(file).filename().string();
}

}  // namespace

void add_pose_shown(CLI::App& command, PairShown& shown) {
  add_second_file(command, shown.request);
  add_pose_options(command, shown.given);
  add_like_option(command, shown.like);
  add_contact_option(command, shown.criterion);
}

ShownPlacer placer_shown(const PairShown& shown) {
  const PairFile file = read_pair(*shown.request);
  tell(file.remarks);
  const std::optional<Pair> like = reference_pair(shown.like, *shown.request, file.pair.n1());
  const Pair* const reference = like ? &*like : nullptr;
  const PoseDegrees pose =
      chosen_pose(shown.given, pose_defaults(*shown.request, file, reference), *shown.request);
  ShownPlacer placer{Placer(file.pair, {Placing::exact, reference, shown.criterion}), pose};
  tell(remarks_on(placer.placer.molecules()));
  return placer;
}

std::string title_of(const PairRequest& request) {
  std::string title = file_title(request.file);
  if (!request.second_file.empty()) title += " and " + file_title(request.second_file);
  return title;
}

std::string description_of(std::span<const Label> molecule1, std::span<const Label> molecule2,
                           const PoseDegrees& pose) {
  return fmt::format(
      "Molecule 1, {}, and molecule 2, {}: r {} Angstrom, theta {}, phi {}, alpha {}, beta {}, "
      "gamma {} degrees.",
      formula_of(molecule1), formula_of(molecule2), fixed_text(pose.r, 2),
      fixed_text(pose.theta, 1), fixed_text(pose.phi, 1), fixed_text(pose.alpha, 1),
      fixed_text(pose.beta, 1), fixed_text(pose.gamma, 1));
}

std::string description_of(const PlacedPair& placed) {
  const auto labels = std::span(placed.pair.labels());
  const auto n1 = static_cast<std::size_t>(placed.pair.n1());
  return description_of(labels.first(n1), labels.subspan(n1), placed.pose);
}

}  // namespace dravo
