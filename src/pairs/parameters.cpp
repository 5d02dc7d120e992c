#include "pairs/parameters.hpp"

#include <algorithm>

#include "common/text.hpp"
#include "driver/output_names.hpp"

namespace dravo {
namespace {

ParameterName name_of(double UserParameters::*value) {
  return *std::find_if(kParameterNames.begin(), kParameterNames.end(),
                       [&](const ParameterName& name) { return name.value == value; });
}

}  // namespace

std::optional<ParameterComplaint> complaint_about(const UserParameters& degrees) {
  if (const auto fault = find_range_fault(degrees)) {
    std::string sentence(trimmed(fault->message));
    sentence.append(sentence.ends_with('.') || sentence.ends_with('!') ? " " : ". ");
    sentence.append(trimmed(fault->allowed));
    return ParameterComplaint{name_of(fault->parameter), sentence};
  }
  if (!fits_names(degrees.r))
    return ParameterComplaint{kParameterNames[0],
                              "distance too long for the names of files. Allowed: r<9999.9"};
  return std::nullopt;
}

}  // namespace dravo
