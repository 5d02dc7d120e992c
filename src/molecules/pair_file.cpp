#include "molecules/pair_file.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <limits>
#include <span>
#include <string_view>
#include <utility>

#include "common/errors.hpp"
#include "common/free_format_reader.hpp"
#include "common/number_format.hpp"
#include "common/number_text.hpp"
#include "driver/element_table.hpp"
#include "driver/input_reader.hpp"
#include "driver/run_stop.hpp"
#include "driver/user_parameters.hpp"
#include "molecules/coordinate.hpp"
#include "molecules/element_label.hpp"
#include "molecules/foreign_format.hpp"
#include "molecules/fragments.hpp"
#include "molecules/input_file.hpp"
#include "molecules/length_unit.hpp"
#include "molecules/pair_check.hpp"
#include "molecules/pose_range.hpp"

namespace dravo {
namespace {

/// What one file holds.
struct Contents {
  std::vector<Label> labels;
  std::vector<Vec3> positions;     ///< Angstrom
  std::optional<std::int32_t> n1;  ///< of a file that tells it
  std::optional<PoseDegrees> parameters;
  std::int32_t frames = 1;
  bool any_unit = true;  ///< false for formats that are always in Angstrom

  [[nodiscard]] std::int32_t N() const { return static_cast<std::int32_t>(labels.size()); }
};

// --- QN-input-GEOMETRY.xyz --------------------------------------------------------------------

std::string_view first_line(std::string_view text) { return text.substr(0, text.find('\n')); }

/// Behind `count` lines.
std::string_view skip_lines(std::string_view text, std::int64_t count) {
  for (; count > 0 && !text.empty(); --count)
    text.remove_prefix(std::min(first_line(text).size() + 1, text.size()));
  return text;
}

bool reads_as_atom(std::string_view line) {
  FreeFormatReader reader("", line);
  try {
    reader.next_statement();
    (void)reader.label({});
    for (int k = 0; k < 3; ++k) (void)reader.real({});
  } catch (const UnreadableItem&) {
    return false;
  }
  return true;
}

/// The integer that the first line begins with.
std::optional<std::int32_t> first_integer(std::string_view text) {
  FreeFormatReader reader("", first_line(text));
  try {
    reader.next_statement();
    return reader.integer({});
  } catch (const UnreadableItem&) {
    return std::nullopt;
  }
}

/// The atoms of this format begin where other xyz files have their comment, and end a line earlier.
/// A comment may read as an atom, but then the last atom stands in line N+2. With a mistake in the
/// first atom the format still shows in n1, alone in line N+3.
bool is_qn_input(std::string_view text, std::int32_t N) {
  if (N < 1) return false;
  const std::string_view after_count = skip_lines(text, 1);
  const std::string_view last_atom = skip_lines(text, N);
  const std::string_view after_atoms = skip_lines(last_atom, 1);
  if (reads_as_atom(first_line(after_atoms))) return false;
  if (reads_as_atom(first_line(after_count))) return true;
  const bool has_text =
      first_line(after_count).find_first_not_of(" \t\r") != std::string_view::npos;
  return has_text && reads_as_atom(first_line(last_atom)) &&
         first_integer(skip_lines(after_atoms, 1)).has_value();
}

/// The label of a line as it stands there, without quotes.
std::string_view label_in(std::string_view line) {
  line.remove_prefix(std::min(line.find_first_not_of(" \t\r"), line.size()));
  const bool in_quotes = line.starts_with('"') || line.starts_with('\'');
  if (!in_quotes) return line.substr(0, line.find_first_of(" \t\r,"));
  const std::size_t closing = line.find(line[0], 1);
  return closing == std::string_view::npos ? "" : line.substr(1, closing - 1);
}

/// The reader keeps two characters of a label, by which `Carbon` is calcium. Here all of them must
/// be the element.
void require_elements(const NamedText& source, std::vector<Label>& labels) {
  std::string_view rest = skip_lines(source.text, 1);
  for (std::size_t i = 0; i < labels.size(); ++i, rest = skip_lines(rest, 1)) {
    const std::string_view kept = text_of(labels[i]).substr(0, labels[i][1] == ' ' ? 1 : 2);
    const std::string_view whole = label_in(first_line(rest));
    // A record that took several lines moved the later ones down.
    const bool in_place = whole.substr(0, 2) == kept;
    const std::string_view label = in_place ? whole : kept;
    const auto element = element_of(label);
    if (element) {
      labels[i] = *element;
      continue;
    }
    if (!in_place)
      throw InvalidInput(fmt::format("{}: atom {}: {}", source.name, i + 1, label_fault(label)));
    const auto begin = static_cast<std::size_t>(whole.data() - source.text.data());
    throw invalid_input_at(source, begin, begin + whole.size(), label_fault(label));
  }
}

/// Reads once more up to the first coordinate that lies out of range, whose place is shown.
void require_coordinates(const NamedText& source, const std::vector<Vec3>& positions) {
  const auto lies_outside = [](const Vec3& p) {
    return !is_coordinate(p.x) || !is_coordinate(p.y) || !is_coordinate(p.z);
  };
  const auto outside = std::find_if(positions.begin(), positions.end(), lies_outside);
  if (outside == positions.end()) return;
  FreeFormatReader reader(std::string(source.name), source.text);
  reader.next_statement();
  (void)reader.integer({});
  for (auto atom = positions.begin(); atom <= outside; ++atom) {
    reader.next_statement();
    (void)reader.label({});
    for (int k = 0; k < 3; ++k)
      if (!is_coordinate(reader.real({})))
        throw reader.about_last_item(std::string("a coordinate ") + kCoordinateRange);
  }
}

/// What `qn-dravo` takes is read; whoever uses it may ask for more.
void require_in_range(const std::string& name, const PoseDegrees& stated) {
  const PoseDegrees folded = with_folded_azimuths(stated);
  const auto complaint = complaint_about(folded);
  if (complaint && find_range_fault(with_beta_zero_rule(folded)))
    throw InvalidInput(fmt::format("{}: {} {}: {}", name, complaint->name(),
                                   shortest_text(complaint->value()), complaint->what()));
}

/// A `Pair` knows which counts it takes.
constexpr FewestAtoms kAnyCounts{std::numeric_limits<std::int32_t>::min(),
                                 std::numeric_limits<std::int32_t>::min()};

Contents read_qn_input(const NamedText& source, std::int32_t N) {
  const std::string name(source.name);
  if (N > kMaxAtoms)
    throw InvalidInput(
        fmt::format("{}: a pair has at most {}, found {}", name, atoms_text(kMaxAtoms), N));
  const auto rows = static_cast<std::size_t>(N);
  std::vector<double> storage(2 * kColumns * rows);
  AtomTable atoms{std::span(storage).first(kColumns * rows), N};
  AtomTable copy{std::span(storage).last(kColumns * rows), N};
  Contents contents;
  contents.labels.resize(rows);
  FreeFormatReader reader(name, source.text);
  const InputGeometry input = read_input(reader, atoms, copy, contents.labels, kAnyCounts);
  contents.n1 = input.split.n1;
  contents.parameters = input.stated;
  contents.any_unit = false;
  require_in_range(name, input.stated);
  for (std::int32_t i = 0; i < N; ++i) contents.positions.push_back(atoms.position(i));
  require_elements(source, contents.labels);
  require_coordinates(source, contents.positions);
  return contents;
}

// --- any file ---------------------------------------------------------------------------------

/// A file that tells n1 holds one pair, in Angstrom.
void require_plain_request(const std::string& name, const PairRequest& request) {
  if (request.frame != 1)
    throw InvalidInput(
        fmt::format("{}: there is no frame {}: the file holds one pair", name, request.frame));
  if (request.unit != LengthUnit::angstrom)
    throw InvalidInput(fmt::format("{}: files of this format are in Angstrom, not in {}", name,
                                   named_unit(request.unit).name));
}

Contents contents_of(XyzFrame frame) {
  Contents contents;
  contents.labels = std::move(frame.labels);
  contents.positions = std::move(frame.positions);
  contents.n1 = frame.n1 ? frame.n1 : frame.n1_of_column;
  contents.frames = frame.frames;
  contents.any_unit = !frame.n1;
  return contents;
}

/// As `read_xyz`, but of another format it tells which.
XyzFrame read_xyz_or_tell(const std::string& file, const NamedText& source, std::int32_t frame,
                          LengthUnit unit) {
  try {
    return read_xyz(source, frame, named_unit(unit).angstrom);
  } catch (const InvalidInput&) {
    if (const auto message = foreign_format_message(file, source.text))
      throw InvalidInput(*message, {std::string(source.name)});
    throw;
  }
}

/// `file` is its name, or "-".
Contents contents_of(const std::string& file, std::string_view text, const PairRequest& request) {
  const std::string name = shown_name(file);
  const NamedText source{name, text};
  const auto N = first_integer(text);
  if (N && is_qn_input(text, *N)) {
    require_plain_request(name, request);
    return read_qn_input(source, *N);
  }
  XyzFrame frame = read_xyz_or_tell(file, source, request.frame, request.unit);
  if (frame.n1) require_plain_request(name, request);
  return contents_of(std::move(frame));
}

Contents read_contents(const std::string& file, const PairRequest& request) {
  return contents_of(file, read_input(file), request);
}

void remark_on_frames(const std::string& name, const Contents& contents, std::int32_t frame,
                      std::vector<std::string>& remarks) {
  if (contents.frames > 1)
    remarks.push_back(fmt::format("{}: frame {} of {} is used", name, frame, contents.frames));
}

// --- two molecules ----------------------------------------------------------------------------

[[noreturn]] void refuse_components(const PairRequest& request, const Contents& contents,
                                    const std::vector<Rows>& components) {
  std::string text =
      fmt::format("{}: the bonds make {} {}, not two", shown_name(request.file), components.size(),
                  components.size() == 1 ? "molecule" : "molecules");
  if (const auto unit = better_unit(contents.labels, contents.positions, request.unit)) {
    const char* const name = named_unit(*unit).name;
    text += fmt::format("\nthe coordinates make molecules in {}: use --unit {}", name, name);
  } else {
    text += "; use --split N1" + listed_molecules(contents.labels, components);
  }
  throw InvalidInput(text, {shown_name(request.file)});
}

/// The atoms in the order of `rows`.
template <class Value>
std::vector<Value> reordered(const std::vector<Value>& values, const Rows& rows) {
  std::vector<Value> result;
  result.reserve(rows.size());
  for (const std::int32_t row : rows) result.push_back(values[static_cast<std::size_t>(row)]);
  return result;
}

/// Returns n1; moves the atoms of molecule 1 to the front.
std::int32_t split_by_bonds(const PairRequest& request, Contents& contents,
                            std::vector<std::string>& remarks) {
  const std::string name = shown_name(request.file);
  const auto components = bonded_components(contents.labels, contents.positions);
  if (components.size() != 2) refuse_components(request, contents, components);
  for (std::size_t k = 0; k < 2; ++k)
    remarks.push_back(molecule_text(k + 1, contents.labels, components[k]));
  const auto n1 = static_cast<std::int32_t>(components[0].size());
  const bool mixed = components[0].back() >= n1;
  if (contents.n1 && (mixed || *contents.n1 != n1))
    throw InvalidInput(
        fmt::format("{}: the file gives molecule 1 its first {}, but the bonds make {}", name,
                    atoms_text(*contents.n1), remarks[remarks.size() - 2]));
  if (mixed) {
    Rows order = components[0];
    order.insert(order.end(), components[1].begin(), components[1].end());
    contents.labels = reordered(contents.labels, order);
    contents.positions = reordered(contents.positions, order);
    for (std::int32_t& row : order) ++row;
    remarks.push_back(fmt::format("{}: the atoms of the molecules alternate; their new order is {}",
                                  name, shortened(ranges_of(order))));
  }
  return n1;
}

std::int32_t split_of(const PairRequest& request, Contents& contents,
                      std::vector<std::string>& remarks) {
  if (!request.split) {
    if (contents.n1) return *contents.n1;
    if (request.n1_if_untold) return *request.n1_if_untold;
    throw InvalidInput(
        shown_name(request.file) +
            ": where molecule 2 begins is not known; use --split N1, the number of atoms "
            "of molecule 1, or --split auto, by bonds",
        {shown_name(request.file)});
  }
  if (std::holds_alternative<SplitByBonds>(*request.split))
    return split_by_bonds(request, contents, remarks);
  const std::int32_t n1 = std::get<std::int32_t>(*request.split);
  if (contents.n1.value_or(n1) != n1)
    throw InvalidInput(fmt::format("{}: the file gives molecule 1 {}, --split {}",
                                   shown_name(request.file), atoms_text(*contents.n1), n1),
                       {shown_name(request.file)});
  return n1;
}

Pair pair_of(const std::string& name, Contents& contents, std::int32_t n1) {
  try {
    return {n1, Molecule(std::move(contents.labels), std::move(contents.positions))};
  } catch (const InvalidInput& fault) {
    throw InvalidInput(fmt::format("{}: {}", name, fault.what()), {name});
  }
}

PairCheck checked(const Pair& pair, const PairRequest& request, const PairOrigin& origin) {
  return request.check ? check_pair(pair, origin) : PairCheck{};
}

/// Throws InvalidInput for what nobody wants.
void apply(PairCheck found, const std::string& name, std::vector<std::string>& remarks) {
  if (!found.refusals.empty()) throw InvalidInput(found.refusals[0], {name});
  for (std::string& warning : found.warnings) remarks.push_back(std::move(warning));
}

CheckedPair checked_pair(Contents contents, const PairRequest& request,
                         std::vector<std::string>& remarks) {
  const std::string name = shown_name(request.file);
  const Division division = contents.parameters ? Division::apart
                            : contents.n1       ? Division::told
                                                : Division::asked;
  const std::int32_t n1 = split_of(request, contents, remarks);
  Pair pair = pair_of(name, contents, n1);
  PairCheck check = checked(pair, request, {name, "", division, request.unit, contents.any_unit});
  return {std::move(pair), std::move(check)};
}

PairFile pair_file_of(Contents contents, const PairRequest& request) {
  const std::string name = shown_name(request.file);
  const auto parameters = contents.parameters;
  std::vector<std::string> remarks;
  remark_on_frames(name, contents, request.frame, remarks);
  auto [pair, check] = checked_pair(std::move(contents), request, remarks);
  apply(std::move(check), name, remarks);
  return {std::move(pair), parameters, std::move(remarks)};
}

PairFile read_two_files(const PairRequest& request) {
  if (request.split)
    throw InvalidInput("--split does not go with two files: each of them is one molecule");
  if (is_standard_input(request.file) && is_standard_input(request.second_file))
    throw InvalidInput("standard input (-) can be one file only");
  std::vector<std::string> remarks;
  std::array<Contents, 2> molecules;
  const std::array<std::string, 2> names{shown_name(request.file), shown_name(request.second_file)};
  for (const std::size_t k : {0U, 1U}) {
    molecules[k] = read_contents(k == 0 ? request.file : request.second_file, request);
    if (molecules[k].n1)
      throw InvalidInput(names[k] +
                         ": the file holds both molecules; it cannot be one of two files");
    remark_on_frames(names[k], molecules[k], request.frame, remarks);
  }
  auto& [one, two] = molecules;
  const std::int32_t n1 = one.N();
  one.labels.insert(one.labels.end(), two.labels.begin(), two.labels.end());
  one.positions.insert(one.positions.end(), two.positions.begin(), two.positions.end());
  Pair pair = pair_of(names[0] + ", " + names[1], one, n1);
  apply(checked(pair, request, {names[0], names[1], Division::apart, request.unit}), names[0],
        remarks);
  return {std::move(pair), std::nullopt, std::move(remarks)};
}

}  // namespace

Molecule read_molecule(const std::string& file, std::int32_t frame, LengthUnit unit) {
  const std::string name = shown_name(file);
  const std::string text = read_input(file);
  XyzFrame found = read_xyz_or_tell(file, {name, text}, frame, unit);
  return {std::move(found.labels), std::move(found.positions)};
}

bool is_qn_input(std::string_view text) {
  const auto N = first_integer(text);
  return N && is_qn_input(text, *N);
}

PairFile pair_of_text(std::string_view text, const PairRequest& request) {
  return pair_file_of(contents_of(request.file, text, request), request);
}

PairFile pair_of_atoms(const Molecule& atoms, const PairRequest& request) {
  Contents contents;
  contents.labels = atoms.labels();
  contents.positions = atoms.positions();
  return pair_file_of(std::move(contents), request);
}

CheckedPair pair_of_frame(XyzFrame frame, const PairRequest& request) {
  std::vector<std::string> ignored;  // how bonds divide it
  return checked_pair(contents_of(std::move(frame)), request, ignored);
}

AtomsFile read_atoms(const PairRequest& request) {
  const std::string name = shown_name(request.file);
  Contents contents = read_contents(request.file, request);
  std::vector<std::string> remarks;
  remark_on_frames(name, contents, request.frame, remarks);
  if (!request.split && !contents.n1)
    return {{std::move(contents.labels), std::move(contents.positions)},
            std::nullopt,
            std::move(remarks)};
  const std::int32_t n1 = split_of(request, contents, remarks);
  const Pair pair = pair_of(name, contents, n1);
  return {{pair.labels(), pair.positions()}, n1, std::move(remarks)};
}

PairFile read_pair(const PairRequest& request) {
  return request.second_file.empty() ? pair_file_of(read_contents(request.file, request), request)
                                     : read_two_files(request);
}

}  // namespace dravo
