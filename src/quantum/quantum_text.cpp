#include "quantum/quantum_text.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cstddef>

#include "common/atom_table.hpp"
#include "common/number_format.hpp"
#include "molecules/coordinate.hpp"
#include "results/decimals.hpp"
#include "results/pose_writer.hpp"

namespace dravo {

std::vector<SystemAtom> atoms_of(const Pair& pair, const QuantumSystem& system) {
  std::vector<SystemAtom> atoms;
  for (std::int32_t i = 0; i < pair.size(); ++i) {
    const bool second = i >= pair.n1();
    const Presence presence = system.molecules.at(second ? 1 : 0);
    const auto k = static_cast<std::size_t>(i);
    if (presence != Presence::absent)
      atoms.push_back({symbol_of(pair.labels()[k]), pair.positions()[k],
                       presence == Presence::ghost, second ? 2 : 1});
  }
  return atoms;
}

std::string small_letters(std::string name) {
  std::transform(name.begin(), name.end(), name.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return name;
}

std::vector<std::string_view> elements_of(const Pair& pair) {
  std::vector<std::string_view> elements;
  for (const Label& label : pair.labels()) {
    const std::string_view symbol = symbol_of(label);
    if (std::find(elements.begin(), elements.end(), symbol) == elements.end())
      elements.push_back(symbol);
  }
  return elements;
}

void append_coordinates(std::string& text, const Vec3& position) {
  constexpr std::size_t kWidth = 16;
  for (const double coordinate : {position.x, position.y, position.z}) {
    FixedBuffer buffer;
    const std::string_view digits =
        fixed_notation(buffer, without_negative_zero(coordinate), decimals::kLength);
    text.append(std::max(kWidth, digits.size() + 1) - digits.size(), ' ').append(digits);
  }
  text += '\n';
}

void append_atom_lines(std::string& text, const std::vector<SystemAtom>& atoms,
                       const AtomNotation& notation) {
  for (const SystemAtom& atom : atoms) {
    const std::size_t begin = text.size();
    if (atom.ghost)
      text.append(notation.before_ghost).append(atom.symbol).append(notation.behind_ghost);
    else
      text.append(atom.symbol);
    constexpr std::size_t kSymbols = 3;
    text.append(kSymbols - std::min(kSymbols, text.size() - begin), ' ');
    append_coordinates(text, atom.position);
  }
}

std::string frame_text(const NumberedPair& pose) {
  std::string text = fmt::format("{}\n{} index={}\n", pose.pair.size(), kProperties, pose.index);
  for (const SystemAtom& atom : atoms_of(pose.pair, {"pair", {Presence::real, Presence::real}})) {
    text.append(atom.symbol).append(3 - atom.symbol.size(), ' ');
    append_coordinates(text, atom.position);
    text.back() = ' ';
    text.append(atom.molecule == 1 ? "1\n" : "2\n");
  }
  return text;
}

std::string_view atoms_in_frame(std::string_view frame) {
  for (int line = 0; line < 2; ++line)
    frame.remove_prefix(std::min(frame.find('\n'), frame.size() - 1) + 1);
  return frame;
}

}  // namespace dravo
