#include "scan/plan_keys.hpp"

#include <toml++/toml.h>

#include <algorithm>
#include <filesystem>

#include "common/errors.hpp"
#include "common/record_reader.hpp"
#include "common/shown_text.hpp"

namespace dravo {
namespace {

/// Offset of a place that is given by line and column, both from 1.
std::size_t offset_of(std::string_view text, const toml::source_position& place) {
  std::size_t start = 0;
  for (toml::source_index line = 1; line < place.line && start < text.size(); ++line)
    start = std::min(text.find('\n', start), text.size() - 1) + 1;
  return std::min(start + place.column - 1, text.size());
}

/// Numbers and truth values as they were typed, texts without their quotes.
PlanWord word_of(const toml::node& node, const std::shared_ptr<const PlanSource>& source) {
  const std::size_t begin = offset_of(source->text, node.source().begin);
  const std::size_t end = offset_of(source->text, node.source().end);
  if (const auto* text = node.as_string())
    return {text->get(), source, std::min(begin + 1, source->text.size())};
  PlanWord word{source->text.substr(begin, end - begin), source, begin};
  if (node.is_table() || node.is_array()) word.refuse("expected a value or a list of values");
  return word;
}

std::vector<PlanWord> words_of(const toml::node& node,
                               const std::shared_ptr<const PlanSource>& source) {
  std::vector<PlanWord> words;
  if (const auto* list = node.as_array()) {
    for (const toml::node& element : *list) words.push_back(word_of(element, source));
  } else {
    words.push_back(word_of(node, source));
  }
  return words;
}

}  // namespace

void PlanWord::refuse(std::string_view part, const std::string& what_is_wrong) const {
  const auto offset = static_cast<std::size_t>(part.data() - text.data());
  const std::size_t first = std::min(begin + offset, source->text.size());
  const std::size_t last = std::min(first + part.size(), source->text.size());
  if (source->is_file)
    throw IoFailure(message_at({source->name, source->text}, first, last, what_is_wrong));
  throw IoFailure(source->name + ": " + what_is_wrong + "\n" +
                  shown_place(source->text, first, last));
}

std::string PlanWord::path() const {
  if (!source->is_file) return text;
  return (std::filesystem::path(source->name).parent_path() / text).string();
}

PlanKeys read_plan_keys(const std::string& file) {
  const auto source = std::make_shared<const PlanSource>(PlanSource{file, read_file(file), true});
  PlanKeys keys;
  try {
    const toml::table plan = toml::parse(source->text, file);
    for (const auto& [key, node] : plan) keys[std::string(key.str())] = words_of(node, source);
  } catch (const toml::parse_error& error) {
    const std::size_t place = offset_of(source->text, error.source().begin);
    throw IoFailure(message_at({file, source->text}, place, place,
                               "not TOML: " + std::string(error.description())));
  }
  return keys;
}

void set_plan_key(PlanKeys& keys, const std::string& key, const std::string& value) {
  const auto source = std::make_shared<const PlanSource>(PlanSource{"--" + key, value, false});
  keys[key] = {{value, source, 0}};
}

}  // namespace dravo
