#include <array>
#include <cmath>
#include <cstddef>
#include <vector>

#include "common/vector.hpp"
#include "dravo/scene.hpp"
#include "identify/closed_form.hpp"
#include "inertia/centre_of_mass.hpp"
#include "molecules/pair_table.hpp"
#include "scene/scene_parts.hpp"

namespace dravo {
namespace {

constexpr Vec3 kOrigin{};

/// The smallest radius of the arcs from the axes to the heaviest element, and from one to the next,
/// Angstrom.
constexpr double kFirstArc = 0.7, kNextArc = 0.25;

/// In the order of the moments.
constexpr std::array<Ink, 3> kInks{Ink::smallest, Ink::middle, Ink::largest};
constexpr std::array<const char*, 3> kLetters{"z", "y", "x"};

class SceneMaker {
 public:
  SceneMaker(const Molecule& molecule, const PrincipalFrame& frame)
      : molecule_(molecule), frame_(frame), own_(frame_rows(frame, 0)) {
    for (const Vec3& p : molecule.positions()) positions_.push_back(own_ * (p - frame.cm));
  }

  Scene make(const SceneOptions& options) {
    const DrawnAtoms atoms{molecule_.labels(), positions_};
    add_atoms(scene_, atoms);
    if (options.frames && frame_.shape != Shape::atom)
      for (std::size_t k = 0; k < drawn_axes(); ++k) add_own_axis(k);
    if (options.angles) add_reference();
    if (options.labels) add_names(scene_, atoms);
    return std::move(scene_);
  }

 private:
  /// Those that the shape does not leave open; the first is that of a linear molecule.
  [[nodiscard]] std::size_t drawn_axes() const { return frame_.shape == Shape::linear ? 1 : 3; }

  [[nodiscard]] DrawnAxis axis(std::size_t k) const {
    return {kLetters[k], own_ * frame_.axes[k].direction, kInks[k]};
  }

  /// Whether the molecule looks the same from both ends of the axis, as far as its atoms tell.
  [[nodiscard]] bool is_open(std::size_t k) const {
    const FixedBy by = frame_.axes[k].fixed_by;
    return by == FixedBy::rotation || by == FixedBy::nothing;
  }

  /// An axis that others decide by handedness has no more direction than they.
  [[nodiscard]] bool has_direction(std::size_t k) const {
    if (is_open(k)) return false;
    if (frame_.axes[k].fixed_by != FixedBy::right_handedness) return true;
    for (std::size_t other = 0; other < frame_.axes.size(); ++other)
      if (is_open(other)) return false;
    return true;
  }

  void add_own_axis(std::size_t k) {
    const DrawnAxis drawn = axis(k);
    if (has_direction(k)) {
      add_axis(scene_, drawn, kOrigin, positions_);
      return;
    }
    const DrawnAxis back{drawn.letter, -drawn.direction, drawn.ink};
    const Vec3 end = reach_of(drawn, kOrigin, positions_) * drawn.direction;
    const Vec3 other_end = reach_of(back, kOrigin, positions_) * back.direction;
    scene_.lines.push_back({other_end, end, drawn.ink, true});
    scene_.captions.push_back({end + kToLetter * drawn.direction, drawn.letter, drawn.ink});
  }

  /// The line to the centre of the heaviest element, and its angles.
  void add_reference() {
    if (!std::isfinite(frame_.axes[0].angles.along)) return;
    const OwnedTable atoms = table_of(molecule_);
    const MassCentre centres = find_mass_centre(atoms.table(), {0, molecule_.size()});
    const Vec3 centre = own_ * (centres.higher_z()->centroid - frame_.cm);
    const double distance = modulus(centre);
    const Vec3 direction = (1.0 / distance) * centre;
    scene_.lines.push_back({kOrigin, centre, Ink::text, false});
    for (std::size_t k = 0; k < drawn_axes(); ++k) add_angle(k, direction);
  }

  void add_angle(std::size_t k, const Vec3& direction) {
    const Vec3 from = axis(k).direction;
    const double along = dot(from, direction);
    const Vec3 across = direction - along * from;
    const double size = modulus(across);
    if (size < 1e-3) return;
    add_arc(scene_,
            {kOrigin, from, (1.0 / size) * across, kFirstArc + kNextArc * static_cast<double>(k),
             frame_.axes[k].angles.along, Ink::place},
            "");
  }

  const Molecule& molecule_;
  const PrincipalFrame& frame_;
  Matrix3 own_;
  std::vector<Vec3> positions_;
  Scene scene_;
};

}  // namespace

Scene scene_of(const Molecule& molecule, const PrincipalFrame& frame, const SceneOptions& options) {
  return SceneMaker(molecule, frame).make(options);
}

}  // namespace dravo
