#include "results/interruption.hpp"

#include <fmt/format.h>
#include <signal.h>  // NOLINT(modernize-deprecated-headers): sigaction is of POSIX

#include <array>
#include <atomic>

namespace dravo {
namespace {

constexpr std::array<int, 2> kWatched{SIGINT, SIGTERM};

std::atomic<int> noted_signal = 0;
static_assert(std::atomic<int>::is_always_lock_free, "a handler may not wait");

void set_action(int signal, void (*handler)(int)) {
  struct sigaction action {};
  action.sa_handler = handler;
  ::sigaction(signal, &action, nullptr);
}

void note(int signal) {
  noted_signal = signal;
  for (const int watched : kWatched) set_action(watched, SIG_DFL);
}

bool is_ignored(int signal) {
  struct sigaction action {};
  return ::sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

}  // namespace

Interrupted::Interrupted(int signal, std::int64_t done, std::int64_t poses)
    : Interrupted(signal, fmt::format("{} of {} poses", done, poses)) {}

Interrupted::Interrupted(int signal, const std::string& after)
    : Error("interrupted after " + after), signal_(signal) {}

InterruptionWatch::InterruptionWatch() {
  noted_signal = 0;
  for (const int signal : kWatched)
    if (!is_ignored(signal)) set_action(signal, note);
}

InterruptionWatch::~InterruptionWatch() {
  for (const int signal : kWatched)
    if (!is_ignored(signal)) set_action(signal, SIG_DFL);
}

int InterruptionWatch::noted() { return noted_signal; }

}  // namespace dravo
