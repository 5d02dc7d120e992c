/// Makes one mistake on purpose: a build with sanitizers must end it with a report.
#include <climits>
#include <cstddef>
#include <cstdio>
#include <string_view>
#include <vector>

int main(int argc, char** argv) {
  // Known at run time only, so that no compiler sees the mistakes.
  const std::string_view mistake = argc > 1 ? argv[1] : "";
  const auto three = static_cast<std::size_t>(argc) + 1;
  std::vector<int> numbers(three);
  int sum = INT_MAX - 1;
  if (mistake == "address") sum = numbers.data()[three];
  if (mistake == "overflow") sum += argc;
  if (mistake == "assertion") sum = numbers[three];
  std::printf("%d: nobody saw it\n", sum);
}
