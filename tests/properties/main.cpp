/// Runs the properties on the same cases every time, unless RC_PARAMS in the environment says
/// otherwise. The seed in use is shown before the first property.
#include <gtest/gtest.h>

#include <cstdlib>

int main(int argc, char** argv) {
  constexpr int keep = 0;
  ::setenv("RC_PARAMS", "seed=20240229 max_success=1000", keep);
  testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
