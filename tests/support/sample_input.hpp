/// The bundled sample inputs, and ways to change them.
#pragma once

#include <array>
#include <cstddef>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "common/vector.hpp"

namespace dravo::test {

inline std::string file_text(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error("cannot read " + path);
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
}

/// An input file taken apart. Numbers keep their text.
struct SampleInput {
  struct Atom {
    std::string label;
    Vec3 position;
  };

  std::vector<Atom> atoms;
  std::size_t n1 = 0;
  /// r, theta, phi, alpha, beta, gamma
  std::array<std::string, 6> parameters;

  [[nodiscard]] std::string text() const {
    std::ostringstream out;
    out.precision(17);
    out << atoms.size() << '\n';
    for (const Atom& atom : atoms)
      out << atom.label << ' ' << atom.position.x << ' ' << atom.position.y << ' '
          << atom.position.z << '\n';
    out << "n1\n" << n1 << "\nposition\n";
    for (std::size_t k = 0; k < 3; ++k) out << parameters[k] << '\n';
    out << "rotation\n";
    for (std::size_t k = 3; k < 6; ++k) out << parameters[k] << '\n';
    out << "end\n";
    return out.str();
  }
};

/// Reads a file of the layout that `SampleInput::text` writes.
inline SampleInput parse_sample(const std::string& text) {
  std::istringstream in(text);
  SampleInput sample;
  std::size_t count = 0;
  std::string ignored;
  in >> count;
  sample.atoms.resize(count);
  for (auto& [label, p] : sample.atoms) in >> label >> p.x >> p.y >> p.z;
  in >> ignored >> sample.n1 >> ignored;
  for (std::size_t k = 0; k < 3; ++k) in >> sample.parameters[k];
  in >> ignored;
  for (std::size_t k = 3; k < 6; ++k) in >> sample.parameters[k];
  if (!in) throw std::runtime_error("sample input of an unexpected layout");
  return sample;
}

/// All of them.
inline constexpr std::array kSamples{"acetamide-acrylonitrile",    "adenine-thymine-stack",
                                     "dimethyl-sulfoxide-ethanol", "formamide-dimer",
                                     "uracil-dimer-stack",         "water-dimer"};

/// Those that can be placed: no molecule of theirs is symmetric to this method.
inline constexpr std::array kPlaceable{"formamide-dimer", "adenine-thymine-stack",
                                       "acetamide-acrylonitrile", "dimethyl-sulfoxide-ethanol"};

inline std::string sample_path(const std::string& name) {
  return std::string(DRAVO_EXAMPLES) + "/" + name + "/QN-input-GEOMETRY.xyz";
}

inline SampleInput sample(const std::string& name) {
  return parse_sample(file_text(sample_path(name)));
}

/// An xyz file as the program writes it: atomic numbers and positions.
struct WrittenGeometry {
  std::vector<int> atomic_numbers;
  std::vector<Vec3> positions;
};

inline WrittenGeometry parse_geometry(const std::string& text) {
  std::istringstream in(text);
  std::string line;
  std::getline(in, line);
  const std::size_t count = std::stoul(line);
  std::getline(in, line);
  WrittenGeometry geometry;
  for (std::size_t i = 0; i < count; ++i) {
    std::getline(in, line);
    if (line.size() != 47) throw std::runtime_error("atom line of an unexpected width: " + line);
    geometry.atomic_numbers.push_back(std::stoi(line.substr(0, 2)));
    geometry.positions.push_back({std::stod(line.substr(2, 15)), std::stod(line.substr(17, 15)),
                                  std::stod(line.substr(32, 15))});
  }
  return geometry;
}

}  // namespace dravo::test
