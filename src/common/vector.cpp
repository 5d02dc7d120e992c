#include "common/vector.hpp"

#include <cmath>

namespace dravo {

double half_power(double value) { return std::pow(value, 0.5); }

}  // namespace dravo
