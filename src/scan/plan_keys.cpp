#include "scan/plan_keys.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <utility>

#include "common/errors.hpp"
#include "common/free_format_reader.hpp"
#include "common/shown_text.hpp"

namespace dravo {
void PlanWord::refuse(std::string_view part, const std::string& what_is_wrong) const {
  const auto offset = static_cast<std::size_t>(part.data() - text.data());
  const std::size_t first = std::min(begin + offset, source->text.size());
  const std::size_t last = std::min(first + part.size(), source->text.size());
  if (source->is_file)
    throw invalid_input_at({source->name, source->text}, first, last, what_is_wrong);
  throw InvalidInput(fmt::format("{}: {}\n{}", source->name, what_is_wrong,
                                 shown_place(source->text, first, last)));
}

std::string PlanWord::path() const {
  if (!source->is_file) return text;
  if (printable(text, text.size()).text != text)  // messages tell the name as it is
    refuse("expected the name of a file without control characters");
  return (std::filesystem::path(source->name).parent_path() / text).string();
}

void set_plan_key(PlanKeys& keys, const std::string& key, const std::string& value) {
  const auto source = std::make_shared<const PlanSource>(PlanSource{"--" + key, value, false});
  keys[key] = {{value, source, 0}};
}

}  // namespace dravo
