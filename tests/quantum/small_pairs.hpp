/// Small pairs whose input files can be written by hand.
#pragma once

#include <string>

#include "quantum/quantum_job.hpp"
#include "support/pairs.hpp"

namespace dravo::test {

/// Hydrogen fluoride, whose proton points to the oxygen of water.
inline Pair hydrogen_fluoride_and_water() {
  return pair_of(
      {{"F", {0, 0, 0}}, {"H", {0, 0, 0.9168}}},
      {{"O", {0, 0, 2.6625}}, {"H", {-0.7572, 0.125, 3.2487}}, {"H", {0.7572, 0.125, 3.2487}}});
}

/// Fluoride, charge -1, and water.
inline Pair fluoride_and_water() {
  return pair_of({{"F", {0, 0, 0}}},
                 {{"O", {2.5, 0, 0}}, {"H", {1.55, 0.1, 0}}, {"H", {2.8, 0.9, 0}}});
}

/// The hydroxyl radical, multiplicity 2, and water.
inline Pair hydroxyl_and_water() {
  return pair_of({{"O", {0, 0, 0}}, {"H", {0.97, 0, 0}}},
                 {{"O", {2.9, 0, 0}}, {"H", {3.2, 0.1, 0.9}}, {"H", {3.2, 0.9, -0.1}}});
}

inline QuantumJob job_of(QuantumProgram program, std::string method, std::string basis) {
  QuantumJob job;
  job.program = program;
  job.method = std::move(method);
  job.basis = std::move(basis);
  job.treatment = usual_treatment(program);
  return job;
}

}  // namespace dravo::test
