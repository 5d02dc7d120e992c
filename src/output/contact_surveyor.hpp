/// How close two molecules come, for callers that place molecule 1 many times around a molecule 2
/// that stays.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "common/atom_table.hpp"

namespace dravo {

struct ContactSurvey {
  double shortest;        ///< intermolecular distance, Angstrom; infinite without atoms
  std::int64_t contacts;  ///< pairs that `find_short_contacts` lists
};

/// Knows where the atoms of molecule 2 are. Finite positions only; may be used by several threads.
class ContactSurveyor {
 public:
  explicit ContactSurveyor(std::span<const Vec3> molecule2);

  [[nodiscard]] ContactSurvey survey(const ConstAtomTable& placed, RowRange molecule1) const;

  /// Distance of molecule 1's centre from the origin at which, coming from afar along `direction`
  /// (a unit vector), its first atom is as close to one of molecule 2 as a short contact. Zero when
  /// none comes so close on the way. `offsets` are molecule 1's atoms as seen from its centre.
  [[nodiscard]] double touching_distance(std::span<const Vec3> offsets,
                                         const Vec3& direction) const;

 private:
  /// Neighbouring atoms: [begin, end) of `atoms_`, and the sphere around them.
  struct Group {
    std::size_t begin;
    std::size_t end;
    Vec3 centre;
    double radius;
  };

  std::size_t halve(std::size_t begin, std::size_t end);
  void add_group(std::size_t begin, std::size_t end);

  std::vector<Vec3> atoms_;
  std::vector<Group> groups_;
};

}  // namespace dravo
