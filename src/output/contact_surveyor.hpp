/// How close two molecules come, for callers that place molecule 1 many times around a molecule 2
/// that stays.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "common/atom_table.hpp"
#include "dravo/contacts.hpp"

namespace dravo {

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
  struct Sphere {
    Vec3 centre;
    double radius;
  };

  /// Neighbouring atoms: [begin, end) of `atoms_`, and a sphere around them.
  struct Group {
    std::size_t begin;
    std::size_t end;
    Sphere sphere;
  };

  /// What is known of a placed molecule 1 so far.
  struct Nearness;

  template <class PositionOf>
  static Sphere sphere_around(std::size_t points, const PositionOf& position_of);

  void add_group(std::size_t begin, std::size_t end);
  [[nodiscard]] std::span<const Vec3> atoms_of(const Group& group) const;
  template <class Rank, class Visit>
  void visit_first_and_others(const Rank& rank, const Visit& visit) const;
  void survey_group(const Group& group, const ConstAtomTable& placed, RowRange molecule1,
                    Nearness& nearness) const;

  std::vector<Vec3> atoms_;
  std::vector<Group> groups_;
};

}  // namespace dravo
