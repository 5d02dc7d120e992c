/// What the page of `dravo view` shows.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "dravo/drawing.hpp"
#include "dravo/place.hpp"
#include "dravo/scene.hpp"
#include "scan/pair_placer.hpp"

namespace dravo {

/// A molecule in its own frame, about its centre of mass.
struct ViewMolecule {
  std::vector<Label> labels;
  std::vector<Vec3> positions;  ///< Angstrom, in xyz of molecule 1 or XYZ of molecule 2
  Shape shape = Shape::general;
};

/// The column of r where it counts from the contact.
inline constexpr std::string_view kAboveContact = "above_contact";

/// A column of a table: numbers, or words where a cell is no number.
struct ViewColumn {
  std::string name;
  std::string unit = {};                ///< "Angstrom", "degrees", "kcal/mol" or empty
  bool exact = false;                   ///< all digits are needed
  std::vector<double> numbers = {};     ///< not a number for an empty cell
  std::vector<std::string> words = {};  ///< in place of numbers, if not empty

  [[nodiscard]] std::size_t rows() const { return words.empty() ? numbers.size() : words.size(); }
};

/// The poses of a scan or docking, or the frames of a trajectory.
struct ViewPoses {
  std::string_view kind;  ///< "scan", "dock" or "trajectory"
  std::string name;       ///< of the results or the file
  std::int64_t of = 0;    ///< rows that there are; those in `columns` may be fewer
  std::vector<ViewColumn> columns;
  std::array<std::string, 6> parameters;  ///< the columns that place a row, r to gamma
  std::string x;                          ///< the columns of the first map
  std::string y;                          ///< empty for a profile
  std::string colour;
  /// Of all atoms in molecule 2's frame, row after row, atom after atom, x, y, z: of a trajectory,
  /// whose molecules bend.
  std::vector<float> positions = {};

  [[nodiscard]] std::size_t rows() const { return columns.empty() ? 0 : columns[0].rows(); }

  /// Null where there is none of this name.
  [[nodiscard]] const ViewColumn* column(std::string_view wanted) const;
  [[nodiscard]] ViewColumn* column(std::string_view wanted);

  /// By the columns in `parameters`, which must be there.
  [[nodiscard]] PoseDegrees pose(std::size_t row) const;
};

struct ViewData {
  std::string title;
  std::string description;
  std::string command;  ///< to which `--r` to `--gamma` are added to place a pose; empty for none
  std::array<ViewMolecule, 2> molecules;
  ContactCriterion criterion = {};
  PoseDegrees pose;
  std::vector<std::string_view> idle;  ///< parameters that change nothing
  SceneOptions shown = {.angles = true};
  ViewDirection view = {};
  std::optional<ViewPoses> poses = std::nullopt;
};

/// The molecules of the placer, and a pose. Nothing else is filled in.
ViewData view_data(const PairPlacer& placer, const PoseDegrees& pose);

}  // namespace dravo
