#include "frames/right_handed_log.hpp"

#include "inertia/moments_report.hpp"

namespace dravo {
namespace {

using namespace decided_axes;

/// What the log says of one case.
struct CaseTexts {
  int molecule;  ///< 1 or 2
  DecidedAxes decided;
  const char* header;
  std::array<const char*, 3> modulus_labels;  ///< of A, B, C
  const char* cross_label;
  const char* dot_label;
  const char* expectation;
  const char* after_label;
};

// The texts are part of the format: some name another axis than the one computed, and their blanks
// differ from case to case. The cases stand in the order in which they are looked at: by the number
// of decided axes, 0, 3, 2, 1.
// clang-format off
constexpr std::array<CaseTexts, 16> kCaseTexts{{
    {1, NNN,
     " ANALISE E MONTAGEM xyz right-handed N N N ",
     {" modulo z ", " modulo y ", " modulo x "},
     " verificacao - cenario atual z -cross product- y ",
     "dotprodct n.dot.x  actual",
     " expected for xyz right-handed: negative value",
     "dotproduct n.dot.x after analysis "},
    {2, NNN,
     " ANALISE E MONTAGEM XYZ right-handed N N N ",
     {" modulo Y ", " modulo X ", " modulo Z "},
     " verificacao - cenario atual Y -cross product- X ",
     "dotprodct n.dot.Z  actual",
     " expected for xyz right-handed: negative value",
     "dotproduct n.dot.Y after analysis "},
    {1, YYY,
     " ANALISE E MONTAGEM xyz right-handed Y Y Y ",
     {" modulo Z ", " modulo y ", " modulo x "},
     " verificacao - cenario atual z -cross product- y ",
     "dotprodct n.dot.x  actual",
     " expected for xyz right-handed: negative value",
     "dotproduct n.dot.y after analysis "},
    {2, YYY,
     " ANALISE E MONTAGEM XYZ right-handed Y Y Y  ",
     {" modulo Z ", " modulo X ", " modulo Y "},
     " verificacao - cenario atual Z -cross product- X ",
     "dotprodct n.dot.Y  actual",
     " expected for XYZ right-handed: positive value",
     "dotproduct n.dot.Y after analysis "},
    {1, YYN,
     " ANALISE E MONTAGEM xyz right-handed Y Y N ",
     {" modulo z ", " modulo y ", " modulo x "},
     " verificacao - cenario atual z -cross product- y ",
     "dotprodct n.dot.x  actual",
     " expected for xyz right-handed: negative value",
     "dotproduct n.dot.x after analysis "},
    {2, YYN,
     " ANALISE E MONTAGEM XYZ right-handed Y Y N  ",
     {" modulo Y ", " modulo X ", " modulo Z "},
     " verificacao - cenario atual Y -cross product- X ",
     "dotprodct n.dot.Z  actual",
     " expected for XYZ right-handed: negative value",
     "dotproduct n.dot.Z after analysis "},
    {1, YNY,
     " ANALISE E MONTAGEM xyz right-handed Y N Y ",
     {" modulo x ", " modulo x ", " modulo y "},
     " verificacao - cenario atual z -cross product- x ",
     "dotprodct n.dot.y  actual",
     " expected for xyz right-handed: negative value",
     "dotproduct n.dot.y after analysis "},
    {2, YNY,
     " ANALISE E MONTAGEM XYZright-handed Y N Y   ",
     {" modulo Z ", " modulo Y ", " modulo X "},
     " verificacao - cenario atual Z -cross product- Y ",
     "dotprodct n.dot.X  actual",
     " expected for xyz right-handed: negative value",
     "dotproduct n.dot.X after analysis "},
    {1, NYY,
     " ANALISE E MONTAGEM xyz right-handed N Y Y ",
     {" modulo y ", " modulo x ", " modulo z "},
     " verificacao - cenario atual y -cross product- x ",
     "dotprodct n.dot.z  actual",
     " expected for xyz right-handed: negative value",
     "dotproduct n.dot.z after analysis "},
    {2, NYY,
     " ANALISE E MONTAGEM XYZ right-handed N Y Y   ",
     {" modulo X ", " modulo Z ", " modulo Y "},
     " verificacao - cenario atual X -cross product- Z ",
     "dotprodct n.dot.y  actual",
     " expected for XYZ right-handed: negative value",
     "dotproduct n.dot.Y after analysis "},
    {1, YNN,
     " ANALISE E MONTAGEM xyz right-handed Y N N  ",
     {" modulo z ", " modulo y ", " modulo x "},
     " verificacao - cenario atual z -cross product- y ",
     "dotprodct n.dot.x  actual",
     " expected for ref xyz right-handed: negative value",
     "dotproduct n.dot.x after analysis "},
    {2, YNN,
     " ANALISE E MONTAGEM XYZ right-handed Y N N     ",
     {" modulo Y ", " modulo X ", " modulo Z "},
     " verificacao - cenario atual Y -cross product- X ",
     "dotprodct n.dot.Z  actual",
     " expected for XYZ right-handed: negative value",
     "dotproduct n.dot.Z after analysis "},
    {1, NYN,
     " ANALISE E MONTAGEM xyz right-handed N Y N  ",
     {" modulo z ", " modulo y ", " modulo x "},
     " verificacao - cenario atual z -cross product- y ",
     "dotprodct n.dot.x  actual",
     " expected for xyz right-handed: negative value",
     "dotproduct n.dot.x after analysis "},
    {2, NYN,
     " ANALISE E MONTAGEM XYZ right-handed N Y N      ",
     {" modulo Y ", " modulo X ", " modulo Z "},
     " verificacao - cenario atual Y -cross product- X ",
     "dotprodct n.dot.Z  actual",
     " expected for XYZ right-handed: negative value",
     "dotproduct n.dot.Z after analysis "},
    {1, NNY,
     " ANALISE E MONTAGEM xyz right-handed N N Y   ",
     {" modulo x ", " modulo z ", " modulo y "},
     " verificacao - cenario atual x -cross product- z ",
     "dotprodct n.dot.y  actual",
     " expected for xyz right-handed: negative value",
     "dotproduct n.dot.y after analysis "},
    {2, NNY,
     " ANALISE E MONTAGEM XYZ right-handed N N Y       ",
     {" modulo Z ", " modulo Y ", " modulo X "},
     " verificacao - cenario atual Z -cross product- Y ",
     "dotprodct n.dot.X actual",
     " expected for ref. XYZ right-handed: negative value",
     "dotproduct n.dot.X after analysis "},
}};
// clang-format on

void write_block(RecordStream& log, const CaseTexts& texts, const HandednessCheck& check) {
  constexpr auto kStars = "********************************************";
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

void write_right_handed(RecordStream& log,
                        const std::array<std::optional<HandednessCheck>, 2>& checks) {
  for (const CaseTexts& texts : kCaseTexts)
    for (const auto& check : checks)
      if (check && check->applied->molecule == texts.molecule &&
          check->applied->decided == texts.decided)
        write_block(log, texts, *check);
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
