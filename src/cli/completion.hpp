/// Scripts by which a shell completes what is typed behind `dravo`.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace dravo {

std::string bash_completion(const CLI::App& program);
std::string zsh_completion(const CLI::App& program);

}  // namespace dravo
