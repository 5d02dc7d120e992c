/// Any bytes as the plan of a scan: its poses can be made, or it is refused.
#include "scan/plan.hpp"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "fuzz/expectations.hpp"
#include "fuzz/poses.hpp"
#include "scan/plan_file.hpp"

namespace {

using namespace dravo;

void read(const std::string& file, const PoseDefaults& defaults) {
  const ScanPlan plan(read_plan_keys(file), defaults);
  test::require_poses(plan.poses(), plan.above_contact());
  for (const auto& [key, text] : plan.description())
    test::require(key.size() < 100 && text.size() < 1000, "what tells plans apart is short");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  static const test::MemoryFolder folder;
  const std::string file = folder.write("plan.toml", test::text_of(bytes, size));
  test::read_or_refuse([&] { read(file, {}); });
  test::read_or_refuse([&] { read(file, {.values = {}, .here = test::a_pose}); });
  return 0;
}
