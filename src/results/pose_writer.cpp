#include "results/pose_writer.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <iterator>
#include <string_view>
#include <system_error>
#include <utility>

#include "common/number_format.hpp"
#include "common/record_format.hpp"
#include "molecules/coordinate.hpp"
#include "results/decimals.hpp"

namespace dravo {
namespace {

struct PoseColumn {
  std::string_view name;
  /// The value behind `to`, where there is room for a number. Returns its end.
  char* (*write)(char* to, const ScannedPose& pose);
  bool PoseColumns::*only_with = nullptr;
};

/// From 1; nothing for no atom.
char* write_number_of_atom(char* to, std::int32_t atom) {
  return atom >= 0 ? write_shortest(to, std::int64_t{atom} + 1) : to;
}

/// Nothing where no pair of atoms has radii.
char* write_clearance(char* to, const ScannedPose& pose) {
  return pose.clearance_atom1 >= 0 ? write_fixed(to, pose.clearance, decimals::kRatio) : to;
}

/// Nothing for a pose without an energy.
char* write_energy(char* to, const ScannedPose& pose) {
  const bool known = pose.energy_status == EnergyStatus::ok;
  return known ? write_fixed(to, pose.interaction, decimals::kEnergy) : to;
}

char* write_status(char* to, const ScannedPose& pose) {
  if (!pose.energy_status) return to;
  const std::string_view name = name_of(*pose.energy_status);
  return std::copy(name.begin(), name.end(), to);
}

constexpr std::array<PoseColumn, PoseRow::kMostColumns> kPoseColumns{{
    {"index", [](char* to, const auto& p) { return write_shortest(to, p.index); }},
    {"above_contact", [](char* to, const auto& p) { return write_shortest(to, p.above_contact); },
     &PoseColumns::above_contact},
    {"r", [](char* to, const auto& p) { return write_shortest(to, p.asked.r); }},
    {"theta", [](char* to, const auto& p) { return write_shortest(to, p.asked.theta); }},
    {"phi", [](char* to, const auto& p) { return write_shortest(to, p.asked.phi); }},
    {"alpha", [](char* to, const auto& p) { return write_shortest(to, p.asked.alpha); }},
    {"beta", [](char* to, const auto& p) { return write_shortest(to, p.asked.beta); }},
    {"gamma", [](char* to, const auto& p) { return write_shortest(to, p.asked.gamma); }},
    {"r_applied",
     [](char* to, const auto& p) { return write_fixed(to, p.applied.r, decimals::kLength); }},
    {"theta_applied",
     [](char* to, const auto& p) { return write_fixed(to, p.applied.theta, decimals::kAngle); }},
    {"phi_applied",
     [](char* to, const auto& p) { return write_fixed(to, p.applied.phi, decimals::kAngle); }},
    {"alpha_applied",
     [](char* to, const auto& p) { return write_fixed(to, p.applied.alpha, decimals::kAngle); }},
    {"beta_applied",
     [](char* to, const auto& p) { return write_fixed(to, p.applied.beta, decimals::kAngle); }},
    {"gamma_applied",
     [](char* to, const auto& p) { return write_fixed(to, p.applied.gamma, decimals::kAngle); }},
    {kShortestColumn,
     [](char* to, const auto& p) { return write_fixed(to, p.shortest, decimals::kLength); }},
    {"contacts", [](char* to, const auto& p) { return write_shortest(to, p.contacts); }},
    {"clearance", write_clearance},
    {"clearance_atom1",
     [](char* to, const auto& p) { return write_number_of_atom(to, p.clearance_atom1); }},
    {"clearance_atom2",
     [](char* to, const auto& p) { return write_number_of_atom(to, p.clearance_atom2); }},
    {"equivalents", [](char* to, const auto& p) { return write_shortest(to, p.equivalents); },
     &PoseColumns::equivalents},
    {kEnergyColumn, write_energy, &PoseColumns::energy},
    {"status", write_status, &PoseColumns::energy},
}};

/// A number that is all of a text.
template <class Number>
bool read_number(std::string_view text, Number& number) {
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  return error == std::errc{} && stop == end;
}

bool read_energy(std::string_view text, ScannedPose& pose) {
  return text.empty() || read_number(text, pose.interaction);
}

bool read_status(std::string_view text, ScannedPose& pose) {
  pose.energy_status = energy_status(text);
  return pose.energy_status.has_value();
}

/// A column with what placing the pose again does not find.
struct KnownColumn {
  std::string_view name;
  bool (*read)(std::string_view text, ScannedPose& pose);
};

constexpr std::array<KnownColumn, 11> kKnownColumns{{
    {"index", [](auto text, auto& p) { return read_number(text, p.index); }},
    {"above_contact", [](auto text, auto& p) { return read_number(text, p.above_contact); }},
    {"r", [](auto text, auto& p) { return read_number(text, p.asked.r); }},
    {"theta", [](auto text, auto& p) { return read_number(text, p.asked.theta); }},
    {"phi", [](auto text, auto& p) { return read_number(text, p.asked.phi); }},
    {"alpha", [](auto text, auto& p) { return read_number(text, p.asked.alpha); }},
    {"beta", [](auto text, auto& p) { return read_number(text, p.asked.beta); }},
    {"gamma", [](auto text, auto& p) { return read_number(text, p.asked.gamma); }},
    {"equivalents", [](auto text, auto& p) { return read_number(text, p.equivalents); }},
    {kEnergyColumn, read_energy},
    {"status", read_status},
}};

/// True for other columns.
bool read_known(std::string_view name, std::string_view text, ScannedPose& pose) {
  const auto* const known =
      std::find_if(kKnownColumns.begin(), kKnownColumns.end(),
                   [&](const KnownColumn& column) { return column.name == name; });
  return known == kKnownColumns.end() || known->read(text, pose);
}

bool is_there(const PoseColumn& column, const PoseColumns& columns) {
  return column.only_with == nullptr || columns.*column.only_with;
}

/// The digits of qn-dravo stay as they are.
double as_written(double coordinate, bool exact) {
  return exact ? without_negative_zero(coordinate) : coordinate;
}

constexpr std::size_t kFieldWidth = 15;

/// F15.8 before `end`, where blanks stand.
void write_coordinate(char* end, double coordinate) {
  constexpr double kUsual = 99998.0;  // with its sign it has the columns of the field or fewer
  if (std::abs(coordinate) < kUsual) {
    write_fixed_before(end, coordinate, decimals::kLength);
    return;
  }
  std::string field;
  append_fixed_field(field, coordinate, static_cast<int>(kFieldWidth), decimals::kLength);
  std::copy(field.begin(), field.end(), end - kFieldWidth);
}

constexpr std::string_view kBlankLine = "                                                    \n";

/// Returns the end of the line.
char* write_atom(char* line, const Label& label, const Vec3& p, char molecule, bool exact) {
  std::memcpy(line, kBlankLine.data(), kBlankLine.size());
  std::memcpy(line, label.data(), label.size());
  char* end = line + label.size();
  for (const double coordinate : {p.x, p.y, p.z}) {
    end += 1 + kFieldWidth;
    write_coordinate(end, as_written(coordinate, exact));
  }
  end[1] = molecule;
  return line + kBlankLine.size();
}

/// Of so many of the labels, from row `first` on.
char* write_atoms(char* next, std::span<const Label> labels, std::int32_t first, char molecule,
                  const ConstAtomTable& placed, bool exact) {
  for (const Label& label : labels)
    next = write_atom(next, label, placed.position(first++), molecule, exact);
  return next;
}

std::string atom_lines(std::span<const Label> labels, std::int32_t first, char molecule,
                       const ConstAtomTable& placed, bool exact) {
  std::string lines(labels.size() * kBlankLine.size(), ' ');
  write_atoms(lines.data(), labels, first, molecule, placed, exact);
  return lines;
}

constexpr std::string_view kExactWords = " placing=exact";

}  // namespace

void append_atoms(std::string& frame, std::span<const Label> labels, std::int32_t n1,
                  const ConstAtomTable& placed, bool exact) {
  const auto [molecule1, of_molecule2, molecule2] = frame_atoms(labels, n1, placed, exact);
  frame.append(atom_lines(molecule1, 0, '1', placed, exact)).append(molecule2);
}

FrameAtoms frame_atoms(std::span<const Label> labels, std::int32_t n1, const ConstAtomTable& placed,
                       bool exact) {
  const auto molecule1 = static_cast<std::size_t>(n1);
  const auto molecule2 = labels.subspan(molecule1);
  return {labels.first(molecule1), static_cast<std::int32_t>(molecule2.size()),
          atom_lines(molecule2, n1, '2', placed, exact)};
}

std::string molecule2_frame(const FrameAtoms& atoms) {
  return fmt::format("{}\n{}\n{}", atoms.of_molecule2, kProperties, atoms.molecule2);
}

PoseWriter::PoseWriter(FrameAtoms atoms, const PoseColumns& columns)
    : atoms_(std::move(atoms)),
      columns_(columns),
      head_(
          fmt::format("{}\n{}", std::ssize(atoms_.molecule1) + atoms_.of_molecule2, kProperties)) {
  for (const PoseColumn& column : kPoseColumns)
    if (is_there(column, columns_)) {
      Key& key = keys_.emplace_back();
      key.size = fmt::format_to_n(key.text.begin(), key.text.size(), " {}=", column.name).size;
    }
  longest_comment_ =
      head_.size() + keys_.size() * sizeof(Key::text) + kExactWords.size() + 1 + PoseRow::kCopied;
}

std::string PoseWriter::table_heading() const {
  std::string heading;
  for (const PoseColumn& column : kPoseColumns)
    if (is_there(column, columns_)) heading.append(heading.empty() ? "" : ",").append(column.name);
  return heading + "\n";
}

void PoseWriter::fill(PoseRow& row, const ScannedPose& pose) const {
  char* end = row.cells_.data();
  row.columns_ = 0;
  for (const PoseColumn& column : kPoseColumns) {
    if (!is_there(column, columns_)) continue;
    end = column.write(end, pose);
    row.ends_[row.columns_++] = static_cast<std::size_t>(end - row.cells_.data());
    *end++ = ',';
  }
  end[-1] = '\n';
}

std::optional<ScannedPose> PoseWriter::read_row(std::string_view row) const {
  ScannedPose pose;
  for (const PoseColumn& column : kPoseColumns) {
    if (!is_there(column, columns_)) continue;
    const std::size_t comma = std::min(row.find(','), row.size());
    if (!read_known(column.name, row.substr(0, comma), pose)) return std::nullopt;
    row.remove_prefix(std::min(comma + 1, row.size()));
  }
  if (!columns_.above_contact) pose.above_contact = pose.asked.r;
  return pose;
}

void PoseWriter::append_frame(std::string& frames, const PoseRow& row,
                              const ConstAtomTable& placed) const {
  const std::size_t begin = frames.size();
  frames.resize(begin + longest_comment_ + row.line().size() +
                atoms_.molecule1.size() * kBlankLine.size() + atoms_.molecule2.size());
  char* next = write_comment(frames.data() + begin, row);
  next = write_atoms(next, atoms_.molecule1, 0, '1', placed, columns_.exact);
  next = std::copy(atoms_.molecule2.begin(), atoms_.molecule2.end(), next);
  frames.resize(static_cast<std::size_t>(next - frames.data()));
}

/// " name=value" for each value of the row, nothing for one that is none. Returns the end.
char* PoseWriter::write_comment(char* next, const PoseRow& row) const {
  next = std::copy(head_.begin(), head_.end(), next);
  std::size_t begin = 0;
  for (std::size_t k = 0; k < keys_.size(); ++k) {
    const Key& key = keys_[k];
    const char* const cell = row.cells_.data() + begin;
    const std::size_t size = row.ends_[k] - begin;
    begin = row.ends_[k] + 1;
    if (size == 0) continue;
    std::memcpy(next, key.text.data(), key.text.size());
    next += key.size;
    std::memcpy(next, cell, PoseRow::kCopied);  // sooner done than as many as there are
    if (size > PoseRow::kCopied) std::memcpy(next, cell, size);
    next += size;
  }
  if (columns_.exact) next = std::copy(kExactWords.begin(), kExactWords.end(), next);
  *next++ = '\n';
  return next;
}

}  // namespace dravo
