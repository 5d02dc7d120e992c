/// What a shell can offer for the value of an option, or for an argument.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

namespace dravo {

struct OfferedValues {
  std::vector<std::string> words;
  bool files = false;
  std::vector<std::string> endings;  ///< of the files, without the dot; empty for any
  bool folders = false;
  bool results = false;  ///< names of finished scans and dockings
  bool parts = false;    ///< names of those that were made in parts
};

/// From the words in the option's type, the choices of its check, and tables of what neither tells.
OfferedValues offered_values(const CLI::App& command, const CLI::Option& option);

/// The commands that the help tells of.
std::vector<const CLI::App*> shown_commands(const CLI::App& program);

/// The options of a command, and its arguments without hyphens in their order.
std::vector<const CLI::Option*> options_of(const CLI::App& command);
std::vector<const CLI::Option*> arguments_of(const CLI::App& command);

/// "--output" and "-o"; every name that turns a flag off too.
std::vector<std::string> spellings_of(const CLI::Option& option);

bool takes_value(const CLI::Option& option);

}  // namespace dravo
