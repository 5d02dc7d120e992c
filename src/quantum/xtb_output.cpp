#include "quantum/output_text.hpp"

namespace dravo {

/// It shows no coordinates.
QuantumOutput read_xtb(const QuantumJob& /*job*/, std::string_view text) {
  QuantumOutput output;
  if (has(text, "[ERROR]"))
    output.state = OutputState::failed;
  else if (has(text, "* finished run on"))
    output.state = OutputState::finished;
  output.energy = number_in_front(behind(text, "| TOTAL ENERGY "));
  return output;
}

}  // namespace dravo
