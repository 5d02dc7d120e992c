/// Makes one mistake on purpose: a build that looks for data races must end it with a report.
#include <cstdio>
#include <thread>

namespace {

void count(int& number) {
  constexpr int kTimes = 1000;
  for (int k = 0; k < kTimes; ++k) ++number;
}

}  // namespace

int main() {
  int number = 0;
  std::thread other([&] { count(number); });
  count(number);
  other.join();
  std::printf("%d: nobody saw it\n", number);
}
