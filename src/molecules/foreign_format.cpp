#include "molecules/foreign_format.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstddef>
#include <filesystem>
#include <system_error>
#include <vector>

#include "common/number_text.hpp"
#include "common/shown_text.hpp"
#include "common/text.hpp"
#include "molecules/input_file.hpp"

namespace dravo {
namespace {

// --- packed files -----------------------------------------------------------------------------

struct Packing {
  const char* name;
  std::string_view magic;  ///< the bytes that a file begins with
  std::string_view ending;
  const char* unpack_file;  ///< to standard output
  const char* unpack_input;
};

constexpr std::array<Packing, 5> kPackings{{
    {"gzip", "\x1F\x8B", ".gz", "gzip -dc", "gzip -dc"},
    {"bzip2", "BZh", ".bz2", "bzip2 -dc", "bzip2 -dc"},
    {"xz",
     "\xFD"
     "7zXZ",
     ".xz", "xz -dc", "xz -dc"},
    {"zstd", "\x28\xB5\x2F\xFD", ".zst", "zstd -dc", "zstd -dc"},
    {"zip", "PK\x03\x04", ".zip", "unzip -p", "funzip"},
}};

// --- formats of text --------------------------------------------------------------------------

/// The beginning of a text, and its first lines, trimmed; missing ones are empty.
struct Beginning {
  std::string_view text;
  std::array<std::string_view, 6> lines;
};

/// The line that stands at the front of `rest`, which moves behind it.
std::string_view take_line(std::string_view& rest) {
  const std::string_view line = rest.substr(0, rest.find('\n'));
  rest.remove_prefix(std::min(line.size() + 1, rest.size()));
  return line;
}

std::vector<std::string_view> items_of(std::string_view line) {
  std::vector<std::string_view> items;
  for (const std::string_view item : parts_between(line, ' '))
    if (!item.empty()) items.push_back(item);
  return items;
}

/// How many numbers a line of nothing but numbers has, else 0.
std::size_t numbers_in(std::string_view line) {
  const auto items = items_of(line);
  const bool only_numbers = std::all_of(items.begin(), items.end(), [](std::string_view item) {
    return parse_real(item).has_value();
  });
  return only_numbers ? items.size() : 0;
}

bool holds(const Beginning& file, std::string_view words) {
  return file.text.find(words) != std::string_view::npos;
}

/// Columns 31 to 54 of an atom's line are its coordinates.
bool is_pdb(const Beginning& file) {
  for (std::string_view rest = file.text; !rest.empty();) {
    const std::string_view line = take_line(rest);
    if (!line.starts_with("ATOM  ") && !line.starts_with("HETATM")) continue;
    return line.size() >= 54 && parse_real(trimmed(line.substr(30, 8))) &&
           parse_real(trimmed(line.substr(46, 8)));
  }
  return false;
}

bool is_molfile(const Beginning& file) {
  return file.lines[3].ends_with("V2000") || file.lines[3].ends_with("V3000");
}

bool is_mol2(const Beginning& file) { return holds(file, "@<TRIPOS>"); }

/// Behind comments.
bool is_any_cif(const Beginning& file) {
  for (std::string_view rest = file.text; !rest.empty();) {
    const std::string_view line = trimmed(take_line(rest));
    if (!line.empty() && line[0] != '#') return line.starts_with("data_");
  }
  return false;
}

bool is_mmcif(const Beginning& file) { return is_any_cif(file) && holds(file, "_atom_site."); }

/// A title, the scale, three vectors of the cell, elements or their numbers.
bool is_poscar(const Beginning& file) {
  const auto& lines = file.lines;
  const std::size_t scales = numbers_in(lines[1]);
  return (scales == 1 || scales == 3) && numbers_in(lines[2]) == 3 && numbers_in(lines[3]) == 3 &&
         numbers_in(lines[4]) == 3 && !lines[5].empty();
}

/// Two lines of text, number of atoms and origin, three lines of the grid.
bool is_cube(const Beginning& file) {
  const auto& lines = file.lines;
  return !parse_integer(lines[0]) && numbers_in(lines[2]) >= 4 && numbers_in(lines[3]) == 4 &&
         numbers_in(lines[4]) == 4 && numbers_in(lines[5]) == 4;
}

bool is_gaussian_output(const Beginning& file) {
  return holds(file, "Entering Gaussian System") || holds(file, "This is part of the Gaussian");
}

bool is_checkpoint(const Beginning& file) { return holds(file, "\nNumber of atoms   "); }

/// A route, a title, charge and multiplicity, with blank lines between them.
bool is_gaussian_input(const Beginning& file) {
  std::string_view rest = file.text;
  std::string_view line = trimmed(take_line(rest));
  while (line.starts_with('%')) line = trimmed(take_line(rest));
  if (!line.starts_with('#')) return false;
  for (int blank_lines = 0; blank_lines < 2; line = trimmed(take_line(rest))) {
    if (rest.empty()) return false;
    if (line.empty()) ++blank_lines;
  }
  const auto items = items_of(line);
  return items.size() >= 2 && parse_integer(items[0]) && parse_integer(items[1]);
}

bool is_turbomole(const Beginning& file) {
  return file.text.starts_with("$coord") || holds(file, "\n$coord");
}

bool is_molden(const Beginning& file) {
  return file.lines[0].starts_with("[Molden Format]") ||
         file.lines[0].starts_with("[MOLDEN FORMAT]");
}

bool is_cml(const Beginning& file) {
  return holds(file, "<cml") || (file.lines[0].starts_with('<') && holds(file, "<molecule"));
}

/// A title, the number of atoms, columns that end with coordinates of eight characters each.
bool is_gro(const Beginning& file) {
  std::string_view rest = file.text;
  (void)take_line(rest);
  if (!parse_integer(trimmed(take_line(rest)))) return false;
  const std::string_view atom = take_line(rest);
  return atom.size() >= 44 && parse_integer(trimmed(atom.substr(0, 5))) &&
         parse_integer(trimmed(atom.substr(15, 5))) && parse_real(trimmed(atom.substr(20, 8))) &&
         parse_real(trimmed(atom.substr(36, 8)));
}

bool is_orca_output(const Beginning& file) { return holds(file, "* O   R   C   A *"); }

bool is_nwchem_output(const Beginning& file) {
  return holds(file, "Northwest Computational Chemistry Package");
}

bool is_json(const Beginning& file) {
  return file.lines[0].starts_with('{') || file.lines[0] == "[" || file.lines[0].starts_with("[{");
}

struct Format {
  const char* name;
  bool (*is_format)(const Beginning& file);
  const char* converter_name;  ///< by which `obabel` knows it; null when it cannot read it
};

/// The first that fits counts.
constexpr std::array<Format, 17> kFormats{{
    {"an MDL molfile (SDF)", is_molfile, "sdf"},
    {"mmCIF", is_mmcif, "mmcif"},
    {"CIF", is_any_cif, "cif"},
    {"PDB", is_pdb, "pdb"},
    {"MOL2", is_mol2, "mol2"},
    {"Gaussian output", is_gaussian_output, "g09"},
    {"a formatted checkpoint file of Gaussian", is_checkpoint, "fchk"},
    {"Gaussian input", is_gaussian_input, nullptr},
    {"ORCA output", is_orca_output, "orca"},
    {"NWChem output", is_nwchem_output, "nwo"},
    {"Turbomole coord", is_turbomole, "tmol"},
    {"Molden format", is_molden, "molden"},
    {"CML", is_cml, "cml"},
    {"a cube file", is_cube, "cube"},
    {"POSCAR", is_poscar, "POSCAR"},
    {"GRO", is_gro, "gro"},
    {"JSON", is_json, nullptr},
}};

// --- commands ---------------------------------------------------------------------------------

/// The first of STEM.xyz, STEM-2.xyz, ... that does not exist.
std::string free_name(const std::filesystem::path& path) {
  const std::string ending = path.extension().string();
  const std::string stem = std::filesystem::path(path).replace_extension().string();
  std::string name = path.string();
  std::error_code ignored;  // what cannot be looked at does not count as existing
  for (int number = 2; std::filesystem::exists(name, ignored); ++number)
    name = fmt::format("{}-{}{}", stem, number, ending);
  return name;
}

std::string packed_message(const std::string& name, const Packing& packing) {
  if (is_standard_input(name))
    return fmt::format("{}: this is compressed by {}; unpack it first, by a pipe through\n  {}",
                       shown_name(name), packing.name, packing.unpack_input);
  std::string unpacked = name;
  if (unpacked.size() > packing.ending.size() && unpacked.ends_with(packing.ending))
    unpacked.resize(unpacked.size() - packing.ending.size());
  return fmt::format("{}: this is compressed by {}; unpack it first:\n  {} {} > {}", name,
                     packing.name, packing.unpack_file, shell_word(name),
                     shell_word(free_name(unpacked)));
}

std::string converted_message(const std::string& name, const Format& format) {
  const std::string what = fmt::format("{}: this is {}, not xyz", shown_name(name), format.name);
  if (format.converter_name == nullptr)
    return what +
           "; write its atoms as xyz:\n"
           "  their number, a comment line, and for each a line with symbol, x, y and z";
  if (is_standard_input(name))
    return fmt::format("{}; convert it first, by a pipe through\n  obabel -i{} -oxyz", what,
                       format.converter_name);
  const std::filesystem::path path(name);
  const bool ending_tells = path.extension() == std::string(".") + format.converter_name;
  const std::string result = free_name(std::filesystem::path(path).replace_extension(".xyz"));
  return fmt::format("{}; convert it first:\n  obabel {}{} -O {}", what,
                     ending_tells ? "" : fmt::format("-i{} ", format.converter_name),
                     shell_word(name), shell_word(result));
}

}  // namespace

std::string shell_word(const std::string& name) {
  constexpr std::string_view kPlain = "_./+,=:@%-";
  const bool plain = !name.empty() && std::all_of(name.begin(), name.end(), [&](char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 ||
           kPlain.find(c) != std::string_view::npos;
  });
  std::string word = name.starts_with('-') ? "./" + name : name;
  if (plain) return word;
  for (std::size_t at = word.find('\''); at != std::string::npos; at = word.find('\'', at + 4))
    word.replace(at, 1, "'\\''");
  return "'" + word + "'";
}

std::optional<std::string> foreign_format_message(const std::string& name, std::string_view text) {
  for (const Packing& packing : kPackings)
    if (text.starts_with(packing.magic)) return packed_message(name, packing);
  constexpr std::size_t kEnough = 65536;
  Beginning file{text.substr(0, kEnough), {}};
  std::string_view rest = file.text;
  for (std::string_view& line : file.lines) line = trimmed(take_line(rest));
  for (const Format& format : kFormats)
    if (format.is_format(file)) return converted_message(name, format);
  return std::nullopt;
}

}  // namespace dravo
