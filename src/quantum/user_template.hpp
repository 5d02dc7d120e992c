/// Input files for any program, from a text of the user's.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "quantum/quantum_job.hpp"

namespace dravo {

/// A text with names in braces: {symbols_xyz_1}, {charge}, or a column of the table, such as {r}.
/// Braces around anything but a name are what they are; {{name}} stands for {name} itself.
class UserTemplate {
 public:
  /// `columns`: of the table, separated by commas. Throws IoFailure for a file that cannot be read,
  /// and InvalidInput with the line for a name that stands for nothing.
  UserTemplate(const std::string& file, std::string_view columns);

  /// That of the file; ".inp" for one without, and where it would not do in a script.
  [[nodiscard]] const std::string& ending() const { return ending_; }

  /// `row`: of the table.
  [[nodiscard]] std::string text(const QuantumJob& job, const NumberedPair& pose,
                                 std::string_view row) const;

 private:
  struct Piece {
    std::string text;       ///< before the name
    std::string_view name;  ///< of the values that poses have; empty for none
    int column = -1;        ///< of the table
  };

  std::string ending_;
  std::vector<Piece> pieces_;
};

}  // namespace dravo
