/// Any bytes as a table of poses: all of its rows can be had, and are read again from what they are
/// written as.
#include "scan/zipped_list.hpp"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "common/number_format.hpp"
#include "fuzz/expectations.hpp"
#include "fuzz/poses.hpp"

namespace {

using namespace dravo;
using test::require;

std::string written(const std::vector<PoseDegrees>& poses) {
  std::string text;
  for (const PoseDegrees& pose : poses)
    for (const PoseParameter& parameter : kPoseParameters) {
      append_shortest(text, pose.*parameter.value);
      text += &parameter == &kPoseParameters.back() ? '\n' : ',';
    }
  return text;
}

void read(const test::MemoryFolder& folder, const std::string& file) {
  const ZippedList list(file);
  require(list.size() >= 1, "a list has a row");
  std::vector<PoseDegrees> rows(static_cast<std::size_t>(list.size()));
  list.fill(0, rows);
  for (const PoseDegrees& row : rows) require(is_usable(row), "a pose is in range");
  const ZippedList again(folder.write("again.csv", written(rows)));
  require(again.size() == list.size() && again.fingerprint() == list.fingerprint(),
          "a list that is written is read as the same");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  static const test::MemoryFolder folder;
  const std::string file = folder.write("poses.csv", test::text_of(bytes, size));
  test::read_or_refuse([&] { read(folder, file); });
  return 0;
}
