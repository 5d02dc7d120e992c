#include "pairs/parameters.hpp"

#include <algorithm>
#include <string_view>

#include "driver/output_names.hpp"

namespace dravo {
namespace {

std::string_view without_blanks_around(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
  return text.substr(0, text.find_last_not_of(' ') + 1);
}

ParameterName name_of(double UserParameters::*value) {
  return *std::find_if(kParameterNames.begin(), kParameterNames.end(),
                       [&](const ParameterName& name) { return name.value == value; });
}

}  // namespace

std::optional<ParameterComplaint> complaint_about(const UserParameters& degrees) {
  if (const auto fault = find_range_fault(degrees)) {
    std::string sentence(without_blanks_around(fault->message));
    sentence.append(sentence.ends_with('.') || sentence.ends_with('!') ? " " : ". ");
    sentence.append(without_blanks_around(fault->allowed));
    return ParameterComplaint{name_of(fault->parameter), sentence};
  }
  if (!fits_names(degrees.r))
    return ParameterComplaint{kParameterNames[0],
                              "distance too long for the names of files. Allowed: r<9999.9"};
  return std::nullopt;
}

}  // namespace dravo
