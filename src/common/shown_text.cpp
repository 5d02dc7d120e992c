#include "common/shown_text.hpp"

#include <algorithm>
#include <array>
#include <cstdint>

namespace dravo {
namespace {

constexpr bool is_blank(char c) { return c == ' ' || c == '\t' || c == '\r'; }

struct Character {
  std::size_t bytes;
  char32_t code;
};

constexpr char32_t kNoCharacter = 0x7FFFFFFF;

/// The UTF-8 character that the text, not empty, begins with; otherwise one byte and
/// `kNoCharacter`.
Character first_character(std::string_view text) {
  struct Form {
    std::uint32_t mask;
    std::uint32_t lead;
    std::uint32_t lowest;  ///< smaller ones have a shorter form
  };
  constexpr std::array<Form, 4> kForms{
      {{0x80, 0x00, 0}, {0xE0, 0xC0, 0x80}, {0xF0, 0xE0, 0x800}, {0xF8, 0xF0, 0x10000}}};
  const auto byte = [&](std::size_t k) -> std::uint32_t {
    return static_cast<unsigned char>(text[k]);
  };
  for (std::size_t size = 1; size <= std::min(kForms.size(), text.size()); ++size) {
    const Form& form = kForms[size - 1];
    if ((byte(0) & form.mask) != form.lead) continue;
    std::uint32_t code = byte(0) & ~form.mask;
    bool valid = true;
    for (std::size_t k = 1; k < size; ++k) {
      valid = valid && (byte(k) & 0xC0U) == 0x80U;
      code = (code << 6U) | (byte(k) & 0x3FU);
    }
    const bool surrogate = code >= 0xD800 && code <= 0xDFFF;
    if (valid && code >= form.lowest && code <= 0x10FFFF && !surrogate) return {size, code};
  }
  return {1, kNoCharacter};
}

/// Not so are characters that a terminal obeys, or that take no column of their own, so that what
/// follows would not stand above its caret. (Letters of double width are left alone.)
bool is_shown(char32_t code) {
  struct Range {
    char32_t first;
    char32_t last;
  };
  constexpr std::array<Range, 7> kNotShown{{{0x00, 0x1F},      // control characters
                                            {0x7F, 0x9F},      // more of them
                                            {0x200B, 0x200F},  // no width, direction of writing
                                            {0x2028, 0x202E},  // line ends, direction of writing
                                            {0x2060, 0x206F},  // no width, direction of writing
                                            {0xFEFF, 0xFEFF},  // byte-order mark
                                            {kNoCharacter, kNoCharacter}}};
  return std::none_of(kNotShown.begin(), kNotShown.end(), [&](const Range& range) {
    return code >= range.first && code <= range.last;
  });
}

}  // namespace

ColumnText printable(std::string_view text, std::size_t most_columns) {
  ColumnText shown;
  while (!text.empty() && shown.columns < most_columns) {
    const Character next = first_character(text);
    if (is_blank(text[0])) {
      shown.text += ' ';
    } else if (is_shown(next.code)) {
      shown.text += text.substr(0, next.bytes);
    } else {
      shown.text += '?';
    }
    ++shown.columns;
    text.remove_prefix(next.bytes);
  }
  shown.whole = text.empty();
  return shown;
}

std::string_view last_characters(std::string_view text, std::size_t most) {
  // Of a character that is cut here, up to three bytes are left; they count and go as surplus.
  const std::size_t enough = 4 * most;  // bytes
  if (text.size() > enough) text.remove_prefix(text.size() - enough);
  for (std::size_t surplus = printable(text, text.size()).columns; surplus > most; --surplus)
    text.remove_prefix(first_character(text).bytes);
  return text;
}

std::string quoted(std::string_view text) {
  constexpr std::size_t kLongest = 40;
  const ColumnText shown = printable(text, kLongest);
  return "\"" + shown.text + (shown.whole ? "" : "...") + "\"";
}

std::int64_t line_number(std::string_view text, std::size_t position) {
  const std::string_view before = text.substr(0, position);
  return std::count(before.begin(), before.end(), '\n') + 1;
}

std::int64_t line_number(const NamedText& source, std::size_t position) {
  return line_number(source.text, position) + source.first_line - 1;
}

std::string shown_place(std::string_view text, std::size_t begin, std::size_t end) {
  constexpr std::size_t kShownBefore = 60;
  constexpr std::size_t kShownLine = 100;

  const std::size_t line_end = std::min(text.find('\n', begin), text.size());
  const std::size_t previous_end = text.substr(0, begin).rfind('\n');
  const std::size_t start = previous_end == std::string_view::npos ? 0 : previous_end + 1;
  const std::string_view before = last_characters(text.substr(start, begin - start), kShownBefore);
  const std::size_t caret_column = printable(before, kShownBefore).columns;
  const std::size_t carets =
      printable(text.substr(begin, std::min(end, line_end) - begin), kShownLine - kShownBefore)
          .columns;
  const std::size_t shown_from = begin - before.size();
  std::string shown = printable(text.substr(shown_from, line_end - shown_from), kShownLine).text;
  shown.erase(shown.find_last_not_of(' ') + 1);
  shown.append("\n").append(caret_column, ' ').append(std::max<std::size_t>(carets, 1), '^');
  return shown;
}

InvalidInput invalid_input_at(const NamedText& source, std::size_t begin, std::size_t end,
                              std::string_view what_is_wrong) {
  const std::size_t previous_end = source.text.substr(0, begin).rfind('\n');
  const std::size_t start = previous_end == std::string_view::npos ? 0 : previous_end + 1;
  const std::size_t line_end = std::min(source.text.find('\n', begin), source.text.size());
  return invalid_input_in(
      {source.name, line_number(source, begin), source.text.substr(start, line_end - start)},
      begin - start, end - start, what_is_wrong);
}

InvalidInput invalid_input_in(const NamedLine& line, std::size_t begin, std::size_t end,
                              std::string_view what_is_wrong) {
  std::string message(line.name);
  message.append(":").append(std::to_string(line.number)).append(": ");
  message.append(what_is_wrong).append("\n").append(shown_place(line.text, begin, end));
  const std::string_view before = line.text.substr(0, begin);
  const auto characters = std::count_if(before.begin(), before.end(), [](char c) {
    return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U;  // not a further byte of UTF-8
  });
  return InvalidInput(message, {std::string(line.name), line.number, characters + 1});
}

}  // namespace dravo
