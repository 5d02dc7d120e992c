#include "scan/plan_file.hpp"

#include <toml++/toml.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "common/errors.hpp"
#include "common/free_format_reader.hpp"
#include "common/shown_text.hpp"

namespace dravo {
namespace {

/// Finds places that are given by line and column, both from 1, columns in characters. They are
/// mostly asked for in their order: it counts from the last one on, since a list may be one long
/// line.
class Places {
 public:
  explicit Places(std::string_view text) : text_(text) {
    for (std::size_t k = 0; k < text.size(); ++k)
      if (text[k] == '\n') line_starts_.push_back(k + 1);
  }

  [[nodiscard]] std::size_t offset_of(const toml::source_position& place) {
    const std::size_t line = std::min<std::size_t>(place.line, line_starts_.size());
    if (line != line_ || place.column < column_) {
      line_ = line;
      column_ = 1;
      offset_ = line == 0 ? 0 : line_starts_[line - 1];
    }
    for (; column_ < place.column && offset_ < text_.size(); ++column_) do
        ++offset_;
      while (continues_character(offset_));
    return std::min(offset_, text_.size());
  }

 private:
  [[nodiscard]] bool continues_character(std::size_t k) const {
    return k < text_.size() && (static_cast<unsigned char>(text_[k]) & 0xC0U) == 0x80U;
  }

  std::string_view text_;
  std::vector<std::size_t> line_starts_{0};
  // Where the last place was.
  std::size_t line_ = 0;
  toml::source_index column_ = 1;
  std::size_t offset_ = 0;
};

/// Turns the values of a TOML file into words.
class WordReader {
 public:
  explicit WordReader(std::shared_ptr<const PlanSource> source)
      : source_(std::move(source)), places_(source_->text) {}

  [[nodiscard]] std::vector<PlanWord> words_of(const toml::node& node) {
    const auto* list = node.as_array();
    if (list == nullptr) return {word_of(node)};
    if (list->empty()) typed(node).refuse("expected a value, found an empty list");
    std::vector<PlanWord> words;
    for (const toml::node& element : *list) words.push_back(word_of(element));
    return words;
  }

  [[nodiscard]] std::size_t offset_of(const toml::source_position& place) {
    return places_.offset_of(place);
  }

 private:
  [[nodiscard]] PlanWord typed(const toml::node& node) {
    const std::size_t begin = offset_of(node.source().begin);
    const std::size_t end = std::max(offset_of(node.source().end), begin);
    return {source_->text.substr(begin, end - begin), source_, begin};
  }

  /// Texts without their quotes; decimal numbers as they were typed, whose digits count.
  [[nodiscard]] PlanWord word_of(const toml::node& node) {
    PlanWord word = typed(node);
    if (const auto* text = node.as_string())
      return {text->get(), source_, std::min(word.begin + 1, source_->text.size())};
    if (const auto* whole = node.as_integer()) word.text = std::to_string(whole->get());
    if (node.is_floating_point()) std::erase(word.text, '_');
    if (node.is_table() || node.is_array()) word.refuse("expected a value or a list of values");
    return word;
  }

  std::shared_ptr<const PlanSource> source_;
  Places places_;
};

}  // namespace

PlanKeys read_plan_keys(const std::string& file) {
  const auto source = std::make_shared<const PlanSource>(PlanSource{file, read_file(file), true});
  if (source->text.starts_with(kByteOrderMark))
    throw invalid_input_at({file, source->text}, 0, kByteOrderMark.size(), kByteOrderMarkFault);
  WordReader reader(source);
  PlanKeys keys;
  try {
    const toml::table plan = toml::parse(source->text, file);
    for (const auto& [key, node] : plan) keys[std::string(key.str())] = reader.words_of(node);
  } catch (const toml::parse_error& error) {
    const std::size_t place = reader.offset_of(error.source().begin);
    constexpr std::size_t kMostColumns = 200;  // it repeats what stands there
    throw invalid_input_at({file, source->text}, place, place,
                           "not TOML: " + printable(error.description(), kMostColumns).text);
  }
  return keys;
}

}  // namespace dravo
