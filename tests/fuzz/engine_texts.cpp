/// Any bytes as what an engine of energies says: in the reply of the process that has libxtb, on
/// the output of a process that died, and on that of a program of the user's.
#include "energy/engine_texts.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <regex>
#include <sstream>
#include <string>

#include "dravo/energy.hpp"
#include "energy/command_engine.hpp"
#include "fuzz/expectations.hpp"

namespace {

using namespace dravo;
using test::require;

const std::array<std::regex, 3>& expressions() {
  static const std::array<std::regex, 3> expressions{
      energy_expression("TOTAL ENERGY\\s+(\\S+)"), energy_expression("E\\s*=\\s*(.*)"),
      energy_expression("(?:^|energy) *(-?[0-9.eE+-]+)$")};
  return expressions;
}

void require_line(const std::string& text) {
  require(text.find('\n') == std::string::npos, "it is one line");
  if (!text.empty()) test::require_message(text);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const std::string text = test::text_of(bytes, size);
  XtbReply reply{};
  std::copy_n(text.begin(), std::min(size, reply.message.size()), reply.message.begin());
  require_line(cause_of(reply));
  std::istringstream died(text);
  require_line(complaint_in(died));
  for (const std::regex& expression : expressions()) {
    std::istringstream in(text);
    const Printed printed = read_printed(in, expression);
    require(!printed.energy || std::isfinite(*printed.energy), "an energy is a number");
    require_line(printed.last_line);
  }
  return 0;
}
