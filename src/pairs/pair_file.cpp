#include "pairs/pair_file.hpp"

namespace dravo {

PairFile read_pair(const PairRequest&) { return {}; }

}  // namespace dravo
