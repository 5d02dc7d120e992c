#include "output/bild_writer.hpp"

#include <array>

namespace dravo {
namespace {

constexpr std::array kReferenceFrame{
    ".comment - This file shows X,Y,Z ref.  and xyz der.",
    ".comment - axes mounted over principal axes of inertia",
    ".comment - of the molecules in the supramol. system ",
    ".comment - molecule 2 Reference system XYZ ",
    ".comment - Y Blue -IA, X Green -IB), Z Red -IC",
    ".comment -      IA<IB<IC",
    ".sphere 0 0 0 0.2",
    ".color green",
    ".arrow 0 0 0 10.0 0 0 ",
    ".color blue",
    ".arrow 0 0 0 0 10.0 0",
    ".color red ",
    ".arrow 0 0 0 0 0 10.0",
    ".comment - molecule 1 (Derived system xyz: ",
    ".comment - z blue (IA), y green (IB), x red (IC):",
    ".comment - IA<IB<IC ",
};

/// Colours of the tips, in tip order: z, y, x.
constexpr std::array kColours{".color blue", ".color green", ".color red "};

Fwd coordinate(double value) { return {value, 8, 3}; }

}  // namespace

void write_bild(RecordStream& bild, const Vec3& drawn_centre, const MoleculeFrame& molecule1) {
  const Vec3& c = drawn_centre;
  for (const char* line : kReferenceFrame) bild.formatted(line);
  bild.formatted(".sphere", coordinate(c.x), coordinate(c.y), coordinate(c.z), "  0.2");
  for (std::size_t k = 0; k < 3; ++k) {
    const Vec3& tip = molecule1.tips[k];
    bild.formatted(kColours[k]);
    bild.formatted(".arrow", coordinate(c.x), coordinate(c.y), coordinate(c.z), coordinate(tip.x),
                   coordinate(tip.y), coordinate(tip.z));
  }
}

}  // namespace dravo
