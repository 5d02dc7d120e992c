#include "energy/engine_texts.hpp"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <istream>
#include <string_view>

#include "common/number_text.hpp"
#include "common/shown_text.hpp"

namespace dravo {
namespace {

/// Matching takes stack in proportion to the line; energies stand in shorter ones.
constexpr std::size_t kLongestLine = 4096;

constexpr std::size_t kMostColumns = 120;
constexpr std::size_t kMostOfCause = 200;  // it is a sentence, often with the name of a routine
constexpr auto kBlanks = " \t\r\n";

}  // namespace

Printed read_printed(std::istream& in, const std::regex& expression) {
  Printed printed;
  std::string line, last_line;
  std::smatch match;
  while (std::getline(in, line)) {
    line.resize(std::min(line.size(), kLongestLine));
    if (line.find_first_not_of(" \t\r") != std::string::npos) last_line = line;
    if (!std::regex_search(line, match, expression)) continue;
    printed.energy = parse_real(match[1].str());
    if (printed.energy && !std::isfinite(*printed.energy)) printed.energy.reset();
  }
  printed.last_line = printable(last_line, kMostColumns).text;
  return printed;
}

std::string cause_of(const XtbReply& reply) {
  const auto* const end = std::find(reply.message.begin(), reply.message.end(), '\0');
  std::string_view text(reply.message.data(),
                        static_cast<std::size_t>(end - reply.message.begin()));
  text = text.substr(0, text.find_last_not_of(kBlanks) + 1);
  text.remove_prefix(text.rfind('\n') + 1);
  const std::size_t mark = text.find("- ");
  if (text.starts_with('-') && mark != std::string_view::npos) text.remove_prefix(mark + 2);
  return text.empty() ? "libxtb does not say why" : "libxtb: " + printable(text, kMostOfCause).text;
}

std::string complaint_in(std::istream& printed) {
  std::string line;
  while (std::getline(printed, line))
    if (line.find("rror") != std::string::npos || line.find("ERROR") != std::string::npos)
      return ": " + printable(line, kMostColumns).text;
  return "";
}

}  // namespace dravo
