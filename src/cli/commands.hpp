/// The subcommands of `dravo`. Each adds its options to the program; its work is done while the
/// arguments are parsed.
///
/// The work throws Refusal (exit status 1) for what cannot be done and IoFailure (exit status 2)
/// for wrong input, files or usage. Results go to standard output, messages to standard error.
#pragma once

#include <CLI/CLI.hpp>

namespace dravo {

void add_prepare(CLI::App& program);
void add_identify(CLI::App& program);
void add_scan(CLI::App& program);
void add_merge(CLI::App& program);

}  // namespace dravo
