#include "frames/higher_z_reflection.hpp"

#include <cstddef>

namespace dravo {

void reflect_towards_higher_z(MoleculeFrame& frame, AxisFlags& flags) {
  for (std::size_t k = 0; k < 3; ++k) {
    if (!(0.0 > flags.direction[k])) continue;
    frame.tips[k] = reflected(frame.tips[k], frame.cm);
    flags.direction[k] = -flags.direction[k];
  }
}

}  // namespace dravo
