#include "cli/pair_options.hpp"

#include <fmt/format.h>

#include <cstdint>
#include <iostream>
#include <limits>
#include <variant>

#include "cli/text_option.hpp"
#include "common/number_text.hpp"
#include "dravo/error.hpp"
#include "molecules/input_file.hpp"
#include "molecules/length_unit.hpp"
#include "molecules/van_der_waals_radii.hpp"

namespace dravo {
namespace {

void add_split(CLI::App& command, const SharedRequest& request) {
  const auto read_split = [request](const std::string& text) {
    if (text == "auto") {
      request->split = SplitByBonds{};
      return;
    }
    const auto n1 = parse_integer(text);
    if (!n1 || *n1 < 1)
      throw CLI::ValidationError(
          "--split",
          fmt::format("expected the number of atoms of molecule 1 or auto, found \"{}\"", text));
    request->split = *n1;
  };
  command
      .add_option_function<std::string>(
          "--split", read_split,
          "atoms of molecule 1, or auto: the molecules are what is bonded (covalent radii)")
      ->type_name("N1|auto");
}

}  // namespace

std::optional<std::int32_t> n1_of(const PairRequest& request) {
  const auto* n1 = request.split ? std::get_if<std::int32_t>(&*request.split) : nullptr;
  return n1 == nullptr ? std::nullopt : std::optional(*n1);
}

void add_reading_options(CLI::App& command, const SharedRequest& request) {
  add_split(command, request);
  command.add_flag_callback(
      "--no-check", [request] { request->check = false; },
      "take a pair with bonds across the split, or with atoms closer than 0.5 Angstrom");
  std::vector<std::string> names;
  names.reserve(kLengthUnits.size());
  for (const NamedUnit& unit : kLengthUnits) names.emplace_back(unit.name);
  const auto read_unit = [request](const std::string& name) {
    for (const NamedUnit& unit : kLengthUnits)
      if (unit.name == name) request->unit = unit.unit;
  };
  command
      .add_option_function<std::string>("--unit", read_unit,
                                        "unit of the coordinates, in all files of molecules")
      ->type_name("UNIT")
      ->check(CLI::IsMember(names))
      ->default_str(names[0]);
}

void add_split_options(CLI::App& command, const SharedRequest& request) {
  add_reading_options(command, request);
  command.add_option("--frame", request->frame, "which frame of a file with several, from 1")
      ->type_name("K")
      ->check(CLI::Range(1, std::numeric_limits<std::int32_t>::max()));
}

SharedRequest add_pair_file(CLI::App& command) {
  auto request = std::make_shared<PairRequest>();
  command
      .add_option("pair", request->file,
                  "xyz file of both molecules, QN-input-GEOMETRY.xyz or input-GEOMETRY.xyz; - is "
                  "standard input")
      ->required()
      ->type_name("FILE");
  return request;
}

SharedRequest add_pair_options(CLI::App& command) {
  auto request = add_pair_file(command);
  add_split_options(command, request);
  return request;
}

CLI::Option* add_like_option(CLI::App& command, std::string& file) {
  return command
      .add_option("--like", file,
                  "xyz file of the same pair: its axes are carried along, by best superposition")
      ->type_name("FILE");
}

std::optional<Pair> reference_pair(const std::string& file, const PairRequest& request,
                                   std::optional<std::int32_t> n1) {
  if (file.empty()) return std::nullopt;
  if (is_standard_input(file) &&
      (is_standard_input(request.file) || is_standard_input(request.second_file)))
    throw InvalidInput("standard input (-) can be one file only");
  PairRequest of_reference = request;
  of_reference.file = file;
  of_reference.second_file.clear();
  of_reference.frame = 1;
  if (request.split && !std::holds_alternative<SplitByBonds>(*request.split))
    of_reference.split.reset();
  of_reference.n1_if_untold = n1;
  return read_pair(of_reference).pair;
}

void add_placing_options(CLI::App& command, PlacingOptions& options) {
  auto* exact = command.add_flag_function(
      "--exact", [&options](std::int64_t) { options.placing = Placing::exact; },
      "place by closed form, with the parameters as they are given");
  auto* as_qn_dravo = command.add_flag_function(
      "--as-qn-dravo", [&options](std::int64_t) { options.placing = Placing::as_qn_dravo; },
      "place digit for digit as qn-dravo; refuse pairs that it refuses");
  exact->excludes(as_qn_dravo);
  add_like_option(command, options.like);
}

void add_contact_option(CLI::App& command, ContactCriterion& criterion) {
  add_text_option(command, "--contact-distance", criterion, kContactDistanceHelp)
      ->type_name(kContactDistanceType);
}

void tell_of_unknown_radii(const Pair& pair) {
  const std::string remark = remark_on_radii(pair);
  if (!remark.empty()) tell({remark});
}

void add_second_file(CLI::App& command, const SharedRequest& request) {
  command.add_option("file2", request->second_file, "xyz file of molecule 2")->type_name("FILE2");
}

void tell(const std::vector<std::string>& messages) {
  for (const std::string& message : messages) std::cerr << "dravo: " << message << '\n';
}

}  // namespace dravo
