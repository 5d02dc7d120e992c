/// Any bytes as an input file: they are read, or refused with a message.
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "common/errors.hpp"
#include "driver/input_stops.hpp"
#include "driver/run_stop.hpp"

namespace {

using namespace dravo;

constexpr std::int32_t kRows = 16;  // few, so that inputs of more atoms are common

void require(bool condition) {
  if (!condition) std::abort();
}

void require_message(std::string_view message) {
  require(message.starts_with("QN-input-GEOMETRY.xyz:"));
  require(message.find(": expected ") != std::string_view::npos);
  require(message.size() < 1000);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  // A copy of exactly this size: a step outside of it is seen.
  const std::string text(bytes, bytes + size);
  AtomStorage<kRows> input_storage{};
  AtomStorage<kRows> working_storage{};
  std::array<Label, kRows> isymbol{};
  AtomTable icoo_and_m(input_storage);
  AtomTable newcoo_and_m(working_storage);
  RecordStream screen;
  FreeFormatReader reader(kInputFileName, text);
  try {
    const RunInput geometry = read_input_or_stop(reader, icoo_and_m, newcoo_and_m, isymbol, screen);
    require(geometry.split.N >= 6 && geometry.split.N <= kRows && geometry.split.n1 >= 3);
  } catch (const RunStop&) {
    require(!screen.text().empty());
  } catch (const Error& failure) {
    require_message(failure.what());
  }
  return 0;
}
