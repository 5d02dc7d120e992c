#include "quantum/user_template.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <optional>

#include "common/free_format_reader.hpp"
#include "common/shown_text.hpp"
#include "common/text.hpp"
#include "quantum/quantum_text.hpp"

namespace dravo {
namespace {

/// Without an end of line behind the last atom, which the template has.
std::string lines_of_atoms(const Pair& pair, const std::array<Presence, 2>& molecules) {
  std::string text;
  append_atom_lines(text, atoms_of(pair, {"", molecules}));
  text.pop_back();
  return text;
}

constexpr std::array kBothMolecules{Presence::real, Presence::real};
constexpr std::array kMolecule1{Presence::real, Presence::absent};
constexpr std::array kMolecule2{Presence::absent, Presence::real};

/// A name and what it stands for.
struct Value {
  std::string_view name;
  std::string (*text)(const QuantumJob& job, const NumberedPair& pose);
};

constexpr std::array<Value, 17> kValues{{
    {"index", [](const auto&, const auto& pose) { return std::to_string(pose.index); }},
    {"method", [](const auto& job, const auto&) { return job.method; }},
    {"basis", [](const auto& job, const auto&) { return job.basis; }},
    {"keywords",
     [](const auto& job, const auto&) { return fmt::format("{}", fmt::join(job.keywords, "\n")); }},
    {"charge", [](const auto& job, const auto&) { return std::to_string(charge_of(job)); }},
    {"charge_1", [](const auto& job, const auto&) { return std::to_string(job.charges[0]); }},
    {"charge_2", [](const auto& job, const auto&) { return std::to_string(job.charges[1]); }},
    {"multiplicity",
     [](const auto& job, const auto&) { return std::to_string(multiplicity_of(job)); }},
    {"multiplicity_1",
     [](const auto& job, const auto&) { return std::to_string(job.multiplicities[0]); }},
    {"multiplicity_2",
     [](const auto& job, const auto&) { return std::to_string(job.multiplicities[1]); }},
    {"atoms", [](const auto&, const auto& pose) { return std::to_string(pose.pair.size()); }},
    {"atoms_1", [](const auto&, const auto& pose) { return std::to_string(pose.pair.n1()); }},
    {"atoms_2", [](const auto&,
                   const auto& pose) { return std::to_string(pose.pair.size() - pose.pair.n1()); }},
    {"symbols_xyz",
     [](const auto&, const auto& pose) { return lines_of_atoms(pose.pair, kBothMolecules); }},
    {"symbols_xyz_1",
     [](const auto&, const auto& pose) { return lines_of_atoms(pose.pair, kMolecule1); }},
    {"symbols_xyz_2",
     [](const auto&, const auto& pose) { return lines_of_atoms(pose.pair, kMolecule2); }},
    {"cores", [](const auto& job, const auto&) { return std::to_string(job.cores); }},
}};

const Value* value_named(std::string_view name) {
  const auto* const found = std::find_if(kValues.begin(), kValues.end(),
                                         [&](const Value& value) { return value.name == name; });
  return found == kValues.end() ? nullptr : found;
}

bool is_of_name(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

/// Where "{name}" stands: its name.
struct Place {
  std::size_t begin;
  std::size_t end;
  std::string_view name;
};

std::optional<Place> next_place(std::string_view text, std::size_t from) {
  for (std::size_t open = text.find('{', from); open != std::string_view::npos;
       open = text.find('{', open + 1)) {
    std::size_t end = open + 1;
    while (end < text.size() && is_of_name(text[end])) ++end;
    if (end > open + 1 && end < text.size() && text[end] == '}')
      return Place{open, end + 1, text.substr(open + 1, end - open - 1)};
  }
  return std::nullopt;
}

/// "{{name}}".
bool is_quoted(std::string_view text, const Place& place) {
  return place.begin > 0 && text[place.begin - 1] == '{' && place.end < text.size() &&
         text[place.end] == '}';
}

int column_named(std::string_view columns, std::string_view name) {
  const auto names = parts_between(columns, ',');
  const auto found = std::find(names.begin(), names.end(), name);
  return found == names.end() ? -1 : static_cast<int>(found - names.begin());
}

/// Scripts name the input files, and have other files of the same names.
std::string usable_ending(const std::string& ending) {
  constexpr std::array<std::string_view, 4> kTaken{".out", ".xyz", ".running", ".failed"};
  const bool taken = std::find(kTaken.begin(), kTaken.end(), ending) != kTaken.end();
  const bool plain = ending.size() > 1 && std::all_of(ending.begin() + 1, ending.end(), is_of_name);
  return plain && !taken ? ending : ".inp";
}

std::string names_of_values(std::string_view columns) {
  std::string names;
  for (const Value& value : kValues) names.append(value.name).append(", ");
  for (const std::string_view column : parts_between(columns, ','))
    if (value_named(column) == nullptr) names.append(column).append(", ");
  return names.substr(0, names.size() - 2);
}

}  // namespace

UserTemplate::UserTemplate(const std::string& file, std::string_view columns)
    : ending_(usable_ending(std::filesystem::path(file).extension().string())) {
  const std::string text = read_file(file);
  std::size_t from = 0;
  for (auto place = next_place(text, 0); place; place = next_place(text, place->end)) {
    if (is_quoted(text, *place)) {
      pieces_.push_back({text.substr(from, place->begin - 1 - from) +
                             text.substr(place->begin, place->end - place->begin),
                         {}});
      from = place->end + 1;
      continue;
    }
    Piece piece{text.substr(from, place->begin - from), {}};
    if (const Value* const value = value_named(place->name))
      piece.name = value->name;
    else
      piece.column = column_named(columns, place->name);
    if (piece.name.empty() && piece.column < 0)
      throw invalid_input_at({file, text}, place->begin, place->end,
                             fmt::format("{{{}}} stands for nothing; there are {}", place->name,
                                         names_of_values(columns)));
    pieces_.push_back(std::move(piece));
    from = place->end;
  }
  pieces_.push_back({text.substr(from), {}});
}

std::string UserTemplate::text(const QuantumJob& job, const NumberedPair& pose,
                               std::string_view row) const {
  std::string text;
  for (const Piece& piece : pieces_) {
    text += piece.text;
    if (!piece.name.empty())
      text += value_named(piece.name)->text(job, pose);
    else if (piece.column >= 0)
      text += part_at(row, ',', static_cast<std::size_t>(piece.column));
  }
  return text;
}

}  // namespace dravo
