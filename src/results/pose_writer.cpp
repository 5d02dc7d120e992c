#include "results/pose_writer.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <system_error>

#include "common/number_format.hpp"
#include "common/record_format.hpp"
#include "molecules/coordinate.hpp"
#include "results/decimals.hpp"

namespace dravo {
namespace {

struct PoseColumn {
  std::string_view name;
  void (*append)(std::string& text, const ScannedPose& pose);
  bool PoseColumns::*only_with = nullptr;
};

/// From 1; nothing for no atom.
void append_atom(std::string& text, std::int32_t atom) {
  if (atom >= 0) append_shortest(text, std::int64_t{atom} + 1);
}

/// Nothing where no pair of atoms has radii.
void append_clearance(std::string& text, const ScannedPose& pose) {
  if (pose.clearance_atom1 >= 0) append_fixed(text, pose.clearance, decimals::kRatio);
}

/// Nothing for a pose without an energy.
void append_energy(std::string& text, const ScannedPose& pose) {
  if (pose.energy_status == EnergyStatus::ok)
    append_fixed(text, pose.interaction, decimals::kEnergy);
}

void append_status(std::string& text, const ScannedPose& pose) {
  if (pose.energy_status) text += name_of(*pose.energy_status);
}

constexpr std::array<PoseColumn, 22> kPoseColumns{{
    {"index", [](auto& text, const auto& p) { append_shortest(text, p.index); }},
    {"above_contact", [](auto& text, const auto& p) { append_shortest(text, p.above_contact); },
     &PoseColumns::above_contact},
    {"r", [](auto& text, const auto& p) { append_shortest(text, p.asked.r); }},
    {"theta", [](auto& text, const auto& p) { append_shortest(text, p.asked.theta); }},
    {"phi", [](auto& text, const auto& p) { append_shortest(text, p.asked.phi); }},
    {"alpha", [](auto& text, const auto& p) { append_shortest(text, p.asked.alpha); }},
    {"beta", [](auto& text, const auto& p) { append_shortest(text, p.asked.beta); }},
    {"gamma", [](auto& text, const auto& p) { append_shortest(text, p.asked.gamma); }},
    {"r_applied",
     [](auto& text, const auto& p) { append_fixed(text, p.applied.r, decimals::kLength); }},
    {"theta_applied",
     [](auto& text, const auto& p) { append_fixed(text, p.applied.theta, decimals::kAngle); }},
    {"phi_applied",
     [](auto& text, const auto& p) { append_fixed(text, p.applied.phi, decimals::kAngle); }},
    {"alpha_applied",
     [](auto& text, const auto& p) { append_fixed(text, p.applied.alpha, decimals::kAngle); }},
    {"beta_applied",
     [](auto& text, const auto& p) { append_fixed(text, p.applied.beta, decimals::kAngle); }},
    {"gamma_applied",
     [](auto& text, const auto& p) { append_fixed(text, p.applied.gamma, decimals::kAngle); }},
    {kShortestColumn,
     [](auto& text, const auto& p) { append_fixed(text, p.shortest, decimals::kLength); }},
    {"contacts", [](auto& text, const auto& p) { append_shortest(text, p.contacts); }},
    {"clearance", append_clearance},
    {"clearance_atom1", [](auto& text, const auto& p) { append_atom(text, p.clearance_atom1); }},
    {"clearance_atom2", [](auto& text, const auto& p) { append_atom(text, p.clearance_atom2); }},
    {"equivalents", [](auto& text, const auto& p) { append_shortest(text, p.equivalents); },
     &PoseColumns::equivalents},
    {kEnergyColumn, append_energy, &PoseColumns::energy},
    {"status", append_status, &PoseColumns::energy},
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

/// " name=value", or nothing for a value that is none.
void append_key(std::string& comment, const PoseColumn& column, const ScannedPose& pose) {
  const std::size_t start = comment.size();
  comment.append(" ").append(column.name).append("=");
  const std::size_t value = comment.size();
  column.append(comment, pose);
  if (comment.size() == value) comment.resize(start);
}

/// The digits of qn-dravo stay as they are.
double as_written(double coordinate, bool exact) {
  return exact ? without_negative_zero(coordinate) : coordinate;
}

void append_atom(std::string& frame, const Label& label, const Vec3& p, bool exact) {
  constexpr int kWidth = 15;
  frame += text_of(label);
  for (const double coordinate : {p.x, p.y, p.z}) {
    frame += ' ';
    append_fixed_field(frame, as_written(coordinate, exact), kWidth, decimals::kLength);
  }
}

}  // namespace

void append_atoms(std::string& frame, std::span<const Label> labels, std::int32_t n1,
                  const ConstAtomTable& placed, bool exact) {
  std::int32_t i = 0;
  for (const Label& label : labels) {
    append_atom(frame, label, placed.position(i), exact);
    frame += i++ < n1 ? " 1\n" : " 2\n";
  }
}

std::string molecule2_frame(std::span<const Label> labels, std::int32_t n1,
                            const ConstAtomTable& placed, bool exact) {
  const auto atoms = static_cast<std::int32_t>(labels.size());
  std::string frame = std::to_string(atoms - n1) + "\n" + kProperties + "\n";
  for (std::int32_t i = n1; i < atoms; ++i) {
    append_atom(frame, labels[static_cast<std::size_t>(i)], placed.position(i), exact);
    frame += " 2\n";
  }
  return frame;
}

std::string PoseWriter::table_heading() const {
  std::string heading;
  for (const PoseColumn& column : kPoseColumns)
    if (is_there(column, columns_)) heading.append(heading.empty() ? "" : ",").append(column.name);
  return heading + "\n";
}

void PoseWriter::append_row(std::string& table, const ScannedPose& pose) const {
  const std::size_t start = table.size();
  for (const PoseColumn& column : kPoseColumns) {
    if (!is_there(column, columns_)) continue;
    if (table.size() > start) table += ',';
    column.append(table, pose);
  }
  table += '\n';
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

void PoseWriter::append_frame(std::string& frames, const ScannedPose& pose,
                              const ConstAtomTable& placed) const {
  append_shortest(frames, static_cast<std::int64_t>(labels_.size()));
  frames.append("\n").append(kProperties);
  for (const PoseColumn& column : kPoseColumns)
    if (is_there(column, columns_)) append_key(frames, column, pose);
  if (columns_.exact) frames += " placing=exact";
  frames += '\n';
  append_atoms(frames, labels_, n1_, placed, columns_.exact);
}

}  // namespace dravo
