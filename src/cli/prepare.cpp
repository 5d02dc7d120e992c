#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "cli/commands.hpp"
#include "cli/output_file.hpp"
#include "cli/pair_options.hpp"
#include "cli/pose_options.hpp"
#include "cli/words.hpp"
#include "common/errors.hpp"
#include "common/output_folder.hpp"
#include "dravo/frame.hpp"
#include "dravo/molecule.hpp"
#include "driver/input_reader.hpp"
#include "driver/user_parameters.hpp"
#include "molecules/fragments.hpp"
#include "molecules/input_text.hpp"
#include "molecules/pose_range.hpp"

namespace dravo {
namespace {

using Member = double PoseDegrees::*;

struct Preparation {
  SharedRequest request = std::make_shared<PairRequest>();
  GivenPose given;
  std::string output = kInputFileName;
  bool overwrite = false;
};

constexpr auto kPrepareFooter =
    "A value is a number, or here, the pair's own as FILE has it, or here + a number (here-10).\n"
    "What is not given is as FILE states it when it is a QN-input-GEOMETRY.xyz, else here; with FILE2\n"
    "it is 0, and --r must be given.\n"
    "Example:\n"
    "  dravo prepare formamide.xyz ethanol.xyz --r 4 --theta 90 --phi 45 --beta 30\n"
    "  qn-dravo";

template <class Real>
std::string number_text(Real value) {
  std::array<char, 64> text{};
  const auto written = std::to_chars(text.data(), text.data() + text.size(), value);
  return {text.data(), written.ptr};
}

// --- values that a run replaces ----------------------------------------------------------------

/// A value that an angle is moved off because another one has no meaning there.
struct Singularity {
  Member angle;
  double at;  ///< degrees
  const char* reason;
};

constexpr std::array<Singularity, 3> kSingularities{{
    {&PoseDegrees::theta, 0.0, "phi has no meaning at theta 0"},
    {&PoseDegrees::theta, 180.0, "phi has no meaning at theta 180"},
    {&PoseDegrees::beta, 180.0, "alpha and gamma are not separate angles at beta 180"},
}};

/// Whether beta alone decides what gamma becomes: then even a gamma far from 0 does not stay.
bool beta_fixes_gamma(PoseDegrees degrees) {
  constexpr double kElsewhere = 90.0;
  degrees.gamma = kElsewhere;
  return nudged_parameters(degrees).gamma != kElsewhere;
}

std::string reason_of_nudge(Member angle, const PoseDegrees& degrees) {
  if (angle == &PoseDegrees::gamma && beta_fixes_gamma(degrees))
    return "beta rounds to 0, where only alpha + gamma counts";
  for (const Singularity& singularity : kSingularities)
    if (singularity.angle == angle && std::abs(degrees.*angle - singularity.at) < 1.0)
      return singularity.reason;
  return "angles are kept off 0";
}

/// The values that a run will replace, in one line; empty when there are none. The replacements are
/// single-precision numbers and are shown as such: 0.049, not 0.04899999871850014.
std::vector<std::string> nudging_remark(const PoseDegrees& degrees) {
  const PoseDegrees used = nudged_parameters(degrees);
  std::vector<std::string> values, replacements, reasons;
  for (const auto& [name, angle] : kPoseParameters) {
    const double given = degrees.*angle;
    const std::string shown = number_text(static_cast<float>(used.*angle));
    if (used.*angle == given || shown == number_text(given)) continue;
    values.push_back(fmt::format("{} {}", name, number_text(given)));
    replacements.push_back(shown);
    const std::string reason = reason_of_nudge(angle, degrees);
    if (std::find(reasons.begin(), reasons.end(), reason) == reasons.end())
      reasons.push_back(reason);
  }
  if (values.empty()) return {};
  return {fmt::format("{} will be used as {}: {}", enumerated(values), enumerated(replacements),
                      fmt::join(reasons, "; "))};
}

/// Azimuths that are not written as they were asked for.
std::vector<std::string> folding_remarks(const PoseDegrees& asked, const PoseDegrees& folded) {
  std::vector<std::string> remarks;
  for (const auto& [name, angle] : kPoseParameters)
    if (folded.*angle != asked.*angle)
      remarks.push_back(fmt::format("{} {} is written as {}, the same angle", name,
                                    number_text(asked.*angle), number_text(folded.*angle)));
  return remarks;
}

// --- pairs that qn-dravo refuses --------------------------------------------------------------

/// Why `qn-dravo` would not place a pair, one sentence each; none for a pair that it places.
std::vector<std::string> reasons_of_refusal(const Pair& pair) {
  std::vector<std::string> reasons;
  if (pair.n1() < kFewestAtomsOfARun.n1)
    reasons.push_back(fmt::format("molecule 1 needs at least {}, found {}",
                                  atoms_text(kFewestAtomsOfARun.n1), pair.n1()));
  if (pair.size() < kFewestAtomsOfARun.N)
    reasons.push_back(fmt::format("a pair needs at least {}, found {}",
                                  atoms_text(kFewestAtomsOfARun.N), pair.size()));
  try {
    (void)principal_frames(pair, FrameRule::strict);
  } catch (const NoUniqueFrame& refusal) {
    reasons.insert(reasons.end(), refusal.reasons().begin(), refusal.reasons().end());
  }
  return reasons;
}

/// A file that no run can use would only hide this.
void require_placeable(const Pair& pair) {
  const std::vector<std::string> reasons = reasons_of_refusal(pair);
  if (reasons.empty()) return;
  tell({"qn-dravo will not place this pair:"});
  tell(reasons);
  throw CannotBeDone("nothing written; dravo place places every pair");
}

void prepare(const Preparation& wanted) {
  const PairFile file = read_pair(*wanted.request);
  tell(file.remarks);
  require_placeable(file.pair);
  const PoseDegrees asked =
      chosen_pose(wanted.given, pose_defaults(*wanted.request, file), *wanted.request);
  const PoseDegrees degrees = with_folded_azimuths(asked);
  require_replaceable(wanted.output, wanted.overwrite);
  const std::string text = input_text(file.pair, degrees);
  require_same_when_read(wanted.output, text, file.pair, degrees);
  tell(folding_remarks(asked, degrees));
  tell(nudging_remark(degrees));
  WorkingDirectory().replace(wanted.output, text);
  tell({written_line(wanted.output, file.pair)});
}

}  // namespace

void add_prepare(CLI::App& program) {
  CLI::App& command =
      *program.add_subcommand("prepare", "Write the input file of qn-dravo from xyz files");
  const auto wanted = std::make_shared<Preparation>();
  command
      .add_option(
          "file", wanted->request->file,
          "xyz file of molecule 1 or of both molecules, or a QN-input-GEOMETRY.xyz; - is standard "
          "input")
      ->required()
      ->type_name("FILE");
  add_second_file(command, wanted->request);
  add_pose_options(command, wanted->given);
  add_split_options(command, wanted->request);
  command.add_option("-o,--output", wanted->output, "file to write")
      ->type_name("FILE")
      ->capture_default_str();
  command.add_flag("--overwrite", wanted->overwrite, "replace a file that exists");
  command.footer(kPrepareFooter);
  command.callback([wanted] { prepare(*wanted); });
}

}  // namespace dravo
