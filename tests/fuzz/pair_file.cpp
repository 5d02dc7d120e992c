/// Any bytes as the file of a pair, read in each way that options ask for: what was read is two
/// molecules, and the same when it is written as an input file and read again.
#include "molecules/pair_file.hpp"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "dravo/molecule.hpp"
#include "fuzz/expectations.hpp"
#include "molecules/foreign_format.hpp"
#include "molecules/input_text.hpp"

namespace {

using namespace dravo;
using test::require;

const std::array<PairRequest, 6>& requests() {
  static const std::array<PairRequest, 6> requests{{
      {.file = "a.xyz"},
      {.file = "a.xyz", .split = SplitByBonds{}},
      {.file = "a.xyz", .split = 3},
      {.file = "-", .split = 1, .frame = 2, .check = false},
      {.file = "a.pdb", .split = SplitByBonds{}, .unit = LengthUnit::bohr},
      {.file = "a.xyz", .check = false, .n1_if_untold = 1},
  }};
  return requests;
}

bool same_pair(const Pair& a, const Pair& b) {
  const auto same = [](const Vec3& p, const Vec3& q) {
    return p.x == q.x && p.y == q.y && p.z == q.z;
  };
  return a.n1() == b.n1() && a.labels() == b.labels() &&
         std::equal(a.positions().begin(), a.positions().end(), b.positions().begin(),
                    b.positions().end(), same);
}

void require_two_molecules(const PairFile& file) {
  const Pair& pair = file.pair;
  require(pair.n1() >= 1 && pair.n1() < pair.size(), "a pair is two molecules");
  require(pair.positions().size() == pair.labels().size(), "each atom has a place");
  for (const std::string& remark : file.remarks) test::require_message(remark);
  const PoseDegrees pose = file.parameters.value_or(PoseDegrees{4.0, 90.0, 45.0, 10.0, 20.0, 30.0});
  const PairFile again = pair_of_text(input_text(pair, pose), {.file = "b.xyz", .check = false});
  require(same_pair(pair, again.pair), "a pair that is written is read as the same");
  require(again.parameters.has_value(), "an input file states its parameters");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const std::string text = test::text_of(bytes, size);
  for (const PairRequest& request : requests())
    test::read_or_refuse([&] { require_two_molecules(pair_of_text(text, request)); });
  if (const auto message = foreign_format_message("a.dat", text)) test::require_message(*message);
  return 0;
}
