#include "quantum/exported_poses.hpp"

#include <fmt/format.h>

#include <cstddef>
#include <filesystem>
#include <system_error>
#include <utility>

#include "common/shown_text.hpp"
#include "dravo/place.hpp"
#include "molecules/frame_stream.hpp"
#include "molecules/input_file.hpp"
#include "molecules/wanted_frames.hpp"
#include "results/checksum.hpp"
#include "results/dock_run.hpp"
#include "results/dock_tables.hpp"
#include "results/poses_again.hpp"
#include "results/result_files.hpp"

namespace dravo {
namespace {

/// Names and conditions may be any bytes, a manifest is UTF-8.
std::string shown_text(const std::string& text) {
  constexpr std::size_t kLongest = 255;
  return printable(text, kLongest).text;
}

/// 0 for a stream, which is gone when it has been read.
std::uint64_t checksum_of_file(const std::string& file) {
  std::error_code ignored;  // what cannot be looked at was read all the same
  if (!std::filesystem::is_regular_file(file, ignored)) return 0;
  const auto bytes = static_cast<std::int64_t>(std::filesystem::file_size(file, ignored));
  return checksum_of_first(bytes, file).value_or(0);
}

// --- scans and dockings -----------------------------------------------------------------------

class ResultPoses : public ExportedPoses {
 public:
  ResultPoses(const std::string& name, const ScanRecord& record, const PoseChoice& choice)
      : rows_(chosen_rows(name, record, choice)),
        origin_{fmt::format("{} {}", record.kind(), shown_text(name)),
                checksum_of_file(rows_.table()), shown_text(words_of(choice))} {
    rows_.rewind();
  }

  [[nodiscard]] PoseOrigin origin() const override { return origin_; }
  [[nodiscard]] std::string heading() const override { return rows_.heading(); }
  [[nodiscard]] std::int64_t index() const override { return index_of_row(row_, rows_.table()); }
  [[nodiscard]] const std::string& row() const override { return row_; }
  [[nodiscard]] const Pair& pair() const override { return *pair_; }

  bool next() override {
    if (!rows_.next(row_)) return false;
    pair_ = placed(row_);
    return true;
  }

 protected:
  [[nodiscard]] const SelectedRows& rows() const { return rows_; }

 private:
  virtual Pair placed(const std::string& row) = 0;

  SelectedRows rows_;
  PoseOrigin origin_;
  std::string row_;
  std::optional<Pair> pair_;
};

class ScanPoses final : public ResultPoses {
 public:
  ScanPoses(const std::string& name, const ScanRecord& record, const PoseChoice& choice)
      : ResultPoses(name, record, choice),
        placer_(placer_of(name, record)),
        n1_(record.molecules->pair.n1()),
        labels_(record.molecules->pair.labels()),
        again_(placer_, heading(), Writing::frames, rows().table(), has_energies(record)) {}

 private:
  Pair placed(const std::string& row) override {
    const MadePose pose = again_.made(row);
    std::vector<Vec3> positions;
    positions.reserve(static_cast<std::size_t>(pose.atoms.rows()));
    for (std::int32_t i = 0; i < pose.atoms.rows(); ++i)
      positions.push_back(pose.atoms.position(i));
    return {n1_, Molecule(labels_, std::move(positions))};
  }

  PairPlacer placer_;
  std::int32_t n1_;
  std::vector<Label> labels_;
  PosesAgain again_;
};

class Minima final : public ResultPoses {
 public:
  Minima(const std::string& name, const ScanRecord& record, const PoseChoice& choice)
      : ResultPoses(name, record, choice),
        placer_(record.molecules->pair, {.placing = Placing::exact}),
        columns_(columns_of_minima(plan_of(name + kRecordEnding, record).options)) {
    if (heading() + "\n" != columns_.heading())
      throw IoFailure(
          fmt::format("{}:1: expected the columns of a docking by this program, found {}",
                      rows().table(), dravo::quoted(heading())));
  }

 private:
  Pair placed(const std::string& row) override {
    const auto minimum = columns_.read_row(row);
    if (!minimum)
      throw IoFailure(fmt::format("{}: expected a row of the docking, found {}", rows().table(),
                                  dravo::quoted(row)));
    return pair_at(placer_, minimum->minimum.pose);
  }

  Placer placer_;
  Columns<DockRow> columns_;
};

// --- files ------------------------------------------------------------------------------------

class FilePoses : public ExportedPoses {
 public:
  explicit FilePoses(PairRequest request) : request_(std::move(request)) {}

  [[nodiscard]] std::string heading() const override { return "index"; }
  [[nodiscard]] std::int64_t index() const override { return index_; }
  [[nodiscard]] const std::string& row() const override { return row_; }
  [[nodiscard]] const Pair& pair() const override { return *pair_; }

 protected:
  [[nodiscard]] const PairRequest& request() const { return request_; }

  [[nodiscard]] PoseOrigin origin_with(std::string selection) const {
    const bool file = !is_standard_input(request_.file);
    return {"file " + shown_text(shown_name(request_.file)),
            file ? checksum_of_file(request_.file) : 0, std::move(selection)};
  }

  void set(std::int64_t index, Pair pair) {
    index_ = index;
    row_ = std::to_string(index);
    pair_ = std::move(pair);
  }

 private:
  PairRequest request_;
  std::int64_t index_ = 0;
  std::string row_;
  std::optional<Pair> pair_;
};

class OnePose final : public FilePoses {
 public:
  explicit OnePose(const PairRequest& request) : FilePoses(request) {
    PairFile file = read_pair(request);
    remarks_ = std::move(file.remarks);
    set(request.frame, std::move(file.pair));
  }

  [[nodiscard]] PoseOrigin origin() const override {
    return origin_with(fmt::format("frame {}", request().frame));
  }
  [[nodiscard]] std::vector<std::string> remarks() const override { return remarks_; }
  bool next() override { return !std::exchange(taken_, true); }

 private:
  std::vector<std::string> remarks_;
  bool taken_ = false;
};

class FramePoses final : public FilePoses {
 public:
  FramePoses(const PairRequest& request, IndexSelection selection)
      : FilePoses(request),
        stream_(request.file),
        selection_(std::move(selection)),
        frames_(stream_, selection_) {
    if (holds_qn_input(stream_))
      throw InvalidInput(fmt::format("{}: holds one pair; --frame is for files with several",
                                     shown_name(request.file)));
    refuse_foreign_format(stream_, request.file);
    if (!frames_.fill(batch_)) frames_.require_named();
    const CheckedPair checked = pair_in(batch_, batch_.frames.front(), stream_.name(), request);
    if (!checked.check.refusals.empty()) throw InvalidInput(checked.check.refusals[0]);
    remarks_ = checked.check.warnings;
    first_ = checked.pair;
  }

  [[nodiscard]] PoseOrigin origin() const override { return origin_with("frames"); }
  [[nodiscard]] std::vector<std::string> remarks() const override { return remarks_; }

  bool next() override {
    if (next_ == batch_.frames.size()) {
      next_ = 0;
      if (!frames_.fill(batch_)) {
        batch_.frames.clear();
        frames_.require_named();
        return false;
      }
    }
    const FrameBatch::Frame& frame = batch_.frames[next_++];
    try {
      Pair pair = pair_in(batch_, frame, stream_.name(), request()).pair;
      require_same_atoms(pair, *first_);
      set(frame.number, std::move(pair));
    } catch (const InvalidInput& fault) {
      throw InvalidInput(fmt::format("frame {}: {}", frame.number, fault.what()));
    }
    return true;
  }

 private:
  FrameStream stream_;
  IndexSelection selection_;
  WantedFrames frames_;
  FrameBatch batch_;
  std::size_t next_ = 0;
  std::optional<Pair> first_;
  std::vector<std::string> remarks_;
};

}  // namespace

std::unique_ptr<ExportedPoses> poses_of_results(const std::string& name, const PoseChoice& choice) {
  const ScanRecord record = record_of_results(name);
  if (!record.is_docking()) return std::make_unique<ScanPoses>(name, record, choice);
  if (!record.docking)
    throw InvalidInput(name +
                       ": is a part of a docking; dravo merge makes the minima of all parts");
  return std::make_unique<Minima>(name, record, choice);
}

std::unique_ptr<ExportedPoses> poses_of_file(const PairRequest& request,
                                             const std::optional<IndexSelection>& frames) {
  if (frames) return std::make_unique<FramePoses>(request, *frames);
  return std::make_unique<OnePose>(request);
}

}  // namespace dravo
