#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <map>
#include <span>
#include <string_view>
#include <utility>

#include "common/constants.hpp"
#include "common/number_format.hpp"
#include "common/vector.hpp"
#include "dravo/scene.hpp"
#include "driver/element_table.hpp"
#include "identify/closed_form.hpp"
#include "molecules/pose_range.hpp"
#include "scene/ball_radius.hpp"
#include "scene/scene_parts.hpp"

namespace dravo {
namespace {

constexpr Vec3 kX{1.0, 0.0, 0.0}, kY{0.0, 1.0, 0.0}, kZ{0.0, 0.0, 1.0};
constexpr Vec3 kOrigin{};

class SceneMaker {
 public:
  explicit SceneMaker(const PlacedPair& placed)
      : pair_(placed.pair),
        pose_(placed.pose),
        radians_(in_radians(placed.pose)),
        shapes_(placed.shapes),
        relative_(relative_pose(placed.pose)) {}

  Scene make(const SceneOptions& options) {
    add_atoms(scene_, molecule(0));
    add_atoms(scene_, molecule(1));
    if (options.contacts) add_contacts(options.criterion);
    if (options.frames) add_frames();
    if (options.angles) {
      add_place();
      add_turn();
    }
    if (options.labels) add_names(scene_, {pair_.labels(), pair_.positions()});
    return std::move(scene_);
  }

  Scene make_frames() {
    add_frames();
    return std::move(scene_);
  }

 private:
  [[nodiscard]] DrawnAtoms molecule(std::size_t index) const {
    const auto n1 = static_cast<std::size_t>(pair_.n1());
    const std::span<const Label> labels(pair_.labels());
    const std::span<const Vec3> positions(pair_.positions());
    return index == 0 ? DrawnAtoms{labels.first(n1), positions.first(n1)}
                      : DrawnAtoms{labels.subspan(n1), positions.subspan(n1)};
  }
  [[nodiscard]] const Vec3& position(std::int32_t atom) const {
    return pair_.positions()[static_cast<std::size_t>(atom)];
  }
  [[nodiscard]] std::int32_t element(std::int32_t atom) const {
    return atomic_number_of_symbol(pair_.labels()[static_cast<std::size_t>(atom)]).value();
  }

  // --- contacts ---------------------------------------------------------------------------------

  /// A contact that is a hydrogen bond is drawn as such.
  void add_contacts(const ContactCriterion& criterion) {
    std::map<std::pair<std::int32_t, std::int32_t>, Ink> lines;
    for (const ShortContact& contact : short_contacts(pair_, criterion))
      lines[{contact.atom1, contact.atom2}] = Ink::contact;
    for (const HydrogenBond& bond : hydrogen_bonds(pair_))
      lines[std::minmax({bond.hydrogen, bond.acceptor})] = Ink::hydrogen_bond;
    for (const auto& [atoms, ink] : lines) {
      const Vec3 &from = position(atoms.first), &to = position(atoms.second);
      const Vec3 along = to - from;
      const double length = modulus(along);
      const double begin = ball_radius(element(atoms.first)) / length;
      const double end = 1.0 - ball_radius(element(atoms.second)) / length;
      if (begin < end)
        scene_.lines.push_back({from + begin * along, from + end * along, ink, true});
      scene_.captions.push_back({from + 0.5 * along, fixed_text(length, 2), ink});
    }
  }

  // --- frames -----------------------------------------------------------------------------------

  void add_frames() {
    const std::span<const Vec3> molecule1 = molecule(0).positions,
                                molecule2 = molecule(1).positions;
    add_axis(scene_, {"X", kX, Ink::middle}, kOrigin, molecule2);
    add_axis(scene_, {"Y", kY, Ink::smallest}, kOrigin, molecule2);
    add_axis(scene_, {"Z", kZ, Ink::largest}, kOrigin, molecule2);
    if (shapes_[0] == Shape::atom) return;
    const Matrix3 axes = transposed(relative_.turn);
    if (shapes_[0] == Shape::general) {
      add_axis(scene_, {"x", axes.row[0], Ink::largest}, relative_.place, molecule1);
      add_axis(scene_, {"y", axes.row[1], Ink::middle}, relative_.place, molecule1);
    }
    add_axis(scene_, {"z", axes.row[2], Ink::smallest}, relative_.place, molecule1);
  }

  // --- r, theta, phi ----------------------------------------------------------------------------

  /// Radii of arcs: those at molecule 2 grow with r, up to some Angstrom, those at molecule 1 with
  /// its atoms.
  static constexpr double kThetaPart = 0.40, kPhiPart = 0.30;
  static constexpr double kLargestTheta = 1.3, kLargestPhi = 1.0;
  static constexpr double kGammaPart = 0.9, kBetaPart = 0.75, kAlphaPart = 0.6;

  void add_place() {
    const double r = pose_.r;
    if (r <= kNoLength) return;
    const Vec3& place = relative_.place;
    scene_.lines.push_back({kOrigin, place, Ink::text, false});
    scene_.captions.push_back(
        {0.6 * place, fmt::format("r = {} \u00c5", fixed_text(r, 2)), Ink::text});
    const Vec3 outward{std::cos(radians_.phi), std::sin(radians_.phi), 0.0};
    add_arc(
        scene_,
        {kOrigin, kZ, outward, std::min(kThetaPart * r, kLargestTheta), pose_.theta, Ink::place},
        "\u03b8");
    const Vec3 foot{place.x, place.y, 0.0};
    if (modulus(foot) <= kNoLength) return;  // on the Z axis, where phi means nothing
    if (pose_.phi > kNoAngle) {
      scene_.lines.push_back({kOrigin, foot, Ink::faint, true});
      scene_.lines.push_back({foot, place, Ink::faint, true});
    }
    add_arc(scene_, {kOrigin, kX, kY, std::min(kPhiPart * r, kLargestPhi), pose_.phi, Ink::place},
            "\u03c6");
  }

  // --- alpha, beta, gamma -----------------------------------------------------------------------

  /// Turned in this order: by -gamma about Z, which carries Y to the line of nodes N, by -beta
  /// about N, which carries Z to z, by -alpha about z, which carries N to y.
  void add_turn() {
    if (shapes_[0] == Shape::atom) return;
    const double cb = std::cos(radians_.beta), sb = std::sin(radians_.beta);
    const double cg = std::cos(radians_.gamma), sg = std::sin(radians_.gamma);
    const Vec3& centre = relative_.place;
    const Vec3 nodes{sg, cg, 0.0};
    const double radius = turn_radius();
    const auto guide = [&](const Vec3& direction, const char* letter) {
      const Vec3 end = centre + 1.15 * radius * direction;
      scene_.lines.push_back({centre, end, Ink::faint, true});
      scene_.captions.push_back({end + kToLetter * direction, letter, Ink::faint});
    };
    const bool alpha = shapes_[0] == Shape::general && pose_.alpha > kNoAngle;
    if (pose_.gamma > kNoAngle) guide(kY, "Y");
    if (pose_.beta > kNoAngle) guide(kZ, "Z");
    if (pose_.gamma > kNoAngle || pose_.beta > kNoAngle || alpha) guide(nodes, "N");
    add_arc(scene_, {centre, kY, kX, kGammaPart * radius, pose_.gamma, Ink::turn}, "\u03b3");
    add_arc(scene_, {centre, kZ, {-cg, sg, 0.0}, kBetaPart * radius, pose_.beta, Ink::turn},
            "\u03b2");
    if (alpha)
      add_arc(scene_,
              {centre, nodes, {cb * cg, -cb * sg, sb}, kAlphaPart * radius, pose_.alpha, Ink::turn},
              "\u03b1");
  }

  [[nodiscard]] double turn_radius() const {
    double farthest = 0.0;
    for (std::int32_t atom = 0; atom < pair_.n1(); ++atom)
      farthest = std::max(farthest, modulus(position(atom) - relative_.place));
    return std::clamp(farthest, 1.5, 2.5);
  }

  const Pair& pair_;
  const PoseDegrees& pose_;
  PoseRadians radians_;
  const std::array<Shape, 2>& shapes_;
  RelativePose relative_;
  Scene scene_;
};

}  // namespace

PlacedPair placed_pair(const Placer& placer, const PoseDegrees& pose) {
  return {Pair(placer.n1(), Molecule(placer.labels(), placer.positions(pose))),
          with_folded_azimuths(pose), shapes_of(placer.molecules())};
}

Scene frames_of(const PlacedPair& placed) { return SceneMaker(placed).make_frames(); }

Scene scene_of(const PlacedPair& placed, const SceneOptions& options) {
  return SceneMaker(placed).make(options);
}

}  // namespace dravo
