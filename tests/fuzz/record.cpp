/// Any bytes as the record of a scan or a docking: what was read is written and read again as the
/// same, and whatever is asked of it has an answer.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>

#include "fuzz/expectations.hpp"
#include "results/dock_run.hpp"
#include "results/poses_again.hpp"
#include "results/scan_record.hpp"

namespace {

using namespace dravo;
using test::require;

void require_counts(const ScanRecord& record) {
  const ScanTotals& totals = record.totals;
  for (const std::int64_t count : {record.poses, totals.poses, totals.left_out, totals.written,
                                   totals.with_contacts, totals.shortest_index})
    require(count >= 0, "no count is negative");
  for (const auto& [file, state] : record.files) require(state.bytes >= 0, "no size is negative");
  const std::int64_t first = record.shard.first(record.poses);
  const std::int64_t end = record.shard.end(record.poses);
  require(first >= 0 && first <= end && end <= record.poses, "a part lies within the whole");
  if (const auto best = record.best()) require(best->count >= 1, "a pose is kept");
}

void read(const std::string& text) {
  const ScanRecord record = parse_record("scan.json", text);
  require_counts(record);
  const std::string written = text_of(record);
  const ScanRecord again = parse_record("scan.json", written);
  require(text_of(again) == written, "a record that is written is read as the same");
  require(written.find('\n') == std::string::npos, "a record is one line");
  require(json_text_of(record).find('\n') == std::string::npos, "and so is what scripts get");
  require_same_origin("scan.json", record, again);
  test::require_message(sentence_about(record.totals));
  require(!record.results().empty(), "every scan has a table");
  (void)told_charges(record);
  (void)told_unpaired(record);
  test::read_or_refuse([&] { (void)plan_of("scan.json", record); });
  test::read_or_refuse([&] { (void)criterion_of(record); });
  test::read_or_refuse([&] { (void)placer_of("scan", record); });
  ScanRecord other = record;
  other.origin["r"] += "1";
  test::read_or_refuse([&] { require_same_origin("scan.json", record, other); });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const std::string text = test::text_of(bytes, size);
  test::read_or_refuse([&] { read(text); });
  return 0;
}
