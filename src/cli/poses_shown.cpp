#include "cli/poses_shown.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <limits>
#include <memory>
#include <optional>
#include <string_view>
#include <system_error>

#include "cli/named_results.hpp"
#include "common/number_text.hpp"
#include "common/text.hpp"
#include "identify/many_frames.hpp"
#include "molecules/fragments.hpp"
#include "molecules/input_file.hpp"
#include "molecules/length_unit.hpp"
#include "molecules/wanted_frames.hpp"
#include "results/result_files.hpp"
#include "results/status_line.hpp"
#include "scene/description.hpp"
#include "view/results_data.hpp"
#include "view/shell_word.hpp"
#include "view/trajectory_data.hpp"

namespace dravo {
namespace {

namespace fs = std::filesystem;

constexpr std::array<const char*, 6> kOfPoses{"--r",     "--theta", "--phi",
                                              "--alpha", "--beta",  "--gamma"};
constexpr std::array<const char*, 7> kOfPairFiles{
    "--split", "--no-check", "--unit", "--frame", "--like", "--contact-distance", "file2"};

// --- names ------------------------------------------------------------------------------------

/// Beside the file; of two files in this folder.
std::string name_beside(const PairRequest& request) {
  if (is_standard_input(request.file) || is_standard_input(request.second_file)) return "pair";
  const fs::path file(request.file);
  if (request.second_file.empty()) return fs::path(file).replace_extension().string();
  return fmt::format("{}-{}", file.stem().string(), fs::path(request.second_file).stem().string());
}

// --- commands that place the pair again -------------------------------------------------------

/// `dravo place` as the pair was read, without a pose.
std::string place_command(const PairShown& shown, std::int64_t frame) {
  const PairRequest& request = *shown.request;
  std::string text = "dravo place " + shell_file(request.file);
  const auto add = [&text](const char* option, const std::string& value) {
    text.append(" ").append(option).append(value.empty() ? "" : " " + shell_word(value));
  };
  if (!request.second_file.empty()) add(shell_file(request.second_file).c_str(), "");
  const auto n1 = n1_of(request);
  if (request.split) add("--split", n1 ? std::to_string(*n1) : "auto");
  if (frame != 1) add("--frame", std::to_string(frame));
  if (request.unit != LengthUnit::angstrom) add("--unit", named_unit(request.unit).name);
  if (!request.check) add("--no-check", "");
  if (!shown.like.empty()) add("--like", shown.like);
  if (shown.criterion.text() != ContactCriterion().text())
    add("--contact-distance", shown.criterion.text());
  return text;
}

// --- a pair -----------------------------------------------------------------------------------

ViewData pair_data(const PairShown& shown) {
  const PairRequest& request = *shown.request;
  const auto [placer, pose] = placer_shown(shown);
  ViewData data = view_data(placer.inside(), pose);
  data.title = title_of(request);
  data.command = place_command(shown, request.frame);
  data.criterion = shown.criterion;
  return data;
}

// --- frames -----------------------------------------------------------------------------------

/// Whether the file has more than one frame. What can be read once, as standard input, has one.
bool has_several_frames(const std::string& file) {
  std::error_code ignored;  // whatever it is, reading meets it too
  if (is_standard_input(file) || !fs::is_regular_file(file, ignored)) return false;
  FrameStream stream(file);
  if (holds_qn_input(stream) || !stream.begins_with_count()) return false;
  FrameStream::Frame frame;
  if (!stream.next(frame) || !stream.next(frame)) return false;
  return parse_integer(trimmed(frame.text.substr(0, frame.text.find('\n')))).has_value();
}

/// The first of them are told, unless no frame is left: then the first of them is the error.
class SkippedFrames {
 public:
  void add(const BadFrame& frame) {
    constexpr std::int64_t kMostTold = 10;
    if (++count_ <= kMostTold) first_.push_back("left out: " + frame.message);
  }

  void tell_of(std::int64_t shown) const {
    if (count_ == 0) return;
    tell(first_);
    tell({fmt::format("left out {} of {} frames", count_, shown + count_)});
  }

 private:
  std::int64_t count_ = 0;
  std::vector<std::string> first_;
};

ViewData frames_data(const PairShown& shown, const IndexSelection& selection) {
  const PairRequest& request = *shown.request;
  FrameStream stream(request.file);
  const std::optional<Pair> like = reference_pair(shown.like, request, n1_of(request));
  const ManyFrames wanted{.pair = request,
                          .selection = selection,
                          .options = {FrameRule::extended, like ? &*like : nullptr},
                          .criterion = shown.criterion};
  SkippedFrames skipped;
  StatusLine status(kind_of_status(false));
  ViewData data = view_of_frames(
      stream, wanted, [&](const BadFrame& frame) { skipped.add(frame); },
      [&](std::int64_t frames, std::int64_t bytes) {
        status.show(
            [&](double seconds) { return frames_text(frames, bytes, stream.bytes(), seconds); });
      });
  skipped.tell_of(data.poses->of);
  data.title = title_of(request);
  data.command = place_command(shown, static_cast<std::int64_t>(data.poses->columns[0].numbers[0]));
  return data;
}

ViewData results_data(const std::string& results) {
  ViewData data = view_of_results(results);
  data.title = fs::path(results).filename().string();
  return data;
}

std::string poses_text(const ViewPoses& poses, std::string_view limit) {
  struct Words {
    const char* one;
    const char* many;
  };
  const Words words = poses.kind == "trajectory" ? Words{"frame", "frames"}
                      : poses.kind == "dock"     ? Words{"minimum", "minima"}
                                                 : Words{"pose", "poses"};
  const auto shown = static_cast<std::int64_t>(poses.rows());
  if (shown == poses.of) return fmt::format("{} {}", shown, shown == 1 ? words.one : words.many);
  return fmt::format("{} of {} {}, evenly chosen: {}", shown, poses.of, words.many, limit);
}

}  // namespace

std::string words_of(const ViewData& data, std::string_view limit) {
  if (data.poses) return poses_text(*data.poses, limit);
  const auto& [one, two] = data.molecules;
  return fmt::format("molecule 1 has {}, molecule 2 has {}",
                     atoms_text(static_cast<std::int32_t>(one.labels.size())), two.labels.size());
}

void add_poses_shown(CLI::App& command, PairShown& shown, std::string& frame) {
  shown.request = std::make_shared<PairRequest>();
  command
      .add_option("file", shown.request->file,
                  "file of a pair or of molecule 1, - for standard input; or what --output was for "
                  "a scan or a docking")
      ->required()
      ->type_name("FILE|NAME");
  add_reading_options(command, shown.request);
  command
      .add_option("--frame", frame,
                  "which frame of a file with several, from 1, or which of them (all)")
      ->type_name("K|all|A:B");
  add_pose_shown(command, shown);
}

PosesShown::PosesShown(const CLI::App& command, const PairShown& shown, const std::string& frame)
    : shown_(&shown), selection_(IndexSelection::parse("--frame", frame.empty() ? "all" : frame)) {
  PairRequest& request = *shown.request;
  const bool two_files = !request.second_file.empty();
  if (!two_files) results_ = results_named(request.file, "scan or docking");
  if (results_) {
    const std::string why =
        fmt::format("is for a pair in a file, but {} is a scan or a docking", *results_);
    refuse_options(command, kOfPoses, why);
    refuse_options(command, kOfPairFiles, why);
    return;
  }
  const bool given = !frame.empty();
  several_ = given ? !parse_integer(frame) : !two_files && has_several_frames(request.file);
  if (several_ && two_files)
    throw InvalidInput("--frame: of two files a page shows one pair; expected one number, found " +
                       frame);
  if (several_)
    refuse_options(
        command, kOfPoses,
        fmt::format("is for one pair, but {} has several frames; choose one by --frame K",
                    shown_name(request.file)));
  constexpr std::int64_t kMost = std::numeric_limits<std::int32_t>::max();
  if (given && !several_)
    request.frame = static_cast<std::int32_t>(std::min(selection_.first(), kMost));
}

std::vector<std::string> PosesShown::inputs() const {
  if (!results_) return {shown_->request->file, shown_->request->second_file, shown_->like};
  std::vector<std::string> inputs{*results_ + kRecordEnding};
  for (const ResultName& result : kResultNames) inputs.push_back(*results_ + result.ending);
  return inputs;
}

std::string PosesShown::name() const {
  return results_ ? *results_ : name_beside(*shown_->request);
}

ViewData PosesShown::data() const {
  ViewData data = results_   ? results_data(*results_)
                  : several_ ? frames_data(*shown_, selection_)
                             : pair_data(*shown_);
  const auto& [one, two] = data.molecules;
  data.description = description_of(one.labels, two.labels, data.pose);
  return data;
}

}  // namespace dravo
