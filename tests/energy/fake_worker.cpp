#include "energy/fake_worker.hpp"

#include <signal.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <limits>
#include <numeric>
#include <vector>

#include "energy/xtb_protocol.hpp"

namespace dravo::test {
namespace {

void receive(void* bytes, std::size_t count) {
  if (count > 0 && ::recv(STDIN_FILENO, bytes, count, MSG_WAITALL) != static_cast<ssize_t>(count))
    ::_exit(0);
}

void send(const void* bytes, std::size_t count) {
  if (::send(STDIN_FILENO, bytes, count, MSG_NOSIGNAL) != static_cast<ssize_t>(count)) ::_exit(0);
}

[[noreturn]] void die() {
  ::raise(SIGKILL);
  ::_exit(1);
}

void die_once() {
  const char* const mark = std::getenv(kFakeMark);
  if (std::ifstream(mark)) return;
  std::ofstream(mark) << "dead";
  die();
}

XtbReply failure() {
  return {1,
          0.0,
          {"-3- xtb_api: Nothing came of it\n-2- scf: No step\n-1- math: No matrix - at all\n"}};
}

void start(std::string_view how) {
  if (how == fake_start::kSilent) ::_exit(0);
  auto greeting = kXtbGreeting;
  if (how == fake_start::kStranger) greeting.front() = '?';
  send(greeting.data(), greeting.size());
}

std::size_t load(std::string_view how) {
  XtbRequest request{};
  receive(&request, sizeof request);
  const auto atoms = static_cast<std::size_t>(request.atoms);
  std::vector<std::int32_t> numbers(atoms);
  std::vector<double> positions(3 * atoms);
  receive(numbers.data(), numbers.size() * sizeof numbers[0]);
  receive(positions.data(), positions.size() * sizeof positions[0]);
  if (how == fake_start::kDies) die();
  if (how == fake_start::kDiesOnce) die_once();
  if (how == fake_start::kComplains) {
    std::cout
        << "Loading ...\nFortran runtime error: No space left\n\nError termination. Backtrace:\n"
           "#0  0xffff in ???\n"
        << std::flush;
    ::_exit(2);
  }
  const XtbReply reply = how == fake_start::kRefuses ? failure() : XtbReply{};
  send(&reply, sizeof reply);
  return atoms;
}

void compute(std::size_t atoms) {
  XtbRequest request{};
  receive(&request, sizeof request);
  std::vector<double> positions(3 * atoms), gradient(3 * atoms, 1.0);
  receive(positions.data(), positions.size() * sizeof positions[0]);
  const auto what = static_cast<Fake>(std::lround(positions.front()));
  if (what == Fake::dies) die();
  if (what == Fake::dies_once) die_once();
  XtbReply reply{};
  reply.energy = std::accumulate(positions.begin(), positions.end(), 0.0);
  if (what == Fake::is_not_a_number) reply.energy = std::numeric_limits<double>::quiet_NaN();
  if (what == Fake::fails) reply = failure();
  send(&reply, sizeof reply);
  if (request.task != XtbTask::gradient || reply.failed != 0) return;
  if (what == Fake::dies_before_the_gradient) die();
  send(gradient.data(), gradient.size() * sizeof gradient[0]);
}

}  // namespace
}  // namespace dravo::test

int main() {
  const char* const told = std::getenv(dravo::test::kFakeStart);
  const std::string_view how = told != nullptr ? told : "";
  dravo::test::start(how);
  const std::size_t atoms = dravo::test::load(how);
  while (true) dravo::test::compute(atoms);
}
