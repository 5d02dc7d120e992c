#include "results/merge.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string_view>
#include <vector>

#include "common/errors.hpp"
#include "common/free_format_reader.hpp"
#include "common/number_text.hpp"
#include "results/best_results.hpp"
#include "results/dock_merge.hpp"
#include "results/poses_again.hpp"
#include "results/progress_file.hpp"
#include "results/result_files.hpp"
#include "results/table_rows.hpp"

namespace dravo {
namespace {

namespace fs = std::filesystem;

/// The part that a file NAME-I-of-N with this ending belongs to.
std::optional<Shard> shard_of(std::string_view file, std::string_view name,
                              std::string_view ending) {
  constexpr std::string_view kOf = "-of-";
  const std::string_view whole = file;
  if (!file.starts_with(name) || !file.ends_with(ending)) return std::nullopt;
  file.remove_suffix(ending.size());
  file.remove_prefix(name.size());
  const std::size_t of = file.find(kOf);
  if (!file.starts_with('-') || of == std::string_view::npos) return std::nullopt;
  const auto number = parse_integer(file.substr(1, of - 1));
  const auto parts = parse_integer(file.substr(of + kOf.size()));
  if (!number || !parts || *number < 1 || *number > *parts) return std::nullopt;
  const Shard shard{*number, *parts};
  const bool spelt_so = shard.name(std::string(name)).append(ending) == whole;  // not 01 for 1
  return spelt_so ? std::optional(shard) : std::nullopt;
}

/// Parts that have a file with this ending, in order.
std::vector<Shard> shards_with(const std::string& name, std::string_view ending) {
  const fs::path path(name);
  const fs::path folder = path.has_parent_path() ? path.parent_path() : ".";
  std::vector<Shard> shards;
  std::error_code failure;
  for (const auto& entry : fs::directory_iterator(folder, failure))
    if (const auto shard =
            shard_of(entry.path().filename().string(), path.filename().string(), ending))
      shards.push_back(*shard);
  if (failure)
    throw IoFailure(fmt::format("{}: cannot read: {}", folder.string(), failure.message()));
  std::sort(shards.begin(), shards.end(), [](const Shard& a, const Shard& b) {
    return a.of != b.of ? a.of < b.of : a.number < b.number;
  });
  return shards;
}

/// The parts that lack their record, the first ten of them.
std::string missing_parts(const std::string& name, const std::vector<Shard>& shards) {
  constexpr std::int64_t kMostNamed = 10;
  const std::int64_t of = shards.front().of;
  const std::int64_t missing = of - static_cast<std::int64_t>(shards.size());
  std::string text;
  std::int64_t named = 0;
  auto next = shards.begin();
  for (std::int64_t number = 1; named < std::min(missing, kMostNamed); ++number) {
    if (next != shards.end() && next->number == number) {
      ++next;
      continue;
    }
    text.append(text.empty() ? "" : ", ").append(Shard{number, of}.name(name));
    ++named;
  }
  return missing > named ? fmt::format("{} and {} more", text, missing - named) : text;
}

void require_all(const std::string& name, const std::vector<Shard>& shards) {
  if (shards.empty())
    throw IoFailure(fmt::format("{0}: found no finished part {0}-I-of-N.json", name));
  if (shards.front().of != shards.back().of)
    throw IoFailure(fmt::format("{}: parts of different divisions: {} and {}", name,
                                shards.front().name(name), shards.back().name(name)));
  const std::string missing = missing_parts(name, shards);
  if (!missing.empty())
    throw IoFailure(fmt::format("{}: missing or unfinished parts: {}", name, missing));
}

/// The records of all parts, once their results are seen to be those that they tell of.
std::vector<ScanRecord> checked_records(const std::string& name, const std::vector<Shard>& shards) {
  std::vector<ScanRecord> records;
  records.reserve(shards.size());
  for (const Shard& shard : shards) {
    const std::string part = shard.name(name);
    records.push_back(finished_record(part));
    ScanRecord expected = records.front();
    expected.shard = shard;
    require_same_origin(part + kRecordEnding, expected, records.back());
  }
  // Long reading comes last.
  for (std::size_t k = 0; k < shards.size(); ++k)
    require_unchanged(shards[k].name(name), records[k]);
  return records;
}

/// Hands on the bytes of a file from `begin` on.
template <class Take>
void for_bytes(const std::string& name, std::int64_t begin, Take&& take) {
  constexpr std::size_t kBlock = 1U << 20U;
  std::ifstream in(name, std::ios::binary);
  in.seekg(begin);
  std::string block(kBlock, '\0');
  while (in) {
    in.read(block.data(), static_cast<std::streamsize>(block.size()));
    take(std::string_view(block).substr(0, static_cast<std::size_t>(in.gcount())));
  }
  if (!in.eof()) throw IoFailure(name + ": cannot read");
}

/// Bytes of the heading, line end included, which every part repeats.
std::int64_t heading_bytes(const std::string& table) {
  std::ifstream in(table, std::ios::binary);
  std::string heading;
  if (!std::getline(in, heading)) throw IoFailure(table + ": cannot read");
  return static_cast<std::int64_t>(heading.size()) + 1;
}

/// The bytes of all parts, one behind the other.
void append_parts(ResultFiles& results, const std::vector<ResultFile>& files,
                  const std::vector<std::string>& parts) {
  results.begin();
  for (const std::string& part : parts)
    for (const ResultFile file : files) {
      const bool first = part == parts.front();
      if (file == ResultFile::molecule2 && !first) continue;  // the same in all parts
      const std::string joins = part + ending_of(file);
      const bool repeats = file == ResultFile::table && !first;
      for_bytes(joins, repeats ? heading_bytes(joins) : 0,
                [&](std::string_view bytes) { results.append(file, bytes); });
    }
}

/// Selects again among the best poses of all parts.
class BestOfParts {
 public:
  BestOfParts(const ScanRecord& record, const std::vector<std::string>& parts)
      : heading_(TableRows(table_of(parts.front())).heading()),
        best_(*record.best(), heading_),
        writing_(record.writing()),
        energies_(has_energies(record)) {
    if (writing_ != Writing::table) placer_.emplace(placer_of(parts.front(), record));
    if (writing_ == Writing::moving)
      molecule2_ = read_file(parts.front() + ending_of(ResultFile::molecule2));
    for (const std::string& part : parts) {
      TableRows rows(table_of(part));
      for (std::string row; rows.next(row);) (void)best_.add(row + "\n");
    }
  }

  void write(ResultFiles& results) const {
    const ResultTexts texts{heading_ + "\n", molecule2_};
    if (!placer_) return write_best(results, best_, texts, nullptr);
    PosesAgain poses(*placer_, heading_, writing_, "a part of the scan", energies_);
    write_best(results, best_, texts,
               [&](std::string& frames, std::string_view row) { poses.append_frame(frames, row); });
  }

  [[nodiscard]] std::int64_t size() const { return best_.size(); }

 private:
  static std::string table_of(const std::string& part) {
    return part + ending_of(ResultFile::table);
  }

  std::string heading_;
  BestPoses best_;
  Writing writing_;
  bool energies_;
  std::optional<PairPlacer> placer_;  ///< empty for a scan without frames
  std::string molecule2_;
};

}  // namespace

ScanRecord merge_shards(const MergeRequest& request) {
  const std::string& name = request.name;
  const std::vector<Shard> shards = shards_with(name, kRecordEnding);
  require_all(name, shards);
  const std::vector<ScanRecord> records = checked_records(name, shards);
  std::vector<std::string> parts;
  parts.reserve(shards.size());
  for (const Shard& shard : shards) parts.push_back(shard.name(name));
  std::optional<BestOfParts> best;
  if (records.front().best()) best.emplace(records.front(), parts);
  const ProgressFile held(name);
  if (!held.empty())
    throw IoFailure(fmt::format("{}: is of an unfinished {} of that name; finish or remove it",
                                held.name(), records.front().kind()));
  if (!request.overwrite) refuse_earlier_results(name);
  if (records.front().is_docking()) return merge_docking(request, parts, records);

  ScanRecord joined = records.front();
  joined.shard = {};
  joined.totals = {};
  for (const ScanRecord& record : records) joined.totals.add(record.totals);
  if (best) joined.totals.kept = best->size();
  replace_results(name, [&] {
    ResultFiles results(name, joined.results());
    if (best)
      best->write(results);
    else
      append_parts(results, joined.results(), parts);
    results.describe(joined);
    results.finish(joined);
  });
  return joined;
}

}  // namespace dravo
