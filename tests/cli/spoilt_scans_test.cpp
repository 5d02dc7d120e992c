/// Scans that go on from files which something has spoilt.
#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "cli/stopped_scans.hpp"

namespace dravo::test {
namespace {

TEST(SpoiltProgress, GoesOnFromTheRecordThatIsWhole) {
  const Files expected = undisturbed(kLongPlan);
  const Files stopped = unfinished(kLongPlan, kAfterSomeRecords);
  const std::string& progress = stopped.at("scan.progress");
  std::vector<std::size_t> records;
  for (std::size_t at = progress.find('{'); at != std::string::npos;
       at = progress.find("{\"origin\"", at + 1))
    records.push_back(at);
  ASSERT_EQ(records.size(), 2U);
  for (const std::size_t record : records) {
    Files spoilt = stopped;
    spoilt.at("scan.progress")[record + 20] = '?';
    const Dimer folder;
    folder.put(spoilt);
    expect_success(run_scan(folder, kLongPlan + Words{"--resume"}), expected,
                   "without the record at " + std::to_string(record));
  }
}

TEST(SpoiltProgress, WithoutAWholeRecordIsRefusedAndMayBeOverwritten) {
  const Files whole = undisturbed(kPlan);
  const Files stopped = unfinished(kPlan);
  const std::string progress =
      stopped.at("scan.progress").substr(0, stopped.at("scan.progress").find('\n') + 1);
  for (const std::string& garbage :
       {std::string("garbage\n"), std::string("{}\n"), std::string("\n"), whole.at("scan.json"),
        progress.substr(0, progress.size() / 2), progress.substr(0, progress.size() - 1)}) {
    Files spoilt = stopped;
    spoilt.at("scan.progress") = garbage;
    const Dimer folder;
    folder.put(spoilt);
    expect_refusal(run_scan(folder, kPlan + Words{"--resume"}),
                   "scan.progress: expected the progress of a scan, found something else; "
                   "--overwrite starts over",
                   spoilt, garbage);
    expect_success(run_scan(folder, kPlan + Words{"--overwrite"}), whole, "over " + garbage);
  }
}

TEST(SpoiltRecord, OfAFinishedScanIsRefused) {
  Files spoilt = undisturbed(kPlan);
  spoilt.at("scan.json").resize(spoilt.at("scan.json").size() / 2);
  const Dimer folder;
  folder.put(spoilt);
  expect_refusal(run_scan(folder, kPlan + Words{"--resume"}),
                 "scan.json: expected the record of a scan by dravo, found something else", spoilt);
}

TEST(SpoiltParts, GoOnFromTheLastRecordWhoseBytesAreThere) {
  const Files expected = undisturbed(kLongPlan);
  const Files stopped = unfinished(kLongPlan, kAfterSomeRecords);
  for (const char* name : {"scan.xyz.part", "scan.csv.part"}) {
    const std::string& whole = stopped.at(name);
    for (const double part : {0.0, 0.3, 0.6, 0.99, 2.0}) {
      Files spoilt = stopped;
      spoilt.at(name).resize(static_cast<std::size_t>(part * static_cast<double>(whole.size())),
                             '?');
      const Dimer folder;
      folder.put(spoilt);
      expect_success(run_scan(folder, kLongPlan + Words{"--resume"}), expected,
                     std::string(name) + " times " + std::to_string(part));
    }
    Files without = stopped;
    without.erase(name);
    const Dimer folder;
    folder.put(without);
    expect_success(run_scan(folder, kLongPlan + Words{"--resume"}), expected,
                   std::string("without ") + name);
  }
}

}  // namespace
}  // namespace dravo::test
