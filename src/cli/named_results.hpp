/// Commands that take a file of molecules, or the name of results.
#pragma once

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <optional>
#include <string>
#include <string_view>

#include "dravo/error.hpp"

namespace dravo {

/// The name of finished or unfinished results, for which NAME.csv and NAME.json stand too; empty
/// for a file. Throws InvalidInput where there is neither; `kinds` is what messages call results.
std::optional<std::string> results_named(const std::string& given, std::string_view kinds);

/// Throws InvalidInput for the first of these options that somebody gave: "--split " and why it
/// does not belong there.
template <class Options>
void refuse_options(const CLI::App& command, const Options& options, const std::string& why) {
  for (const char* const option : options)
    if (command.count(option) > 0) throw InvalidInput(fmt::format("{} {}", option, why));
}

}  // namespace dravo
