#include <fmt/format.h>

#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include "cli/commands.hpp"
#include "cli/pair_options.hpp"
#include "common/errors.hpp"
#include "common/number_text.hpp"
#include "common/output_folder.hpp"
#include "common/shown_text.hpp"
#include "dravo/frame.hpp"
#include "dravo/molecule.hpp"
#include "driver/input_reader.hpp"
#include "driver/user_parameters.hpp"
#include "molecules/fragments.hpp"
#include "molecules/input_text.hpp"

namespace dravo {
namespace {

using Member = double PoseDegrees::*;

/// What `--help` says of the values, in the order of `kPoseParameters`.
struct ValueHelp {
  const char* unit;
  const char* text;
};

constexpr std::array<ValueHelp, kPoseParameters.size()> kValueHelp{{
    {"ANGSTROM", "distance of the centres of mass, 0 to 9999.9; needed unless FILE states it"},
    {"DEGREES", "polar angle of molecule 1's place, 0 to 180"},
    {"DEGREES", "azimuth of molecule 1's place, 0 to 360"},
    {"DEGREES", "first Euler angle of molecule 1, 0 to 360"},
    {"DEGREES", "second Euler angle, 0 to 180"},
    {"DEGREES", "third Euler angle, 0 to 360"},
}};

/// As the user gave them, in the order of `kPoseParameters`; empty where the file or 0 stands in.
using GivenValues = std::array<std::optional<double>, kPoseParameters.size()>;

struct Preparation {
  SharedRequest request = std::make_shared<PairRequest>();
  GivenValues given;
  std::string output = kInputFileName;
  bool overwrite = false;
};

constexpr auto kExample =
    "The angles that are not given are those of FILE when it is a QN-input-GEOMETRY.xyz, else 0.\n"
    "Example:\n"
    "  dravo prepare formamide.xyz ethanol.xyz --r 4 --theta 90 --phi 45 --beta 30\n"
    "  qn-dravo";

template <class Real>
std::string number_text(Real value) {
  std::array<char, 64> text{};
  const auto written = std::to_chars(text.data(), text.data() + text.size(), value);
  return {text.data(), written.ptr};
}

// --- the six values ---------------------------------------------------------------------------

PoseDegrees stated_values(const Preparation& wanted, const std::optional<PoseDegrees>& of_file) {
  if (!wanted.given[0] && !of_file)
    throw InvalidInput(fmt::format("--r is required: {} states no distance", wanted.request->file));
  PoseDegrees degrees = of_file.value_or(PoseDegrees{});
  for (std::size_t k = 0; k < kPoseParameters.size(); ++k)
    degrees.*kPoseParameters[k].value = wanted.given[k].value_or(degrees.*kPoseParameters[k].value);
  return degrees;
}

/// "--theta 190" or, when it was not given there, "pair.xyz: theta 190".
std::string place_of(std::size_t k, const PoseDegrees& degrees, const Preparation& wanted) {
  const std::string source = wanted.given[k] ? "--" : wanted.request->file + ": ";
  return fmt::format("{}{} {}", source, kPoseParameters[k].name,
                     number_text(degrees.*kPoseParameters[k].value));
}

void require_usable(const PoseDegrees& degrees, const Preparation& wanted) {
  for (std::size_t k = 0; k < kPoseParameters.size(); ++k)
    if (!std::isfinite(degrees.*kPoseParameters[k].value))
      throw InvalidInput(place_of(k, degrees, wanted) + ": expected a finite number");
  if (const auto complaint = complaint_about(degrees))
    throw InvalidInput(fmt::format(
        "{}: {}", place_of(pose_parameter(complaint->name()), degrees, wanted), complaint->what()));
}

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

/// One line per value that a run will replace. The replacements are single-precision numbers and
/// are shown as such: 0.049, not 0.04899999871850014.
std::vector<std::string> nudging_remarks(const PoseDegrees& degrees) {
  const PoseDegrees used = nudged_parameters(degrees);
  std::vector<std::string> remarks;
  for (const auto& [name, angle] : kPoseParameters) {
    const double given = degrees.*angle;
    const std::string shown = number_text(static_cast<float>(used.*angle));
    if (used.*angle == given || shown == number_text(given)) continue;
    remarks.push_back(fmt::format("{} {} will be used as {}: {}", name, number_text(given), shown,
                                  reason_of_nudge(angle, degrees)));
  }
  return remarks;
}

// --- the file ---------------------------------------------------------------------------------

/// An earlier file goes only when the user says so; a folder or a device never goes.
void require_replaceable(const std::string& name, bool overwrite) {
  std::error_code ignored;  // whatever it is, writing meets it too
  const auto status = std::filesystem::symlink_status(name, ignored);
  if (!std::filesystem::exists(status)) return;
  if (!std::filesystem::is_regular_file(status) && !std::filesystem::is_symlink(status))
    throw IoFailure(name + ": cannot replace it: not a regular file");
  if (!overwrite) throw IoFailure(name + ": exists already; --overwrite replaces it");
}

std::string written_line(const std::string& name, const Pair& pair) {
  return fmt::format("wrote {}: molecule 1 has {} atoms, molecule 2 has {}", name, pair.n1(),
                     pair.size() - pair.n1());
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
  const PoseDegrees degrees = stated_values(wanted, file.parameters);
  require_usable(degrees, wanted);
  require_replaceable(wanted.output, wanted.overwrite);
  const std::string text = input_text(file.pair, degrees);
  require_same_when_read(wanted.output, text, file.pair, degrees);
  tell(nudging_remarks(degrees));
  WorkingDirectory().replace(wanted.output, text);
  tell({written_line(wanted.output, file.pair)});
}

// --- options ----------------------------------------------------------------------------------

void add_value(CLI::App& command, const char* name, const ValueHelp& help,
               std::optional<double>& given) {
  const std::string option = std::string("--") + name;
  const auto read_value = [option, &given](const std::string& text) {
    given = parse_plain_real(text);
    if (!given)
      throw CLI::ValidationError(option, "expected a finite number, found " + dravo::quoted(text));
  };
  command.add_option_function<std::string>(option, read_value, help.text)->type_name(help.unit);
}

void add_unit(CLI::App& command, const SharedRequest& request) {
  const auto read_unit = [request](const std::string& text) {
    request->unit = text == "bohr" ? LengthUnit::bohr : LengthUnit::angstrom;
  };
  command.add_option_function<std::string>("--unit", read_unit, "unit of the coordinates in FILE")
      ->type_name("UNIT")
      ->check(CLI::IsMember({"angstrom", "bohr"}))
      ->default_str("angstrom");
}

}  // namespace

void add_prepare(CLI::App& program) {
  CLI::App& command =
      *program.add_subcommand("prepare", "Write the input file of qn-dravo from xyz files");
  const auto wanted = std::make_shared<Preparation>();
  command
      .add_option("file", wanted->request->file,
                  "xyz file of molecule 1 or of both molecules, or a QN-input-GEOMETRY.xyz")
      ->required()
      ->type_name("FILE");
  command.add_option("file2", wanted->request->second_file, "xyz file of molecule 2")
      ->type_name("FILE2");
  for (std::size_t k = 0; k < kPoseParameters.size(); ++k)
    add_value(command, kPoseParameters[k].name, kValueHelp[k], wanted->given[k]);
  add_split_options(command, wanted->request);
  add_unit(command, wanted->request);
  command.add_option("-o,--output", wanted->output, "file to write")
      ->type_name("FILE")
      ->capture_default_str();
  command.add_flag("--overwrite", wanted->overwrite, "replace a file that exists");
  command.footer(kExample);
  command.callback([wanted] { prepare(*wanted); });
}

}  // namespace dravo
