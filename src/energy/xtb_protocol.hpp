/// What this program and the process that has libxtb say to each other, each on the same machine
/// with the same compiler: structures and arrays as they stand in memory.
///
///     this program                                 the worker
///                                                  kXtbGreeting, when it starts
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

/// Another one whenever anything of this file changes: a worker of another build may be installed.
inline constexpr std::array<char, 20> kXtbGreeting{"dravo-xtb-worker 2\n"};

struct XtbRequest {
  XtbTask task;
  XtbParametrisation parametrisation;  ///< this and the rest: of a load
  std::int32_t atoms;
  std::int32_t charge;
  std::int32_t charged_atom;  ///< from 0: one of the molecule that has the charge
  std::int32_t unpaired;
};

struct XtbReply {
  std::int32_t failed;             ///< 0 or 1
  double energy;                   ///< of a computation
  std::array<char, 1024> message;  ///< of a failure, up to the first zero
};

}  // namespace dravo
