/// What this program and the process that has libxtb say to each other, each on the same machine
/// with the same compiler: structures and arrays as they stand in memory.
///
///     this program                                 the worker
///     XtbRequest load, int32 Z[N], double xyz[3N]  XtbReply
///     XtbRequest compute, double xyz[3N]           XtbReply, double gradient[3N] when asked for
///     and ok
///
/// Positions in Bohr, energies in Hartree, gradients in Hartree/Bohr.
#pragma once

#include <array>
#include <cstdint>

namespace dravo {

enum class XtbTask : std::int32_t {
  load,      ///< another system; bonds are looked for at these positions
  compute,   ///< that system at other positions
  gradient,  ///< and how the energy changes
};

enum class XtbParametrisation : std::int32_t { gfnff, gfn2, gfn1 };

struct XtbRequest {
  XtbTask task;
  XtbParametrisation parametrisation;  ///< this and the rest: of a load
  std::int32_t atoms;
  std::int32_t charge;
  std::int32_t unpaired;
};

struct XtbReply {
  std::int32_t failed;            ///< 0 or 1
  double energy;                  ///< of a computation
  std::array<char, 512> message;  ///< of a failure, up to the first zero
};

}  // namespace dravo
