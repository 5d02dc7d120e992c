#include "quantum/output_text.hpp"

namespace dravo {

/// It shows no coordinates.
QuantumOutput read_xtb(const QuantumJob& /*job*/, std::string_view text) {
  QuantumOutput output;
  if (text.find("[ERROR]") != std::string_view::npos)
    output.state = OutputState::failed;
  else if (text.find("* finished run on") != std::string_view::npos)
    output.state = OutputState::finished;
  output.energy = number_in_front(behind(text, "| TOTAL ENERGY "));
  return output;
}

}  // namespace dravo
