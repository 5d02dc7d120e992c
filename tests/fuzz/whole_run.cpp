/// Any bytes as the input file of a whole run in memory: it ends with a complete result, with a
/// prescribed stop, or with a message.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "common/errors.hpp"
#include "driver/run.hpp"
#include "driver/run_stop.hpp"
#include "support/memory_units.hpp"

namespace {

using namespace dravo;

void require(bool condition) {
  if (!condition) std::abort();
}

bool ends_in_whole_record(const std::string& text) { return text.empty() || text.back() == '\n'; }

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const std::string text(bytes, bytes + size);
  test::MemoryUnits memory;
  try {
    run(text, memory.units);
    memory.units.finish();
    require(memory.folder.files.size() == 4);  // log, geometry, pair and drawing
  } catch (const RunStop&) {
    memory.units.finish();
    require(!memory.screen.empty());
    require(memory.folder.files.size() <= 1);  // the log, if the run came so far
  } catch (const Error&) {
    require(memory.folder.files.empty());
  }
  require(ends_in_whole_record(memory.screen));
  for (const auto& [name, contents] : memory.folder.files) require(ends_in_whole_record(contents));
  return 0;
}
