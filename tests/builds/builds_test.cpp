/// The printed digits must not depend on the compiler, its optimiser, or the language of the user.
#include <gtest/gtest.h>

#include <array>
#include <clocale>
#include <cstddef>
#include <cstdlib>
#include <string>
#include <vector>

#include "common/errors.hpp"
#include "driver/run.hpp"
#include "driver/run_stop.hpp"
#include "end_to_end/program.hpp"
#include "support/memory_units.hpp"

namespace dravo::test {
namespace {

constexpr std::array kPrograms{DRAVO_OTHER_BUILDS};

void expect_same(const Outcome& one, const Outcome& other) {
  EXPECT_EQ(one.status, 0);
  EXPECT_EQ(other.status, 0);
  EXPECT_EQ(one.screen, other.screen);
  EXPECT_GE(one.files.size(), 1U);
  EXPECT_TRUE(one.files == other.files);
}

class EveryBuild : public ::testing::TestWithParam<const char*> {};

TEST_P(EveryBuild, GivesTheSameBytes) {
  for (const char* name : kSamples) {
    SCOPED_TRACE(name);
    const std::string input = file_text(sample_path(name));
    expect_same(run_on(input), run_on(input, GetParam()));
  }
}

INSTANTIATE_TEST_SUITE_P(Builds, EveryBuild, ::testing::ValuesIn(kPrograms));

/// Speaks German, with a comma as decimal point, as long as it lives.
class GermanLocale {
 public:
  GermanLocale() {
    const std::string path = (folder_.path() / "de_DE.UTF-8").string();
    const std::string define = "localedef -i de_DE -f UTF-8 " + path + " > /dev/null 2>&1";
    if (std::system(define.c_str()) != 0) return;
    ::setenv("LOCPATH", folder_.path().c_str(), 1);
    ::setenv("LC_ALL", "de_DE.UTF-8", 1);
    std::setlocale(LC_ALL, "");
  }
  GermanLocale(const GermanLocale&) = delete;
  GermanLocale& operator=(const GermanLocale&) = delete;
  ~GermanLocale() {
    ::unsetenv("LC_ALL");
    ::unsetenv("LOCPATH");
    std::setlocale(LC_ALL, "C");
  }

  [[nodiscard]] static bool is_in_force() {
    return std::string(std::localeconv()->decimal_point) == ",";
  }

 private:
  TemporaryFolder folder_;
};

TEST(EveryLocale, GivesTheSameBytes) {
  std::vector<Outcome> plain;
  for (const char* name : kSamples) plain.push_back(run_on(file_text(sample_path(name))));
  const GermanLocale german;
  if (!GermanLocale::is_in_force()) GTEST_SKIP() << "localedef cannot make a German locale";
  for (std::size_t k = 0; k < kSamples.size(); ++k) {
    SCOPED_TRACE(kSamples[k]);
    const std::string input = file_text(sample_path(kSamples[k]));
    expect_same(plain[k], run_on(input));

    // In this process the locale is in force, whether the program takes it over or not.
    MemoryUnits memory;
    try {
      run(input, memory.units);
    } catch (const RunStop&) {
      // As in the built program.
    }
    memory.units.finish();
    EXPECT_EQ(memory.screen, plain[k].screen);
    EXPECT_TRUE(memory.folder.files == plain[k].files);
  }
}

}  // namespace
}  // namespace dravo::test
