#include "molecules/xyz_file.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <string>
#include <string_view>

#include "common/errors.hpp"
#include "common/number_text.hpp"
#include "molecules/coordinate.hpp"
#include "molecules/element_label.hpp"

namespace dravo {
namespace {

constexpr bool is_blank(char c) { return c == ' ' || c == '\t' || c == '\r'; }
constexpr bool is_quote(char c) { return c == '"' || c == '\''; }

constexpr std::array<const char*, 3> kCoordinates{"x", "y", "z"};

/// Part of the text, by offset.
struct Part {
  std::size_t begin;
  std::size_t end;

  [[nodiscard]] bool empty() const { return begin == end; }
};

/// Where an atom's line holds what is needed, columns from 0.
struct Columns {
  std::size_t label = 0;
  std::size_t x = 1;  ///< y and z follow
  std::optional<std::size_t> molecule = std::nullopt;

  [[nodiscard]] std::size_t count() const {
    return std::max({label, x + 2, molecule.value_or(0)}) + 1;
  }
};

/// What a column of molecule numbers tells of the division into two.
class MoleculeColumn {
 public:
  void add(std::optional<std::int32_t> number) {
    const bool first = number == 1 && second_ == 0;
    (first ? first_ : second_) += 1;
    divides_ = divides_ && (first || number == 2);
  }

  [[nodiscard]] std::optional<std::int32_t> n1() const {
    return divides_ && first_ > 0 && second_ > 0 ? std::optional(first_) : std::nullopt;
  }

 private:
  std::int32_t first_ = 0;
  std::int32_t second_ = 0;
  bool divides_ = true;
};

/// A column of `Properties` that is needed, and the only form that it can have.
struct Property {
  std::string_view name;
  std::string_view form;  ///< type and number of columns
};
constexpr Property kSpecies{"species", "S:1"};
constexpr Property kAtomicNumber{"Z", "I:1"};
constexpr Property kPosition{"pos", "R:3"};
constexpr std::string_view kMoleculeName = "molecule";
constexpr std::string_view kMoleculeForm = "I:1";

class XyzReader {
 public:
  XyzReader(const NamedText& source, double angstrom_per_unit)
      : source_(source), text_(source.text), unit_(angstrom_per_unit) {}

  XyzFrame read(std::int32_t wanted);
  XyzFrame read_one(std::int64_t number);
  std::optional<std::int32_t> trailer();

 private:
  [[nodiscard]] bool at_end() const { return position_ >= text_.size(); }
  [[nodiscard]] std::string_view view(Part part) const {
    return text_.substr(part.begin, part.end - part.begin);
  }
  Part next_line();
  Part next_item(Part& rest) const;
  bool skip_blank_lines();
  void refuse_byte_order_mark() const;
  std::int32_t read_count(std::int64_t frame);
  Part read_comment();
  void require_atom_line(std::int32_t atom, std::int32_t N) const;
  void skip_atoms(std::int32_t N);
  void read_atoms(std::int32_t N, XyzFrame& frame);
  void read_atom(std::int32_t atom, const Columns& columns, XyzFrame& frame);
  [[nodiscard]] Part past_quote(Part rest) const;
  [[nodiscard]] std::optional<Part> properties_in(Part comment) const;
  [[nodiscard]] Columns columns_of(Part comment) const;
  [[nodiscard]] bool is_property(Part name, Part form, const Property& property) const;

  [[nodiscard]] std::string found(Part item) const {
    return item.empty() ? "the end of the line" : quoted(view(item));
  }
  [[noreturn]] void refuse(Part place, const std::string& what_is_wrong) const {
    throw invalid_input_at(source_, place.begin, place.end, what_is_wrong);
  }
  [[noreturn]] void refuse_end(const std::string& expected) const;

  NamedText source_;
  std::string_view text_;
  double unit_;                  ///< Angstrom
  std::size_t position_ = 0;     ///< where a line begins
  std::size_t count_begin_ = 0;  ///< where the frame that is being read begins
  MoleculeColumn molecules_;
};

/// Without blanks at its end.
Part XyzReader::next_line() {
  const std::size_t begin = position_;
  std::size_t end = std::min(text_.find('\n', begin), text_.size());
  position_ = std::min(end + 1, text_.size());
  while (end > begin && is_blank(text_[end - 1])) --end;
  return {begin, end};
}

/// Takes the first item off the rest of a line; both are empty at its end.
Part XyzReader::next_item(Part& rest) const {
  while (!rest.empty() && is_blank(text_[rest.begin])) ++rest.begin;
  Part item{rest.begin, rest.begin};
  while (item.end < rest.end && !is_blank(text_[item.end])) ++item.end;
  rest.begin = item.end;
  return item;
}

/// False at the end of the text.
bool XyzReader::skip_blank_lines() {
  while (!at_end()) {
    const std::size_t begin = position_;
    if (!next_line().empty()) {
      position_ = begin;
      return true;
    }
  }
  return false;
}

/// Blank, n1, blank, "n", end. Where anything else stands, nothing is read.
std::optional<std::int32_t> XyzReader::trailer() {
  const std::size_t begin = position_;
  const auto next = [&] {
    Part line = next_line();
    return view(next_item(line));
  };
  const bool blank_before = next().empty();
  const auto n1 = parse_integer(next());
  const bool blank_after = next().empty();
  const bool closed = next() == "n" && !skip_blank_lines();
  if (blank_before && n1 && blank_after && closed) return n1;
  position_ = begin;
  return std::nullopt;
}

std::int32_t XyzReader::read_count(std::int64_t frame) {
  const std::string what =
      frame == 1 ? "the number of atoms (an integer)"
                 : "the end of the file or the number of atoms of frame " + std::to_string(frame);
  if (at_end()) refuse_end(what);
  count_begin_ = position_;
  Part line = next_line();
  const Part item = next_item(line);
  const auto N = parse_integer(view(item));
  if (!N) refuse(item, fmt::format("expected {}, found {}", what, found(item)));
  if (*N < 1 || *N > kMaxAtoms)
    refuse(item, fmt::format("expected 1 to {} atoms, found {}", kMaxAtoms, found(item)));
  const Part surplus = next_item(line);
  if (!surplus.empty())
    refuse(surplus, "expected nothing after the number of atoms, found " + found(surplus));
  return *N;
}

Part XyzReader::read_comment() {
  if (at_end()) refuse_end("the comment line");
  return next_line();
}

void XyzReader::require_atom_line(std::int32_t atom, std::int32_t N) const {
  if (at_end())
    refuse_end(fmt::format("atom {} of the {} that line {} announces", atom, N,
                           line_number(source_, count_begin_)));
}

void XyzReader::skip_atoms(std::int32_t N) {
  (void)read_comment();
  for (std::int32_t atom = 1; atom <= N; ++atom) {
    require_atom_line(atom, N);
    (void)next_line();
  }
}

void XyzReader::read_atoms(std::int32_t N, XyzFrame& frame) {
  const Columns columns = columns_of(read_comment());
  for (std::int32_t atom = 1; atom <= N; ++atom) {
    require_atom_line(atom, N);
    read_atom(atom, columns, frame);
  }
  frame.n1_of_column = molecules_.n1();
}

void XyzReader::read_atom(std::int32_t atom, const Columns& columns, XyzFrame& frame) {
  const auto name_of = [&](std::size_t column) {
    if (column == columns.label) return fmt::format("the element of atom {}", atom);
    if (column >= columns.x && column < columns.x + 3)
      return fmt::format("the {} coordinate (a number) of atom {}",
                         kCoordinates[column - columns.x], atom);
    return fmt::format("column {} of atom {}", column + 1, atom);
  };
  Part line = next_line();
  std::array<double, 3> position{};
  for (std::size_t column = 0; column < columns.count(); ++column) {
    const Part item = next_item(line);
    if (item.empty())
      refuse(item, fmt::format("expected {}, found {}", name_of(column), found(item)));
    if (column == columns.label) {
      const auto label = element_of(view(item));
      if (!label) refuse(item, label_fault(view(item)));
      frame.labels.push_back(*label);
    } else if (column == columns.molecule) {
      molecules_.add(parse_integer(view(item)));
    } else if (column >= columns.x && column < columns.x + 3) {
      const auto value = parse_real(view(item));
      if (!value || !std::isfinite(*value))
        refuse(item, fmt::format("expected {}, found {}", name_of(column), found(item)));
      position[column - columns.x] = unit_ * *value;
      if (!is_coordinate(position[column - columns.x]))
        refuse(item,
               fmt::format("expected a coordinate {}, found {}", kCoordinateRange, found(item)));
    }
  }
  frame.positions.push_back({position[0], position[1], position[2]});
}

/// The rest behind a text in quotes that it begins with. A quote that is never closed reaches to
/// its end.
Part XyzReader::past_quote(Part rest) const {
  const char quote = text_[rest.begin++];
  while (!rest.empty() && text_[rest.begin] != quote) {
    const bool escape = text_[rest.begin] == '\\';
    rest.begin = std::min(rest.begin + (escape ? 2 : 1), rest.end);
  }
  if (!rest.empty()) ++rest.begin;
  return rest;
}

/// The value of the key `Properties` in a comment of key=value items, without its quotes.
std::optional<Part> XyzReader::properties_in(Part comment) const {
  Part rest = comment;
  const auto skip_blanks = [&] {
    while (!rest.empty() && is_blank(text_[rest.begin])) ++rest.begin;
  };
  const auto take = [&](auto&& ends) {
    Part item{rest.begin, rest.begin};
    if (!rest.empty() && is_quote(text_[rest.begin])) {
      rest = past_quote(rest);
      item = {item.begin + 1, rest.begin};
      if (item.end > item.begin && is_quote(text_[item.end - 1])) --item.end;
      return item;
    }
    while (!rest.empty() && !ends(text_[rest.begin])) ++rest.begin;
    item.end = rest.begin;
    return item;
  };
  for (skip_blanks(); !rest.empty(); skip_blanks()) {
    const Part key = take([](char c) { return is_blank(c) || c == '='; });
    skip_blanks();
    if (rest.empty() || text_[rest.begin] != '=') continue;
    ++rest.begin;
    skip_blanks();
    const Part value = take(is_blank);
    if (view(key) == "Properties") return value;
  }
  return std::nullopt;
}

bool XyzReader::is_property(Part name, Part form, const Property& property) const {
  if (view(name) != property.name) return false;
  if (view(form) != property.form)
    refuse({name.begin, form.end},
           fmt::format("expected {}:{}, found {}", property.name, property.form,
                       quoted(view({name.begin, form.end}))));
  return true;
}

Columns XyzReader::columns_of(Part comment) const {
  const auto value = properties_in(comment);
  if (!value) return {};
  auto next_field = [&, rest = *value]() mutable {
    const std::size_t end = std::min(text_.find(':', rest.begin), rest.end);
    const Part field{rest.begin, end};
    rest.begin = std::min(end + 1, rest.end);
    return field;
  };
  std::optional<std::size_t> species, atomic_number, position, molecule;
  std::size_t column = 0;
  for (Part name = next_field(); !name.empty(); name = next_field()) {
    const Part type = next_field();
    const Part count = next_field();
    const auto columns = parse_integer(view(count));
    if (!columns || *columns < 1)
      refuse({name.begin, std::max(name.end, count.end)},
             "expected a property as name:type:columns, found " +
                 quoted(view({name.begin, std::max(name.end, count.end)})));
    const Part form{type.begin, count.end};
    if (is_property(name, form, kSpecies)) species = column;
    if (is_property(name, form, kAtomicNumber)) atomic_number = column;
    if (is_property(name, form, kPosition)) position = column;
    if (view(name) == kMoleculeName && view(form) == kMoleculeForm) molecule = column;
    column += static_cast<std::size_t>(*columns);
  }
  const auto label = species ? species : atomic_number;
  if (!label) refuse(*value, "expected species:S:1 or Z:I:1 among the Properties");
  if (!position) refuse(*value, "expected pos:R:3 among the Properties");
  return {*label, *position, molecule};
}

void XyzReader::refuse_end(const std::string& expected) const {
  const bool line_open = !text_.empty() && text_.back() != '\n';
  const std::int64_t missing = line_number(source_, text_.size()) + (line_open ? 1 : 0);
  throw InvalidInput(
      fmt::format("{}:{}: expected {}, found the end of the file", source_.name, missing, expected),
      {std::string(source_.name), missing});
}

void XyzReader::refuse_byte_order_mark() const {
  if (text_.starts_with(kByteOrderMark)) refuse({0, kByteOrderMark.size()}, kByteOrderMarkFault);
}

XyzFrame XyzReader::read(std::int32_t wanted) {
  refuse_byte_order_mark();
  XyzFrame frame;
  do {
    ++frame.frames;
    const std::int32_t N = read_count(frame.frames);
    if (frame.frames == wanted) {
      read_atoms(N, frame);
    } else {
      skip_atoms(N);
    }
    if (frame.frames == 1) frame.n1 = trailer();
  } while (skip_blank_lines());
  if (frame.frames < wanted)
    throw InvalidInput(fmt::format("{}: there is no frame {}: the file holds {} {}", source_.name,
                                   wanted, frame.frames, frame.frames == 1 ? "frame" : "frames"));
  return frame;
}

XyzFrame XyzReader::read_one(std::int64_t number) {
  refuse_byte_order_mark();
  XyzFrame frame;
  frame.frames = 1;
  read_atoms(read_count(number), frame);
  return frame;
}

}  // namespace

XyzFrame read_xyz(const NamedText& source, std::int32_t wanted, double angstrom_per_unit) {
  return XyzReader(source, angstrom_per_unit).read(wanted);
}

std::optional<std::int32_t> trailer_in(std::string_view text) {
  return XyzReader({"", text}, 1.0).trailer();
}

XyzFrame read_xyz_frame(const NamedText& lines, std::int64_t number, double angstrom_per_unit) {
  return XyzReader(lines, angstrom_per_unit).read_one(number);
}

}  // namespace dravo
