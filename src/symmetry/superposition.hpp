/// Laying atoms on others.
#pragma once

#include "symmetry/centred_atoms.hpp"
#include "symmetry/matrices.hpp"

namespace dravo {

/// The rotation about the origin that lays one set of atoms on another with the least sum of mass
/// times distance squared. Always a proper rotation; of atoms on one line any of those that fit.
/// The atoms stand in the same order and need not be centred.
Matrix3 best_rotation(const CentredAtoms& from, const CentredAtoms& to);

}  // namespace dravo
