#include "scan/plan.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

#include "common/number_format.hpp"
#include "common/shown_text.hpp"
#include "common/text.hpp"
#include "dravo/error.hpp"
#include "dravo/pose.hpp"
#include "scan/fingerprint.hpp"
#include "scan/pose_source.hpp"
#include "scan/zipped_list.hpp"

namespace dravo {
namespace {

constexpr std::array<std::string_view, 7> kOtherKeys{
    "zip", "random", "seed", "contacts", kContactDistance, "files", "unique"};

bool is_parameter(std::string_view key) {
  return std::any_of(kPoseParameters.begin(), kPoseParameters.end(),
                     [&](const PoseParameter& parameter) { return parameter.name == key; });
}

void refuse_unknown_keys(const PlanKeys& keys) {
  for (const auto& [key, words] : keys) {
    const bool known = is_parameter(key) ||
                       std::find(kOtherKeys.begin(), kOtherKeys.end(), key) != kOtherKeys.end();
    if (!known) words[0].refuse("a plan has no key " + quoted(key));
  }
}

const std::vector<PlanWord>* find(const PlanKeys& keys, std::string_view key) {
  const auto found = keys.find(key);
  return found == keys.end() ? nullptr : &found->second;
}

/// The word of a key that has one value; null without the key.
const PlanWord* single(const PlanKeys& keys, std::string_view key) {
  const auto* words = find(keys, key);
  if (words == nullptr) return nullptr;
  if (words->size() > 1) (*words)[1].refuse(fmt::format("expected one value for {}", key));
  return words->data();
}

template <class Integer>
Integer whole_number(const PlanWord& word, Integer lowest, Integer highest) {
  Integer value = 0;
  const char* const end = word.text.data() + word.text.size();
  const auto [stop, error] = std::from_chars(word.text.data(), end, value);
  if (error != std::errc{} || stop != end || value < lowest || value > highest)
    word.refuse(fmt::format("expected a whole number from {} to {}, found {}", lowest, highest,
                            quoted(word.text)));
  return value;
}

/// One of the texts of a table.
template <class Value, std::size_t Size>
Value choice(const PlanWord& word,
             const std::array<std::pair<std::string_view, Value>, Size>& choices) {
  std::string names;
  for (const auto& [name, value] : choices) {
    if (word.text == name) return value;
    names.append(names.empty() ? "" : " or ").append(name);
  }
  word.refuse(fmt::format("expected {}, found {}", names, quoted(word.text)));
}

constexpr std::array<std::pair<std::string_view, ContactRule>, 3> kContactRules{
    {{"keep", ContactRule::keep}, {"drop", ContactRule::drop}, {"only", ContactRule::only}}};
constexpr std::array<std::pair<std::string_view, bool>, 2> kTruth{
    {{"true", true}, {"false", false}}};

void check_range(const Axis& axis, const PoseParameter& parameter) {
  const auto fault = find_axis_fault(axis, parameter);
  if (!fault) return;
  std::string sentence = fault->complaint.what();
  if (axis.own())
    sentence += fmt::format("; here is {}, the sum {}", shortest_text(axis.own()->value()),
                            shortest_text(fault->complaint.value()));
  axis.word_of(*fault->segment).refuse(sentence);
}

double longest_of(const Axis& axis) {
  double longest = 0.0;
  for (const Axis::Segment& segment : axis.segments())
    longest =
        std::max({longest, axis.at(segment.first), axis.at(segment.first + segment.count - 1)});
  return longest;
}

/// From the first parameter that others give.
void refuse_parameters(const PlanKeys& keys, std::size_t first, const char* others) {
  for (std::size_t k = first; k < kPoseParameters.size(); ++k)
    if (const auto* words = find(keys, kPoseParameters[k].name))
      (*words)[0].refuse(fmt::format("{} has its values from {}", kPoseParameters[k].name, others));
}

/// The text, or its fingerprint where it is long.
std::string shortened(const std::string& text) {
  constexpr std::size_t kLongest = 200;
  if (text.size() <= kLongest) return text;
  Fingerprint fingerprint;
  fingerprint.add(text);
  return fmt::format("{} characters, {}", text.size(), fingerprint.value());
}

constexpr std::string_view kContact = "contact";

/// Takes the word "here" off the values, if it stands there, and tells whether it did.
bool take_here(std::vector<PlanWord>& words, bool above_contact) {
  PlanWord& first = words[0];
  if (!begins_with_here(first.text)) return false;
  const auto behind = behind_here(first.text);
  if (above_contact || (behind && behind->values.starts_with(kContact)))
    first.refuse("contact and here exclude each other");
  const bool alone = trimmed(first.text).size() == kHere.size();
  if (!behind || (alone && words.size() > 1))
    first.refuse("expected here alone, or here + a value, a list or start:stop:step, found " +
                 quoted(first.text));
  first = {behind->values, first.source, first.begin + behind->begin};
  return true;
}

/// What stands in for a parameter that has no key; empty when nothing does.
std::vector<PlanWord> default_words(const PoseParameter& parameter, const PoseDefaults& defaults) {
  const auto& value = defaults.values[pose_parameter(parameter.name)];
  if (!value && !defaults.here) return {};
  const std::string text = value ? shortest_text(*value) : std::string(kHere);
  const std::string name = fmt::format("{}, not given", parameter.name);
  return {{text, std::make_shared<const PlanSource>(PlanSource{name, text, false}), 0}};
}

}  // namespace

ScanPlan::ScanPlan(const PlanKeys& keys, const PoseDefaults& defaults)
    : poses_(read_poses(keys, defaults)) {
  if (const PlanWord* rule = single(keys, "contacts")) contacts_ = choice(*rule, kContactRules);
  if (const PlanWord* files = single(keys, "files")) files_ = choice(*files, kTruth);
  if (const PlanWord* unique = single(keys, "unique")) unique_ = choice(*unique, kTruth);
  description_["contacts"] = kContactRules[static_cast<std::size_t>(contacts_)].first;
  description_["files"] = kTruth[files_ ? 0 : 1].first;
  if (unique_) description_["unique"] = kTruth[0].first;
  if (const PlanWord* longest = single(keys, kContactDistance)) read_criterion(*longest);
}

void ScanPlan::read_criterion(const PlanWord& word) {
  if (files_)
    word.refuse(
        "with files the short contacts are those of qn-dravo, 1.9 Angstrom and less; leave "
        "contact-distance out");
  try {
    criterion_ = ContactCriterion::of_text(word.text);
  } catch (const InvalidInput& fault) {
    word.refuse(fault.what());
  }
  description_[kContactDistance] = criterion_.text();
}

Poses ScanPlan::read_poses(const PlanKeys& keys, const PoseDefaults& defaults) {
  refuse_unknown_keys(keys);
  const PlanWord* zip = single(keys, "zip");
  const PlanWord* random = single(keys, "random");
  const PlanWord* seed = single(keys, "seed");
  if (zip != nullptr && random != nullptr) random->refuse("zip and random exclude each other");
  if (seed != nullptr && random == nullptr) seed->refuse("a seed is for random poses alone");
  if (zip != nullptr) return read_list(*zip, keys);
  if (random != nullptr) return read_random(*random, seed, keys, defaults);
  return Poses(grid_source(read_axes(keys, defaults, kPoseParameters.size())));
}

Poses ScanPlan::read_list(const PlanWord& zip, const PlanKeys& keys) {
  zip_file_ = zip.path();
  auto list = std::make_shared<const ZippedList>(zip_file_);
  description_["zip"] = fmt::format("{} rows, {}", list->size(), list->fingerprint());
  refuse_parameters(keys, 0, "the zipped list");
  return Poses(std::move(list));
}

Poses ScanPlan::read_random(const PlanWord& random, const PlanWord* seed, const PlanKeys& keys,
                            const PoseDefaults& defaults) {
  const auto directions = whole_number<std::int64_t>(random, 1, kMostPoses);
  std::uint64_t number = 0;
  if (seed != nullptr)
    number = whole_number<std::uint64_t>(*seed, 0, std::numeric_limits<std::uint64_t>::max());
  description_["random"] = std::to_string(directions);
  description_["seed"] = std::to_string(number);
  refuse_parameters(keys, 1, "random numbers");
  return Poses(random_source(directions, read_axes(keys, defaults, 1)[0], number));
}

/// The first parameters, as many as are needed.
std::array<Axis, 6> ScanPlan::read_axes(const PlanKeys& keys, const PoseDefaults& defaults,
                                        std::size_t needed) {
  std::array<Axis, 6> axes;
  std::string missing;
  for (std::size_t k = 0; k < needed; ++k) {
    const PoseParameter& parameter = kPoseParameters[k];
    const auto* given = find(keys, parameter.name);
    std::vector<PlanWord> words = given != nullptr ? *given : default_words(parameter, defaults);
    if (words.empty()) {
      missing.append(missing.empty() ? "" : ", ").append(parameter.name);
      continue;
    }
    axes[k] = read_axis(parameter, std::move(words), defaults);
  }
  if (!missing.empty())
    throw InvalidInput(fmt::format(
        "the plan lacks {}: give a number, a list (0,30,60) or start:stop:step for each", missing));
  longest_r_ = longest_of(axes[0]);
  return axes;
}

Axis ScanPlan::read_axis(const PoseParameter& parameter, std::vector<PlanWord> words,
                         const PoseDefaults& defaults) {
  const bool is_r = parameter.value == &PoseDegrees::r;
  if (is_r) words = without_contact(std::move(words));
  std::optional<OwnValue> own;
  if (!defaults.here && begins_with_here(words[0].text)) words[0].refuse(kNoHere);
  if (take_here(words, is_r && above_contact_)) own.emplace(parameter, defaults.here());
  Axis axis(std::move(words), own);
  check_range(axis, parameter);
  const std::string from = is_r && above_contact_ ? "contact + " : "";
  description_[parameter.name] = shortened(from + axis.description());
  return axis;
}

/// Takes the words "contact +" off the values of r and remembers that they were there.
std::vector<PlanWord> ScanPlan::without_contact(std::vector<PlanWord> words) {
  PlanWord& first = words[0];
  const std::string_view text = trimmed(first.text);
  if (!text.starts_with(kContact)) return words;
  above_contact_ = true;
  const std::string_view rest = trimmed(text.substr(kContact.size()));
  if (!rest.starts_with('+'))
    first.refuse("expected contact + a distance, a list or start:stop:step, found " +
                 quoted(first.text));
  const std::string_view distances = rest.substr(1);
  const auto taken = static_cast<std::size_t>(distances.data() - first.text.data());
  first = {std::string(distances), first.source, first.begin + taken};
  return words;
}

}  // namespace dravo
