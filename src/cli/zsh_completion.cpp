#include <fmt/format.h>

#include <string>
#include <string_view>
#include <vector>

#include "cli/completion.hpp"
#include "cli/offered_values.hpp"

namespace dravo {
namespace {

constexpr auto kZshHead = R"zsh(#compdef dravo
# zsh completion for dravo, printed by the program itself

# Names of finished scans and dockings: those of a record that has its table beside it.
_dravo_results() {
  local -a names
  names=( ${(Q)PREFIX}*.json(N) )
  names=( ${names%.json} )
  names=( ${^names}.csv(N) )
  names=( ${names%.csv} )
  (( $#names )) && compadd -f -- $names
}

# NAME of NAME-1-of-8.json, and folders.
_dravo_parts() {
  local -a names
  names=( ${(Q)PREFIX}*-1-of-<->.json(N) )
  names=( ${names%-1-of-*} )
  (( $#names )) && compadd -f -- $names
  _path_files -/
}

_dravo_names() {
  _dravo_results
  _path_files -/
}

_dravo_files_or_results() {
  _dravo_results
  _files "$@"
}

_dravo() {
  local curcontext="$curcontext" state line
  typeset -A opt_args
)zsh";

/// Within single quotes, in which a single quote cannot stand.
std::string zsh_quoted(std::string_view text) {
  std::string quoted = "'";
  for (const char c : text) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return quoted + "'";
}

/// Brackets and colons divide what `_arguments` is told.
std::string zsh_described(std::string_view text) {
  std::string described;
  for (const char c : text) {
    if (c == '[' || c == ']' || c == ':' || c == '\\') described += '\\';
    described += c;
  }
  return described;
}

/// "_files -g "*.(svg|png)""; a blank where nothing can be offered.
std::string zsh_offer(const OfferedValues& offered) {
  std::string endings = fmt::format("{}", fmt::join(offered.endings, "|"));
  if (offered.endings.size() > 1) endings = "(" + endings + ")";  // one alone were a qualifier
  const std::string pattern = endings.empty() ? "" : fmt::format(" -g \"*.{}\"", endings);
  if (!offered.words.empty()) return fmt::format("({})", fmt::join(offered.words, " "));
  if (offered.files && offered.results) return "_dravo_files_or_results" + pattern;
  if (offered.files) return "_files" + pattern;
  if (offered.folders) return "_path_files -/";
  if (offered.parts) return "_dravo_parts";
  return offered.results ? "_dravo_names" : " ";
}

/// "UNIT" of "UNIT:{angstrom,bohr,nm}", "K" of "K:INT in [1 - 9]"; "K|all|A:B" as it stands.
std::string type_shown(const CLI::Option& option) {
  std::string type = option.get_type_name();
  for (const char* const check : {":{", ":INT in ", ":UINT in "})
    type = type.substr(0, type.find(check));
  return zsh_described(type);
}

/// What `_arguments` is told of an option by one of its names.
std::string zsh_option(const CLI::App& command, const CLI::Option& option, const std::string& name,
                       const std::string& others) {
  const bool value = takes_value(option);
  const char* const value_follows = name.starts_with("--") ? "=" : "+";
  std::string text = fmt::format("{}{}{}[{}]", others, name, value ? value_follows : "",
                                 zsh_described(option.get_description()));
  if (value)
    text += fmt::format(":{}:{}", type_shown(option), zsh_offer(offered_values(command, option)));
  return "      " + zsh_quoted(text);
}

std::string zsh_arguments(const CLI::App& command) {
  std::vector<std::string> lines;
  for (const CLI::Option* option : options_of(command)) {
    const auto names = spellings_of(*option);
    const std::string others =
        names.size() > 1 ? fmt::format("({})", fmt::join(names, " ")) : std::string();
    for (const std::string& name : names)
      lines.push_back(zsh_option(command, *option, name, others));
  }
  int place = 0;
  for (const CLI::Option* argument : arguments_of(command))
    lines.push_back("      " + zsh_quoted(fmt::format(
                                   "{}{}{}:{}", ++place, argument->get_required() ? ":" : "::",
                                   zsh_described(argument->get_description()),
                                   zsh_offer(offered_values(command, *argument)))));
  return fmt::format("{}", fmt::join(lines, " \\\n"));
}

}  // namespace

std::string zsh_completion(const CLI::App& program) {
  std::string text = kZshHead;
  text += "  local -a commands=(\n";
  for (const CLI::App* command : shown_commands(program))
    text += fmt::format("    {}\n", zsh_quoted(command->get_name() + ":" +
                                               zsh_described(command->get_description())));
  text += "  )\n  _arguments -C \\\n" + zsh_arguments(program) +
          " \\\n      '1:command:->command' '*::argument:->arguments'\n"
          "  case $state in\n    (command) _describe command commands ;;\n"
          "    (arguments)\n      case $line[1] in\n";
  for (const CLI::App* command : shown_commands(program))
    text += fmt::format("    ({})\n    _arguments \\\n{} ;;\n", command->get_name(),
                        zsh_arguments(*command));
  return text +
         "      esac ;;\n  esac\n}\n\n"
         "if [[ $funcstack[1] == _dravo ]]; then\n  _dravo \"$@\"\nelse\n  compdef _dravo dravo\nfi\n";
}

}  // namespace dravo
