#include "results/dock_merge.hpp"

#include <fmt/format.h>

#include <cstddef>

#include "common/errors.hpp"
#include "results/dock_run.hpp"
#include "results/interruption.hpp"
#include "results/result_files.hpp"

namespace dravo {

ScanRecord merge_docking(const MergeRequest& request, const std::vector<std::string>& parts,
                         const std::vector<ScanRecord>& records) {
  const std::string file = parts.front() + kRecordEnding;
  const ScanRecord& first = records.front();
  const DockPlan plan = plan_of(file, first);
  if (!first.molecules) throw IoFailure(file + ": does not hold the molecules");
  const Pair& pair = first.molecules->pair;
  const Docking docking(pair, plan.options);
  ScanRecord joined = record_of(docking, pair, plan);
  joined.shard = first.shard;
  require_same_origin(file, first, joined);  // this program goes on with what another one made
  joined.shard = {};

  DockFindings found(docking);
  const auto columns = columns_of_starts(plan.options);
  for (const std::string& part : parts)
    for (const DockStart& start : read_table(part + ending_of(ResultFile::starts), columns))
      found.add(start);
  joined.totals.poses = std::ssize(found.starts);
  const InterruptionWatch watch;
  find_minima(docking, plan, request.threads, request.progress, found);
  found.summary->ended = kEndedByStarts;
  joined.docking = found.summary;
  replace_results(request.name, [&] { write_minima(request.name, *found.texts, joined); });
  return joined;
}

}  // namespace dravo
