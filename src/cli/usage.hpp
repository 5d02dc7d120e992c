/// What is wrong with the words that the program was given, one sentence each.
#pragma once

#include <CLI/CLI.hpp>
#include <optional>
#include <string>
#include <vector>

namespace dravo {

/// Of words that the parser would misunderstand: a command that is none, an option in the place of
/// another one's value. `words` are those behind the name of the program.
std::optional<std::string> fault_before_parsing(const CLI::App& program,
                                                const std::vector<std::string>& words);

/// Of words that the parser refused.
std::string fault_of_parsing(const CLI::App& program, const CLI::ParseError& refusal);

}  // namespace dravo
