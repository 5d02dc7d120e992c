#pragma once

namespace dravo::test {

constexpr double radians(double degrees) { return degrees * 3.14159265358979323846 / 180.0; }

}  // namespace dravo::test
