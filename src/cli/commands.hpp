/// The subcommands of `dravo`. Each adds its options to the program; its work is done while the
/// arguments are parsed.
///
/// The work throws NoUniqueFrame, NoRotationFound or CannotBeDone (exit status 1) for what cannot
/// be done, EndedBySignal, any other Error (exit status 2) for wrong input, files or usage. Results
/// go to standard output, messages to standard error.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

#include "dravo/error.hpp"

namespace dravo {

/// Nothing is wrong with the input, but what was asked for does not exist.
class CannotBeDone : public Error {
 public:
  using Error::Error;
};

/// Somebody ended the work by a signal (exit status 128 and its number).
class EndedBySignal : public Error {
 public:
  EndedBySignal(const std::string& message, int signal) : Error(message), signal_(signal) {}

  [[nodiscard]] int signal() const { return signal_; }

 private:
  int signal_;
};

void add_prepare(CLI::App& program);
void add_identify(CLI::App& program);
void add_place(CLI::App& program);
void add_scan(CLI::App& program);
void add_merge(CLI::App& program);
void add_dock(CLI::App& program);
void add_convert(CLI::App& program);
void add_extract(CLI::App& program);
void add_energy(CLI::App& program);
void add_export(CLI::App& program);
void add_collect(CLI::App& program);
void add_draw(CLI::App& program);
void add_view(CLI::App& program);

/// For the build: it prints the completions of a shell, and no help tells of it.
void add_completion(CLI::App& program);

}  // namespace dravo
