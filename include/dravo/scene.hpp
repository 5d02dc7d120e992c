/// @file
/// What a picture of a pair shows, as things in space: balls, sticks, arrows, arcs, lines, words.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "dravo/contacts.hpp"
#include "dravo/frame.hpp"
#include "dravo/molecule.hpp"
#include "dravo/place.hpp"
#include "dravo/pose.hpp"

namespace dravo {

/// What a line or a word belongs to. A drawing gives each its colour.
enum class Ink {
  text,      ///< r, names of atoms
  faint,     ///< what only guides the eye
  smallest,  ///< axis of the smallest moment: z and Y
  middle,    ///< y and X
  largest,   ///< x and Z
  place,     ///< theta and phi
  turn,      ///< alpha, beta, gamma
  contact,   ///< short contacts
  hydrogen_bond,
};

/// An atom. Lengths of a scene are in Angstrom.
struct Ball {
  Vec3 centre;           ///< where the atom is
  double radius;         ///< small enough for bonds to be seen
  std::int32_t element;  ///< atomic number
};

/// Half of a bond, from its atom to the middle.
struct Stick {
  Vec3 from;             ///< its atom
  Vec3 to;               ///< the middle of the bond
  std::int32_t element;  ///< atomic number of its atom
};

/// An axis, with a tip.
struct Arrow {
  Vec3 from;  ///< where it begins
  Vec3 to;    ///< its tip
  Ink ink;    ///< what it belongs to
};

/// The points centre + radius (cos t start + sin t across) for t from 0 to `degrees`.
struct Arc {
  Vec3 centre;     ///< of the circle
  Vec3 start;      ///< unit vector
  Vec3 across;     ///< unit vector at a right angle to it
  double radius;   ///< of the circle
  double degrees;  ///< how far it goes
  Ink ink;         ///< what it belongs to
};

/// A thin line from point to point.
struct Line {
  Vec3 from;    ///< one end
  Vec3 to;      ///< the other end
  Ink ink;      ///< what it belongs to
  bool dashed;  ///< broken into dashes
};

/// Words in front of everything.
struct Caption {
  Vec3 at;           ///< their middle
  std::string text;  ///< UTF-8
  Ink ink;           ///< what they belong to
};

/// All that a picture shows.
struct Scene {
  std::vector<Ball> balls;        ///< an atom each
  std::vector<Stick> sticks;      ///< half a bond each
  std::vector<Arrow> arrows;      ///< axes that have a direction
  std::vector<Arc> arcs;          ///< angles
  std::vector<Line> lines;        ///< r, contacts, hydrogen bonds, axes without a direction
  std::vector<Caption> captions;  ///< letters of axes and angles, lengths, names of atoms
};

/// What of a pair or a molecule is shown.
struct SceneOptions {
  bool frames = true;    ///< the principal axes of both molecules, with their letters
  bool angles = false;   ///< r, theta and phi from molecule 2; alpha, beta and gamma at molecule 1
  bool contacts = true;  ///< short contacts and hydrogen bonds with their lengths
  bool labels = false;   ///< symbol and number of each atom
  ContactCriterion criterion = {};  ///< what a short contact is
};

/// A pair in the frame of molecule 2, as `Placer::positions` makes it, and how it was placed.
struct PlacedPair {
  Pair pair;                    ///< with its atoms where they were placed
  PoseDegrees pose;             ///< in which they were placed
  std::array<Shape, 2> shapes;  ///< of molecule 1 and 2
};

/// Places the pair of the placer, which must be an exact one. Throws OutOfRange.
PlacedPair placed_pair(const Placer& placer, const PoseDegrees& pose);

/// Both frames are drawn as they are after the turn. Axes of molecule 1 that its shape leaves open
/// are left out, and so are angles of zero.
///
/// @code
/// const dravo::Placer placer(pair, {.placing = dravo::Placing::exact});
/// const dravo::Scene scene = dravo::scene_of(dravo::placed_pair(placer, {.r = 4.0}), {});
/// @endcode
Scene scene_of(const PlacedPair& placed, const SceneOptions& options = {});

/// One molecule in its own frame xyz, that of a molecule 1. An axis without a direction of its own
/// is a dashed line both ways. With `angles` the line from the centre of mass to the centre of the
/// heaviest element is drawn, and the angles that the axes make with it.
Scene scene_of(const Molecule& molecule, const PrincipalFrame& frame,
               const SceneOptions& options = {});

}  // namespace dravo
