/// Poses as text: frames of an extended xyz file and rows of a CSV table.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "common/atom_table.hpp"
#include "common/number_format.hpp"
#include "dravo/scan.hpp"

namespace dravo {

/// The columns of the interaction energy and of the shortest distance.
inline constexpr auto kEnergyColumn = "e_int_kcal_mol";
inline constexpr auto kShortestColumn = "shortest";

/// Columns that not every plan has.
struct PoseColumns {
  bool above_contact = false;
  bool equivalents = false;
  bool exact = false;  ///< no column: comment lines say "placing=exact"
  bool energy = false;
};

/// What the first words of a comment line say of the columns of a frame.
inline constexpr auto kProperties = "Properties=species:S:1:pos:R:3:molecule:I:1";

/// The atoms of both molecules, of which the first `n1` are molecule 1, as the lines of a frame:
///
///     columns   1-2     4-18   20-34   36-50   52
///               symbol  x      y       z       molecule   (A2,3(1X,F15.8),1X,I1), Angstrom
void append_atoms(std::string& frame, std::span<const Label> labels, std::int32_t n1,
                  const ConstAtomTable& placed, bool exact);

/// The atoms of a frame. Those of molecule 2 stand still in all poses.
struct FrameAtoms {
  std::span<const Label> molecule1;
  std::int32_t of_molecule2 = 0;  ///< how many
  std::string molecule2 = {};     ///< their lines
};

/// Those of both molecules, the first `n1` of molecule 1, with molecule 2 as it is placed.
FrameAtoms frame_atoms(std::span<const Label> labels, std::int32_t n1, const ConstAtomTable& placed,
                       bool exact);

/// Molecule 2 as a frame of its own.
std::string molecule2_frame(const FrameAtoms& atoms);

/// The numbers of a pose as a row of the table.
class PoseRow {
 public:
  static constexpr std::size_t kMostColumns = 22;

  [[nodiscard]] std::string_view line() const { return {cells_.data(), ends_[columns_ - 1] + 1}; }
  [[nodiscard]] std::string_view without_line_end() const {
    return {cells_.data(), ends_[columns_ - 1]};
  }

 private:
  friend class PoseWriter;
  static constexpr std::size_t kCopied = 32;  ///< characters of a cell, also where it has fewer

  std::array<char, kMostColumns*(kLongestNumber + 1) + kCopied> cells_{};
  std::array<std::size_t, kMostColumns> ends_{};  ///< of the cells, behind each of which is a comma
  std::size_t columns_ = 1;
};

/// Both texts have the same columns: index, the six parameters asked, the six applied, shortest
/// intermolecular distance, number of short contacts, clearance and its two atoms, from 1;
/// `above_contact` behind the index in plans that count r from the contact, and `equivalents` at
/// the end where equal poses are made once. Angstrom and degrees. What was asked stands in the
/// shortest form that reads back as the same number. Without a clearance three cells of a row are
/// empty, and a comment line lacks the three. Where energies are computed, `e_int_kcal_mol`, which
/// is empty or missing unless the status is ok, and `status` come last.
class PoseWriter {
 public:
  PoseWriter(FrameAtoms atoms, const PoseColumns& columns);

  [[nodiscard]] std::string table_heading() const;

  /// What the row was before is gone.
  void fill(PoseRow& row, const ScannedPose& pose) const;

  /// What a row tells that cannot be found again by placing the pose: index, r above the contact,
  /// what was asked, how many poses it stands for, energy and status. Empty for a text that is no
  /// row.
  [[nodiscard]] std::optional<ScannedPose> read_row(std::string_view row) const;

  /// The pose that has this row and whose atoms stand in `placed`.
  void append_frame(std::string& frames, const PoseRow& row, const ConstAtomTable& placed) const;

 private:
  /// " r=", with room behind it.
  struct Key {
    std::array<char, 24> text{};
    std::size_t size = 0;
  };

  char* write_comment(char* next, const PoseRow& row) const;

  FrameAtoms atoms_;
  PoseColumns columns_;
  std::string head_;  ///< what frames have before the values
  std::vector<Key> keys_;
  std::size_t longest_comment_ = 0;  ///< but for its values
};

}  // namespace dravo
