#include "quantum/output_text.hpp"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <cstring>
#include <sstream>
#include <string>

#include "common/number_text.hpp"
#include "energy/command_engine.hpp"
#include "energy/engine_texts.hpp"

namespace dravo {
namespace {

/// "Gh(CL)", "bqO", "@O": the element alone.
std::string element_in(std::string_view word) {
  if (word.starts_with("Gh(") || word.starts_with("GH(")) word = word.substr(3, word.size() - 4);
  if (word.starts_with("bq")) word.remove_prefix(2);
  return std::string(word);
}

/// The end of the text without it. Most of an output are blanks, and many marks begin with one:
/// this search compares their ends first.
std::size_t place_of(std::string_view text, std::string_view mark) {
  if (text.empty()) return 0;
  const void* const found = ::memmem(text.data(), text.size(), mark.data(), mark.size());
  if (found == nullptr) return text.size();
  return static_cast<std::size_t>(static_cast<const char*>(found) - text.data());
}

std::string_view next_line(std::string_view text) {
  return text.substr(std::min(text.find('\n'), text.size() - 1) + 1);
}

/// Empty where the line is not one of the list.
std::optional<OutputAtom> atom_in(std::string_view line, const AtomList& list) {
  const auto words = words_in(line);
  if (words.size() < list.x + 3) return std::nullopt;
  const auto x = parse_real(words[list.x]), y = parse_real(words[list.x + 1]),
             z = parse_real(words[list.x + 2]);
  if (!x || !y || !z) return std::nullopt;
  return OutputAtom{element_in(words[list.symbol]), {*x, *y, *z}};
}

bool is_same(const OutputAtom& a, const OutputAtom& b) {
  constexpr double kSame = 2e-6;  // six decimals, and a Bohr of another year
  const auto is_close = [](double one, double other) { return std::abs(one - other) <= kSame; };
  return is_close(a.position.x, b.position.x) && is_close(a.position.y, b.position.y) &&
         is_close(a.position.z, b.position.z) && is_same_word(a.symbol, b.symbol);
}

}  // namespace

bool is_same_word(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](unsigned char c, unsigned char d) {
    return std::tolower(c) == std::tolower(d);
  });
}

std::string_view line_at(std::string_view text, std::size_t position) {
  const std::size_t begin = text.substr(0, position).rfind('\n') + 1;  // 0 without one
  return text.substr(begin, std::min(text.find('\n', position), text.size()) - begin);
}

bool has(std::string_view text, std::string_view mark) {
  return place_of(text, mark) < text.size();
}

std::string_view behind(std::string_view text, std::string_view mark) {
  const std::size_t at = place_of(text, mark);
  return at == text.size() ? std::string_view() : text.substr(at + mark.size());
}

std::vector<std::string_view> words_in(std::string_view line) {
  const auto is_blank = [](char c) { return c == ' ' || c == '\t' || c == '\r'; };
  constexpr std::size_t kUsual = 8;
  std::vector<std::string_view> words;
  words.reserve(kUsual);
  for (std::size_t begin = 0; begin < line.size();) {
    std::size_t end = begin;
    while (end < line.size() && !is_blank(line[end])) ++end;
    if (end > begin) words.push_back(line.substr(begin, end - begin));
    begin = end + 1;
  }
  return words;
}

std::optional<double> number_in_front(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(" =:>");
  if (begin == std::string_view::npos) return std::nullopt;
  const std::size_t end = std::min(text.find_first_of(" \r\n", begin), text.size());
  return parse_plain_real(text.substr(begin, end - begin));
}

std::vector<double> numbers_behind(std::string_view text, std::string_view mark) {
  std::vector<double> numbers;
  for (std::string_view rest = behind(text, mark); !rest.empty(); rest = behind(rest, mark))
    if (const auto number = number_in_front(rest)) numbers.push_back(*number);
  return numbers;
}

void add_atoms(std::vector<OutputAtom>& atoms, std::string_view text, const AtomList& list) {
  for (std::string_view rest = behind(text, list.mark); !rest.empty();
       rest = behind(rest, list.mark)) {
    for (int line = 0; line < list.lines && !rest.empty(); ++line) rest = next_line(rest);
    while (!rest.empty()) {
      auto atom = atom_in(line_at(rest, 0), list);
      if (!atom) break;
      atoms.push_back(std::move(*atom));
      rest = next_line(rest);
    }
  }
}

/// Lists have the order of the pair, or that of one molecule, so the next atom is tried first.
bool are_those_of(const std::vector<OutputAtom>& atoms, const std::vector<OutputAtom>& pair) {
  std::vector<bool> seen(pair.size(), false);
  std::size_t next = 0;
  for (const OutputAtom& atom : atoms) {
    std::size_t tried = 0;
    while (tried < pair.size() && !is_same(atom, pair[(next + tried) % pair.size()])) ++tried;
    if (tried == pair.size()) return false;
    next = (next + tried) % pair.size();
    seen[next] = true;
    ++next;
  }
  return std::find(seen.begin(), seen.end(), false) == seen.end();
}

QuantumOutput read_by(const UserReading& reading, std::string_view text) {
  std::istringstream in{std::string(text)};
  const Printed printed = read_printed(in, reading.expression);
  if (!printed.energy) return {};
  return {OutputState::finished, *printed.energy * hartree(reading.unit)};
}

bool is_readable(QuantumProgram program) {
  switch (program) {
    case QuantumProgram::psi4:
    case QuantumProgram::nwchem:
    case QuantumProgram::cp2k:
    case QuantumProgram::xtb:
    case QuantumProgram::qcschema:
      return true;
    default:
      return false;
  }
}

QuantumOutput read_output(const QuantumJob& job, std::string_view text) {
  switch (job.program) {
    case QuantumProgram::psi4:
      return read_psi4(job, text);
    case QuantumProgram::nwchem:
      return read_nwchem(job, text);
    case QuantumProgram::cp2k:
      return read_cp2k(job, text);
    case QuantumProgram::xtb:
      return read_xtb(job, text);
    default:
      return read_qcschema(job, text);
  }
}

}  // namespace dravo
