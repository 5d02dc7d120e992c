/// What NWChem calls a method.
#pragma once

#include <string>
#include <string_view>

namespace dravo {

struct NwchemTheory {
  std::string_view task;
  std::string_view energy;  ///< what stands before it in the output
  bool functional;          ///< of density functional theory
};

/// scf, mp2, ccsd and ccsd(t) by their names, hf too; anything else is a functional.
NwchemTheory nwchem_theory(const std::string& method);

}  // namespace dravo
