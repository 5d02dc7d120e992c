/// Any bytes as the values that options of commands have: axes, values of poses, selected poses and
/// frames, distances of contacts. An axis that is described is read again as one of the same size.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>

#include "common/index_selection.hpp"
#include "dravo/contacts.hpp"
#include "fuzz/expectations.hpp"
#include "fuzz/poses.hpp"
#include "scan/axis.hpp"
#include "scan/own_value.hpp"
#include "scan/plan.hpp"

namespace {

using namespace dravo;
using test::require;

/// A range whose values are not rounded is described by words that no axis has.
bool is_axis_text(const std::string& description) {
  return description.find("unrounded") == std::string::npos;
}

/// Numbers whose billionths doubles tell apart: of larger ones the last value of a range may be
/// rounded to where one step less leads.
bool is_usual(double number) { return std::abs(number) < 0x1p53 / 1e9; }

void read_axis(const std::string& text) {
  const PoseAxis axis(text);
  require(axis.size() >= 1, "an axis has a value");
  const double first = axis.at(0), last = axis.at(axis.size() - 1);
  require(std::isfinite(first) && std::isfinite(last), "they are numbers");
  const std::string description = axis.axis().description();
  if (is_axis_text(description) && is_usual(first) && is_usual(last))
    require(PoseAxis(description).size() == axis.size(), "its description is the same axis");
}

void read_plan(const std::string& key, const std::string& text) {
  PlanKeys keys;
  for (const PoseParameter& parameter : kPoseParameters) set_plan_key(keys, parameter.name, "0");
  set_plan_key(keys, key, text);
  const ScanPlan plan(keys, {.values = {}, .here = test::a_pose});
  test::require_poses(plan.poses(), plan.above_contact());
}

void read_selection(const std::string& text) {
  const IndexSelection selection = IndexSelection::parse("--poses", text);
  require(selection.first() >= 1 && selection.last() >= selection.first(), "numbers are from 1");
  require(selection.contains(selection.first()), "the first of them is one of them");
}

void read_criterion(const std::string& text) {
  const ContactCriterion criterion = ContactCriterion::of_text(text);
  require(ContactCriterion::of_text(criterion.text()).text() == criterion.text(),
          "a distance that is written is read as the same");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const std::string text = test::text_of(bytes, size);
  test::read_or_refuse([&] { read_axis(text); });
  for (const char* key : {"r", "theta", "gamma", "random", "seed", "unique", "contacts"})
    test::read_or_refuse([&] { read_plan(key, text); });
  test::read_or_refuse([&] { read_selection(text); });
  test::read_or_refuse([&] { read_criterion(text); });
  if (const auto number = parse_pose_number(text))
    require(std::isfinite(number->number), "a value is a number");
  return 0;
}
