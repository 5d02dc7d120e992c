#include "results/dock_run.hpp"

#include <fmt/format.h>

#include <array>
#include <atomic>
#include <exception>
#include <iostream>
#include <memory>
#include <utility>

#include "common/errors.hpp"
#include "common/number_format.hpp"
#include "common/number_text.hpp"
#include "common/ordered_chunks.hpp"
#include "common/text.hpp"
#include "common/version.hpp"
#include "dravo/frame.hpp"
#include "results/interruption.hpp"
#include "results/record_keys.hpp"
#include "results/result_files.hpp"

namespace dravo {
namespace {

constexpr auto kScoreKey = "score";
constexpr auto kSeedKey = "seed";
constexpr auto kStartsKey = "starts";
constexpr auto kKeepKey = "keep";

std::array<int, 2> two_numbers(const std::string& text) {
  const auto parts = parts_between(text, ',');
  return {parse_integer(parts.at(0)).value(), parse_integer(parts.at(1)).value()};
}

/// What a function of the interruption noted throws.
void end_when_interrupted(const std::string& after) {
  if (InterruptionWatch::noted() != 0) throw Interrupted(InterruptionWatch::noted(), after);
}

// --- starts -----------------------------------------------------------------------------------

struct StartMaker {
  Docking::Starter starter;
  void make(DockStart& start) { start = starter.run(start.number); }
};

/// Makes starts in several threads and takes them in the order of their numbers.
class StartSearch {
 public:
  StartSearch(const Docking& docking, const DockRequest& request, ScanFiles& files,
              DockFindings& found)
      : docking_(&docking),
        request_(&request),
        files_(&files),
        found_(&found),
        columns_(columns_of_starts(request.plan.options)),
        status_(request.progress) {
    const std::int64_t starts = request.plan.starts.value_or(kMostStarts);
    const Shard part = request.part.value_or(Shard{});
    last_ = part.end(starts);
    next_ = part.first(starts) + std::ssize(found.starts) + 1;
  }

  /// Until the docking ends; tells why.
  std::string run() {
    end_ = next_ > last_ || is_enough();
    const auto maker = [this] { return StartMaker{docking_->starter()}; };
    if (!end_)
      make_chunks_of_stream<DockStart>(
          request_->threads, [this](DockStart& start) { return begin(start); }, maker,
          [this](const DockStart& start) { take(start); });
    if (is_enough()) return kEndedByNothingNew;
    if (next_ <= last_) return kEndedByTime;
    return request_->plan.starts ? kEndedByStarts : kEndedByMostStarts;
  }

 private:
  [[nodiscard]] bool is_enough() const {
    return !request_->plan.starts && found_->search.nothing_new();
  }

  /// False when no start shall begin any more. At least one does.
  bool begin(DockStart& start) {
    const bool late = request_->time && begun_ > 0 && Clock::now() - begin_ >= *request_->time;
    if (end_ || late || next_ > last_) return false;
    start.number = next_++;
    ++begun_;
    return true;
  }

  /// Those that were made beyond the end are left out.
  void take(const DockStart& start) {
    if (end_) return;
    files_->append(chunk_of(start, columns_));
    found_->add(start);
    if (is_enough()) end_ = true;
    status_.show([this](double) { return line(); });
    if (start.number < last_ && !end_)
      end_when_interrupted(fmt::format("{} starts", found_->starts.size()));
  }

  /// "120 starts, 14 minima, lowest -5.17 kcal/mol"
  [[nodiscard]] std::string line() const {
    const DockSearch& search = found_->search;
    std::string text = fmt::format("{} starts, {} minima", found_->starts.size(), search.minima());
    if (search.minima() > 0)
      text += fmt::format(", lowest {} kcal/mol", fixed_text(search.lowest(), 2));
    return text;
  }

  using Clock = std::chrono::steady_clock;

  const Docking* docking_;
  const DockRequest* request_;
  ScanFiles* files_;
  DockFindings* found_;
  Columns<DockStart> columns_;
  StatusLine status_;
  Clock::time_point begin_ = Clock::now();
  std::int64_t last_;
  std::int64_t next_;
  std::int64_t begun_ = 0;
  std::atomic<bool> end_ = false;
};

void tell_of_earlier(const DockRequest& request, std::int64_t starts) {
  if (request.progress != StatusLine::Kind::none && starts > 0)
    std::cerr << fmt::format("dravo: {} starts were made earlier\n", starts) << std::flush;
}

}  // namespace

std::string result_name(const DockRequest& request) {
  return request.part ? request.part->name(request.name) : request.name;
}

ScanRecord record_of(const Docking& docking, const Pair& pair, const DockPlan& plan) {
  const DockOptions& options = plan.options;
  ScanRecord record;
  record.origin = {{kVersionKey, DRAVO_VERSION},
                   {"pair", fingerprint_of(pair)},
                   {kFrameRuleKey, std::to_string(kFrameRule)},
                   {kPlacingKey, words_of_placing(true)},
                   {kSearchKey, std::string(name_of(options.search))},
                   {kScoreKey, std::string(name_of(options.score))},
                   {kSeedKey, std::to_string(options.seed)},
                   {kStartsKey, plan.starts ? std::to_string(*plan.starts) : "until nothing new"}};
  record.origin.merge(description_of(docking.search_model()));
  if (plan.keep) record.origin[kKeepKey] = std::to_string(*plan.keep);
  record.poses = plan.starts.value_or(kMostStarts);
  record.molecules = std::make_shared<const ScannedPair>(ScannedPair{pair, std::nullopt});
  for (const EnergyModel& model : {docking.search_model(), docking.score_model()})
    add_references(record, model);
  return record;
}

DockPlan plan_of(const std::string& name, const ScanRecord& record) {
  try {
    const auto& origin = record.origin;
    DockPlan plan;
    plan.options.search = energy_method(origin.at(kSearchKey));
    plan.options.score = energy_method(origin.at(kScoreKey));
    plan.options.charges = two_numbers(told_charges(record).value());
    plan.options.unpaired = two_numbers(told_unpaired(record).value());
    plan.options.seed = std::stoull(origin.at(kSeedKey));
    if (const auto starts = parse_integer(origin.at(kStartsKey))) plan.starts = *starts;
    const auto keep = origin.find(kKeepKey);
    if (keep != origin.end()) plan.keep = std::stoll(keep->second);
    return plan;
  } catch (const std::exception&) {
    throw IoFailure(name + ": expected the record of a docking by dravo, found something else");
  }
}

void find_minima(const Docking& docking, const DockPlan& plan, int threads, StatusLine::Kind kind,
                 DockFindings& found) {
  StatusLine status(kind);
  const auto progress = [&](std::int64_t done, std::int64_t of) {
    status.show([&](double) { return fmt::format("scoring: {} of {}", done, of); });
    if (done < of) end_when_interrupted(fmt::format("scoring {} of {} minima", done, of));
  };
  std::vector<DockMinimum> minima = docking.minima(found.starts, threads, progress);
  found.summary = DockSummary{"", std::ssize(minima), {}};
  for (const DockStart& start : found.starts)
    ++found.summary->starts.at(static_cast<std::size_t>(start.end));
  if (plan.keep && *plan.keep < std::ssize(minima))
    minima.resize(static_cast<std::size_t>(*plan.keep));
  found.texts = texts_of(docking.placer(), plan.options, minima);
}

void run_dock(const Docking& docking, const Pair& pair, const DockRequest& request) {
  const std::string name = result_name(request);
  require_file_name(request.name);
  refuse_inputs_as_results(name, request.inputs);
  const auto found = std::make_shared<DockFindings>(docking);
  ScanRecord plan = record_of(docking, pair, request.plan);
  plan.shard = request.part.value_or(Shard{});
  ScanFiles files(
      name, plan, [&] { return std::make_unique<DockResults>(name, request.plan.options, found); },
      request.earlier);
  if (files.finished()) return;
  tell_of_earlier(request, std::ssize(found->starts));
  const InterruptionWatch watch;
  try {
    const std::string ended = StartSearch(docking, request, files, *found).run();
    if (!request.part) {
      find_minima(docking, request.plan, request.threads, request.progress, *found);
      found->summary->ended = ended;
    }
  } catch (const InvalidInput&) {
    files.abandon();  // a method without forces has none the next time
    throw;
  }
  files.finish();
}

}  // namespace dravo
