/// A frame whose numbers are easy to follow.
#pragma once

#include "common/frame.hpp"

namespace dravo::test {

/// Axes z, y, x at a centre whose sums stay exact.
inline MoleculeFrame upright() {
  return {{1.0, 2.0, 3.0}, {{{1.0, 2.0, 4.0}, {1.0, 3.0, 3.0}, {2.0, 2.0, 3.0}}}};
}

}  // namespace dravo::test
