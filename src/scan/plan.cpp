#include "scan/plan.hpp"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <limits>
#include <string_view>

#include "common/errors.hpp"
#include "common/shown_text.hpp"
#include "common/text.hpp"
#include "driver/user_parameters.hpp"
#include "scan/fingerprint.hpp"
#include "scan/random_pose.hpp"

namespace dravo {
namespace {

constexpr std::int64_t kMostPoses = 1'000'000'000'000'000;  // indices stay whole as doubles

constexpr std::array<std::string_view, 5> kOtherKeys{"zip", "random", "seed", "contacts", "files"};

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
  if (words->size() > 1) (*words)[1].refuse("expected one value for " + std::string(key));
  return words->data();
}

template <class Integer>
Integer whole_number(const PlanWord& word, Integer lowest, Integer highest) {
  Integer value = 0;
  const char* const end = word.text.data() + word.text.size();
  const auto [stop, error] = std::from_chars(word.text.data(), end, value);
  if (error != std::errc{} || stop != end || value < lowest || value > highest)
    word.refuse("expected a whole number from " + std::to_string(lowest) + " to " +
                std::to_string(highest) + ", found " + quoted(word.text));
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
  word.refuse("expected " + names + ", found " + quoted(word.text));
}

constexpr std::array<std::pair<std::string_view, ContactRule>, 3> kContactRules{
    {{"keep", ContactRule::keep}, {"drop", ContactRule::drop}, {"only", ContactRule::only}}};
constexpr std::array<std::pair<std::string_view, bool>, 2> kTruth{
    {{"true", true}, {"false", false}}};

/// Both ends of every stretch of the axis; what lies between them is in range when they are.
void check_range(const Axis& axis, const PoseParameter& parameter) {
  for (const Axis::Segment& segment : axis.segments())
    for (const std::int64_t i : {std::int64_t{0}, segment.count - 1}) {
      PoseDegrees degrees;
      degrees.*parameter.value = segment.at(i);
      if (const auto complaint = complaint_about(degrees)) segment.word.refuse(complaint->what());
    }
}

/// The text, or its fingerprint where it is long.
std::string shortened(const std::string& text) {
  constexpr std::size_t kLongest = 200;
  if (text.size() <= kLongest) return text;
  Fingerprint fingerprint;
  fingerprint.add(text);
  return std::to_string(text.size()) + " characters, " + std::to_string(fingerprint.value());
}

constexpr std::string_view kContact = "contact";

}  // namespace

ScanPlan::ScanPlan(const PlanKeys& keys) {
  refuse_unknown_keys(keys);
  read_sampling(keys);
  read_axes(keys);
  count_poses();
  if (const PlanWord* rule = single(keys, "contacts")) contacts_ = choice(*rule, kContactRules);
  if (const PlanWord* files = single(keys, "files")) files_ = choice(*files, kTruth);
  description_["contacts"] = kContactRules[static_cast<std::size_t>(contacts_)].first;
  description_["files"] = kTruth[files_ ? 0 : 1].first;
}

void ScanPlan::read_sampling(const PlanKeys& keys) {
  const PlanWord* zip = single(keys, "zip");
  const PlanWord* random = single(keys, "random");
  const PlanWord* seed = single(keys, "seed");
  if (zip != nullptr && random != nullptr) random->refuse("zip and random exclude each other");
  if (seed != nullptr && random == nullptr) seed->refuse("a seed is for random poses alone");
  if (zip != nullptr) {
    sampling_ = Sampling::zipped;
    zip_file_ = zip->path();
    zipped_ = std::make_shared<const ZippedList>(zip_file_);
    description_["zip"] =
        std::to_string(zipped_->size()) + " rows, " + std::to_string(zipped_->fingerprint());
  }
  if (random != nullptr) {
    sampling_ = Sampling::random;
    directions_ = whole_number<std::int64_t>(*random, 1, kMostPoses);
    if (seed != nullptr)
      seed_ = whole_number<std::uint64_t>(*seed, 0, std::numeric_limits<std::uint64_t>::max());
    description_["random"] = std::to_string(directions_);
    description_["seed"] = std::to_string(seed_);
  }
}

/// A grid needs all six parameters, a random scan r alone, a zipped one none.
void ScanPlan::read_axes(const PlanKeys& keys) {
  std::string missing;
  for (std::size_t k = 0; k < axes_.size(); ++k) {
    const PoseParameter& parameter = kPoseParameters[k];
    const bool needed = sampling_ == Sampling::grid || (sampling_ == Sampling::random && k == 0);
    const auto* words = find(keys, parameter.name);
    if (words != nullptr && !needed)
      (*words)[0].refuse(std::string(parameter.name) + " has its values from " +
                         (sampling_ == Sampling::zipped ? "the zipped list" : "random numbers"));
    if (words == nullptr && needed)
      missing.append(missing.empty() ? "" : ", ").append(parameter.name);
    if (words == nullptr || !needed) continue;
    axes_[k] = Axis(k == 0 ? without_contact(*words) : *words);
    check_range(axes_[k], parameter);
    const std::string from = k == 0 && above_contact_ ? "contact + " : "";
    description_[parameter.name] = shortened(from + axes_[k].description());
  }
  if (!missing.empty())
    throw InvalidInput("the plan lacks " + missing +
                       ": give a number, a list (0,30,60) or start:stop:step for each");
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

void ScanPlan::count_poses() {
  poses_ = sampling_ == Sampling::zipped ? zipped_->size() : 1;
  if (sampling_ == Sampling::random) poses_ = directions_;
  for (const Axis& axis : axes_) {
    const std::int64_t values = std::max<std::int64_t>(axis.size(), 1);
    if (poses_ > kMostPoses / values)
      throw InvalidInput("the plan has more than " + std::to_string(kMostPoses) + " poses");
    poses_ *= values;
  }
}

void ScanPlan::fill(std::int64_t first, std::span<PoseDegrees> poses) const {
  switch (sampling_) {
    case Sampling::grid:
      fill_grid(first, poses);
      break;
    case Sampling::zipped:
      zipped_->read(first, poses);
      break;
    case Sampling::random:
      fill_random(first, poses);
      break;
  }
}

void ScanPlan::fill_grid(std::int64_t first, std::span<PoseDegrees> poses) const {
  std::array<std::int64_t, 6> place{};
  PoseDegrees pose;
  std::int64_t rest = first;
  for (std::size_t k = axes_.size(); k-- > 0;) {
    place[k] = rest % axes_[k].size();
    rest /= axes_[k].size();
    pose.*kPoseParameters[k].value = axes_[k].at(place[k]);
  }
  for (PoseDegrees& filled : poses) {
    filled = pose;
    for (std::size_t k = axes_.size(); k-- > 0;) {
      place[k] = place[k] + 1 < axes_[k].size() ? place[k] + 1 : 0;
      pose.*kPoseParameters[k].value = axes_[k].at(place[k]);
      if (place[k] != 0) break;
    }
  }
}

void ScanPlan::fill_random(std::int64_t first, std::span<PoseDegrees> poses) const {
  std::int64_t index = first;
  for (PoseDegrees& filled : poses) {
    filled = random_pose(seed_, index % directions_);
    filled.r = axes_[0].at(index / directions_);
    ++index;
  }
}

double ScanPlan::longest_r() const {
  double longest = 0.0;
  for (const Axis::Segment& segment : axes_[0].segments())
    longest = std::max({longest, segment.at(0), segment.at(segment.count - 1)});
  return longest;
}

}  // namespace dravo
