/// How close two molecules come, for callers that place molecule 1 many times around a molecule 2
/// that stays.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "common/atom_table.hpp"
#include "dravo/contacts.hpp"
#include "output/few_atoms.hpp"

namespace dravo {

/// Knows where the atoms of molecule 2 are. Finite positions only; may be used by several threads.
class ContactSurveyor {
 public:
  /// Contacts by `kShortDistance`, and no clearance.
  explicit ContactSurveyor(std::span<const Vec3> molecule2);

  /// `radii`: van der Waals radii of the atoms of molecule 1, then of molecule 2, Angstrom. Not a
  /// number where one is unknown, which none may be for a criterion that goes by radii.
  ContactSurveyor(std::span<const Vec3> molecule2, std::span<const double> radii,
                  const ContactCriterion& criterion);

  /// Of rows `molecule1` of the table, without the clearance.
  [[nodiscard]] ContactSurvey survey(const ConstAtomTable& placed, RowRange molecule1) const;

  /// With the clearance; needs radii. The rows of molecule 2 follow those of molecule 1.
  [[nodiscard]] ContactSurvey survey_with_clearance(const ConstAtomTable& placed,
                                                    RowRange molecule1) const;

  /// As `closest_pairs` of dravo/contacts.hpp; needs radii.
  [[nodiscard]] std::vector<ClosePair> closest(const ConstAtomTable& placed, RowRange molecule1,
                                               std::size_t count) const;

  /// Distance of molecule 1's centre from the origin at which, coming from afar along `direction`
  /// (a unit vector), its first atom is as close to one of molecule 2 as a short contact. Zero when
  /// none comes so close on the way. `offsets` are molecule 1's atoms as seen from its centre.
  [[nodiscard]] double touching_distance(std::span<const Vec3> offsets,
                                         const Vec3& direction) const;

  /// No contact is longer, Angstrom.
  [[nodiscard]] double longest_contact() const;

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
    double largest;  ///< of their van der Waals radii
  };

  // What is known of a placed molecule 1 so far.
  struct Nearness;
  struct Clearance;
  struct Closest;

  // How far contacts reach.
  struct SameReach;
  struct ReachByRadii;

  template <class PositionOf>
  static Sphere sphere_around(std::size_t points, const PositionOf& position_of);

  void sort_into_groups();
  void add_group(std::size_t begin, std::size_t end);
  [[nodiscard]] std::span<const Vec3> atoms_of(const Group& group) const;
  template <class Rank, class Visit>
  void visit_first_and_others(const Rank& rank, const Visit& visit) const;
  template <class Known>
  void add_pairs(const ConstAtomTable& placed, RowRange molecule1, Known& known) const;
  /// The clearance is filled in, if not null.
  ContactSurvey survey_few(const ConstAtomTable& placed, RowRange molecule1,
                           Clearance* clearance) const;
  template <class Reach>
  [[nodiscard]] double touching_distance(std::span<const Vec3> offsets, const Vec3& direction,
                                         const Reach& reach) const;

  ContactCriterion criterion_;
  std::vector<Vec3> atoms_;
  std::vector<std::int32_t> rows_;  ///< of molecule 2, in the order of `atoms_`
  std::vector<double> radii_;       ///< in the order of `atoms_`; empty without radii
  std::vector<double> radii1_;      ///< of molecule 1
  double largest1_ = 0.0;
  std::vector<Group> groups_;
  std::optional<FewAtoms> few_;  ///< where all atoms are one group
};

}  // namespace dravo
