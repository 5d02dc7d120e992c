#include "cli/completion.hpp"

#include <iostream>
#include <memory>
#include <string>

#include "cli/commands.hpp"

namespace dravo {

void add_completion(CLI::App& program) {
  CLI::App& command =
      *program.add_subcommand("completion", "Print the completions of a shell")->group("");
  const auto shell = std::make_shared<std::string>();
  command.add_option("shell", *shell, "whose script")
      ->required()
      ->type_name("SHELL")
      ->check(CLI::IsMember({"bash", "zsh"}));
  command.callback([shell, &program] {
    std::cout << (*shell == "bash" ? bash_completion(program) : zsh_completion(program));
  });
}

}  // namespace dravo
