#include "frames/right_handed.hpp"

#include <algorithm>

#include "common/rounding.hpp"
#include "inertia/moments_report.hpp"

namespace dravo {
namespace {

using axis_of_molecule1::x;
using axis_of_molecule1::y;
using axis_of_molecule1::z;
using axis_of_molecule2::X;
using axis_of_molecule2::Y;
using axis_of_molecule2::Z;

using Decided = std::array<bool, 3>;
constexpr Decided NNN{false, false, false};
constexpr Decided YYY{true, true, true};
constexpr Decided YYN{true, true, false};
constexpr Decided YNY{true, false, true};
constexpr Decided NYY{false, true, true};
constexpr Decided YNN{true, false, false};
constexpr Decided NYN{false, true, false};
constexpr Decided NNY{false, false, true};

constexpr bool negative = false;
constexpr bool positive = true;

// Molecule, decided axes, A, B, C, sign of (A x B) . C, texts. The texts are part of the format:
// some name another axis than the one computed, and their blanks differ from case to case. The
// cases stand in the order in which they are looked at: by the number of decided axes, 0, 3, 2, 1.
// clang-format off
constexpr std::array<RightHandedCase, 16> kCases{{
    {1, NNN, z, y, x, negative,
     " ANALISE E MONTAGEM xyz right-handed N N N ",
     {" modulo z ", " modulo y ", " modulo x "},
     " verificacao - cenario atual z -cross product- y ",
     "dotprodct n.dot.x  actual",
     " expected for xyz right-handed: negative value",
     "dotproduct n.dot.x after analysis "},
    {2, NNN, Y, X, Z, negative,
     " ANALISE E MONTAGEM XYZ right-handed N N N ",
     {" modulo Y ", " modulo X ", " modulo Z "},
     " verificacao - cenario atual Y -cross product- X ",
     "dotprodct n.dot.Z  actual",
     " expected for xyz right-handed: negative value",
     "dotproduct n.dot.Y after analysis "},
    {1, YYY, z, y, x, negative,
     " ANALISE E MONTAGEM xyz right-handed Y Y Y ",
     {" modulo Z ", " modulo y ", " modulo x "},
     " verificacao - cenario atual z -cross product- y ",
     "dotprodct n.dot.x  actual",
     " expected for xyz right-handed: negative value",
     "dotproduct n.dot.y after analysis "},
    {2, YYY, Z, X, Y, positive,
     " ANALISE E MONTAGEM XYZ right-handed Y Y Y  ",
     {" modulo Z ", " modulo X ", " modulo Y "},
     " verificacao - cenario atual Z -cross product- X ",
     "dotprodct n.dot.Y  actual",
     " expected for XYZ right-handed: positive value",
     "dotproduct n.dot.Y after analysis "},
    {1, YYN, z, y, x, negative,
     " ANALISE E MONTAGEM xyz right-handed Y Y N ",
     {" modulo z ", " modulo y ", " modulo x "},
     " verificacao - cenario atual z -cross product- y ",
     "dotprodct n.dot.x  actual",
     " expected for xyz right-handed: negative value",
     "dotproduct n.dot.x after analysis "},
    {2, YYN, Y, X, Z, negative,
     " ANALISE E MONTAGEM XYZ right-handed Y Y N  ",
     {" modulo Y ", " modulo X ", " modulo Z "},
     " verificacao - cenario atual Y -cross product- X ",
     "dotprodct n.dot.Z  actual",
     " expected for XYZ right-handed: negative value",
     "dotproduct n.dot.Z after analysis "},
    {1, YNY, x, z, y, negative,
     " ANALISE E MONTAGEM xyz right-handed Y N Y ",
     {" modulo x ", " modulo x ", " modulo y "},
     " verificacao - cenario atual z -cross product- x ",
     "dotprodct n.dot.y  actual",
     " expected for xyz right-handed: negative value",
     "dotproduct n.dot.y after analysis "},
    {2, YNY, Z, Y, X, negative,
     " ANALISE E MONTAGEM XYZright-handed Y N Y   ",
     {" modulo Z ", " modulo Y ", " modulo X "},
     " verificacao - cenario atual Z -cross product- Y ",
     "dotprodct n.dot.X  actual",
     " expected for xyz right-handed: negative value",
     "dotproduct n.dot.X after analysis "},
    {1, NYY, y, x, z, negative,
     " ANALISE E MONTAGEM xyz right-handed N Y Y ",
     {" modulo y ", " modulo x ", " modulo z "},
     " verificacao - cenario atual y -cross product- x ",
     "dotprodct n.dot.z  actual",
     " expected for xyz right-handed: negative value",
     "dotproduct n.dot.z after analysis "},
    {2, NYY, X, Z, Y, negative,
     " ANALISE E MONTAGEM XYZ right-handed N Y Y   ",
     {" modulo X ", " modulo Z ", " modulo Y "},
     " verificacao - cenario atual X -cross product- Z ",
     "dotprodct n.dot.y  actual",
     " expected for XYZ right-handed: negative value",
     "dotproduct n.dot.Y after analysis "},
    {1, YNN, z, y, x, negative,
     " ANALISE E MONTAGEM xyz right-handed Y N N  ",
     {" modulo z ", " modulo y ", " modulo x "},
     " verificacao - cenario atual z -cross product- y ",
     "dotprodct n.dot.x  actual",
     " expected for ref xyz right-handed: negative value",
     "dotproduct n.dot.x after analysis "},
    {2, YNN, Y, X, Z, negative,
     " ANALISE E MONTAGEM XYZ right-handed Y N N     ",
     {" modulo Y ", " modulo X ", " modulo Z "},
     " verificacao - cenario atual Y -cross product- X ",
     "dotprodct n.dot.Z  actual",
     " expected for XYZ right-handed: negative value",
     "dotproduct n.dot.Z after analysis "},
    {1, NYN, z, y, x, negative,
     " ANALISE E MONTAGEM xyz right-handed N Y N  ",
     {" modulo z ", " modulo y ", " modulo x "},
     " verificacao - cenario atual z -cross product- y ",
     "dotprodct n.dot.x  actual",
     " expected for xyz right-handed: negative value",
     "dotproduct n.dot.x after analysis "},
    {2, NYN, Y, X, Z, negative,
     " ANALISE E MONTAGEM XYZ right-handed N Y N      ",
     {" modulo Y ", " modulo X ", " modulo Z "},
     " verificacao - cenario atual Y -cross product- X ",
     "dotprodct n.dot.Z  actual",
     " expected for XYZ right-handed: negative value",
     "dotproduct n.dot.Z after analysis "},
    {1, NNY, x, z, y, negative,
     " ANALISE E MONTAGEM xyz right-handed N N Y   ",
     {" modulo x ", " modulo z ", " modulo y "},
     " verificacao - cenario atual x -cross product- z ",
     "dotprodct n.dot.y  actual",
     " expected for xyz right-handed: negative value",
     "dotproduct n.dot.y after analysis "},
    {2, NNY, Z, Y, X, negative,
     " ANALISE E MONTAGEM XYZ right-handed N N Y       ",
     {" modulo Z ", " modulo Y ", " modulo X "},
     " verificacao - cenario atual Z -cross product- Y ",
     "dotprodct n.dot.X actual",
     " expected for ref. XYZ right-handed: negative value",
     "dotproduct n.dot.X after analysis "},
}};
// clang-format on

/// Empty unless every flag is 0 or 10.
std::optional<Decided> decided_axes(const AxisFlags& flags) {
  Decided decided{};
  for (std::size_t k = 0; k < 3; ++k) {
    const std::int32_t flag = nearest_integer(flags.distinguishable[k]);
    if (flag != 0 && flag != 10) return std::nullopt;
    decided[k] = flag == 10;
  }
  return decided;
}

void write_block(RecordStream& log, const HandednessCheck& check) {
  constexpr auto kStars = "********************************************";
  const RightHandedCase& texts = *check.applied;
  log.record(kStars);
  log.record(texts.header);
  log.blank();
  log.record(texts.molecule == 1 ? " molecule 1 " : " molecule 2 ");
  log.blank();
  log.record(texts.modulus_labels[0], check.modulus_A);
  log.record(texts.modulus_labels[1], check.modulus_B);
  log.blank(2);
  log.record(texts.cross_label);
  log.record(" modulo n ", check.modulus_normal);
  log.record(texts.modulus_labels[2], check.modulus_C);
  log.record(texts.dot_label, check.before);
  log.record(texts.expectation);
  log.record(texts.after_label, check.after);
  log.record(kStars);
}

}  // namespace

std::optional<HandednessCheck> make_right_handed(int molecule, MoleculeFrame& frame,
                                                 const AxisFlags& flags) {
  const auto decided = decided_axes(flags);
  const auto* const found = std::find_if(kCases.begin(), kCases.end(), [&](const auto& entry) {
    return entry.molecule == molecule && decided == entry.decided;
  });
  if (found == kCases.end()) return std::nullopt;

  const Vec3 A = frame.axis(found->A);
  const Vec3 B = frame.axis(found->B);
  const Vec3 C = frame.axis(found->C);
  const Vec3 normal = cross(A, B);
  const double before = dot(normal, C);
  const bool wrong_sign = found->positive ? before < 0.0 : before > 0.0;
  if (wrong_sign) frame.tips[found->C] = reflected(frame.tips[found->C], frame.cm);
  const double after = dot(normal, frame.axis(found->C));
  return HandednessCheck{found, modulus(A), modulus(B), modulus(normal), modulus(C), before, after};
}

void write_right_handed(RecordStream& log,
                        const std::array<std::optional<HandednessCheck>, 2>& checks) {
  for (const RightHandedCase& entry : kCases)
    for (const auto& check : checks)
      if (check && check->applied == &entry) write_block(log, *check);
}

void write_right_handed_summary(RecordStream& log, const PairOfFrames& frames) {
  log.blank(5);
  write_dashes(log);
  log.blank(3);
  write_dashes(log);
  log.blank();
  write_collected_tips(log, "   dados coletados apos analise righ-handed  ", frames);
}

}  // namespace dravo
