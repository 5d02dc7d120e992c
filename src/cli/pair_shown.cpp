#include "cli/pair_shown.hpp"

#include <filesystem>
#include <optional>
#include <span>

#include "dravo/identify.hpp"
#include "dravo/molecule.hpp"
#include "molecules/input_file.hpp"
#include "scene/description.hpp"

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

std::string description_of(const PlacedPair& placed) {
  const auto labels = std::span(placed.pair.labels());
  const auto n1 = static_cast<std::size_t>(placed.pair.n1());
  return description_of(labels.first(n1), labels.subspan(n1), placed.pose);
}

}  // namespace dravo
