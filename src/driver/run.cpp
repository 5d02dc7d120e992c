#include "driver/run.hpp"

#include <array>
#include <cstddef>

#include "common/large_pages.hpp"
#include "driver/banners.hpp"
#include "driver/input_stops.hpp"
#include "driver/param.hpp"

namespace dravo {
void run(std::string_view input, RunUnits& units) {
  static std::array<AtomStorage<kMaxAtoms>, 2> storage;
  static std::array<Label, kMaxAtoms> isymbol;
  constexpr std::size_t kLongInput = std::size_t{1} << 20U;
  if (input.size() > kLongInput) prefer_large_pages(storage.data(), sizeof storage);
  AtomTable icoo_and_m(storage[0]);
  AtomTable newcoo_and_m(storage[1]);

  FreeFormatReader reader(kInputFileName, input);
  auto [split, user] =
      read_input_or_stop(reader, icoo_and_m, newcoo_and_m, isymbol, units.screen());
  write_screen_banner(units.screen());

  WorkText work_text{};
  PoseRadians applied;
  param(work_text, split.N, split.n1, isymbol, newcoo_and_m, applied.r, applied.alpha, applied.beta,
        applied.gamma, kBuildMode, applied.theta, applied.phi, user.theta, user.phi, user.alpha,
        user.beta, user.gamma, user.r, units);
  write_closing_reports(applied, units.screen(), units.log());
}

}  // namespace dravo
