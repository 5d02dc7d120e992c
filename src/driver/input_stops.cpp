#include "driver/input_stops.hpp"

#include "common/errors.hpp"
#include "common/rounding.hpp"
#include "driver/run_stop.hpp"
#include "driver/user_parameters.hpp"

namespace dravo {
namespace {

[[noreturn]] void stop_out_of_range(const RangeFault& fault, double value, RecordStream& screen) {
  screen.record(fault.message);
  screen.record(fault.allowed);
  if (fault.parameter == &PoseDegrees::r) {
    screen.record(" User value :", value);
  } else {
    screen.record(" User value :", nearest_integer(value));
  }
  screen.record(" program stopped");
  throw RunStop{};
}

void write_count_stop(UnsuitableCount::Fault fault, RecordStream& screen) {
  using Fault = UnsuitableCount::Fault;
  if (fault == Fault::too_many_atoms) {
    screen.record(" max number of atoms -150000 -exceeded ");
    return;
  }
  screen.record(" This version allow the study of entities ");
  screen.record(" with more than 2 atoms ");
  screen.record(fault == Fault::molecule1_too_small ? " ERROR \t" : " ERROR ");
}

}  // namespace

PoseRadians prepare_parameters(const PoseDegrees& degrees, RecordStream& screen) {
  const PoseDegrees checked = with_beta_zero_rule(degrees);
  if (const auto fault = find_range_fault(checked))
    stop_out_of_range(*fault, checked.*(fault->parameter), screen);
  return in_radians(nudged_parameters(checked));
}

RunInput read_input_or_stop(FreeFormatReader& input, AtomTable& icoo_and_m, AtomTable& newcoo_and_m,
                            std::span<Label> isymbol, RecordStream& screen) {
  try {
    const InputGeometry geometry = read_input(input, icoo_and_m, newcoo_and_m, isymbol);
    return {geometry.split, prepare_parameters(geometry.stated, screen)};
  } catch (const UnsuitableCount& failure) {
    write_count_stop(failure.fault(), screen);
    throw RunStop{};
  }
}

}  // namespace dravo
