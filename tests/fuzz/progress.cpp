/// Any bytes as a progress file, and as the text of one of its records: whoever goes on with a scan
/// finds the later of the whole records.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "fuzz/expectations.hpp"
#include "results/progress_file.hpp"
#include "scan/fingerprint.hpp"

namespace {

using namespace dravo;
using test::require;

constexpr std::size_t kSlotBytes = 16384;

/// As a scan writes it.
std::string slot_of(std::string text) {
  Fingerprint fingerprint;
  fingerprint.add(text);
  text += " " + std::to_string(fingerprint.value()) + "\n";
  return text;
}

void read(const std::string& scan) {
  const std::int64_t told = poses_in_progress(scan);
  require(told >= 0, "no count is negative");
  ProgressFile file(scan);
  const std::vector<ScanRecord> records = file.records();
  require(!records.empty() && records.size() <= 2, "there is a place for two records");
  require(records.front().totals.poses == told, "the later one counts");
  require(records.back().totals.poses <= told, "the later one comes first");
  file.write(records.front());
  require(file.records().front().totals.poses == told, "a record that is written is read again");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  static const test::MemoryFolder folder;
  const std::string text = test::text_of(bytes, size);
  std::string both = slot_of(text);
  both.resize(std::max(both.size(), kSlotBytes));
  both += slot_of(text);
  const std::string scan = folder.path("scan");
  for (const std::string& whole : {text, both}) {
    (void)folder.write("scan.progress", whole);
    test::read_or_refuse([&] { read(scan); });
  }
  return 0;
}
