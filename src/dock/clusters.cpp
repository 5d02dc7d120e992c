#include "dock/clusters.hpp"

#include <utility>

namespace dravo {

std::size_t Clusters::add(FoundMinimum minimum) {
  std::size_t home = lowest_.size();
  for (std::size_t k = 0; k < lowest_.size(); ++k)
    if ((home == lowest_.size() || lowest_[k].energy < lowest_[home].energy) &&
        (*same_)(lowest_[k], minimum))
      home = k;
  if (home == lowest_.size())
    lowest_.push_back(std::move(minimum));
  else if (minimum.energy < lowest_[home].energy)
    lowest_[home] = std::move(minimum);
  return home;
}

}  // namespace dravo
