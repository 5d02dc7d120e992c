#include <fmt/format.h>

#include <string>
#include <string_view>
#include <vector>

#include "cli/completion.hpp"
#include "cli/offered_values.hpp"

namespace dravo {
namespace {

using Texts = std::vector<std::string>;

constexpr auto kBashHead = R"bash(# bash completion for dravo, printed by the program itself

# Words that begin as the one that is typed.
_dravo_words() {
  local word
  for word in $1; do
    [[ $word == "$cur"* ]] && COMPREPLY+=("$word")
  done
}

# A name as the system takes it: ~ is the home folder.
_dravo_path() {
  printf '%s' "${1/#\~\//$HOME/}"
}

# Files with one of these endings, and folders; all files where there are none with them.
_dravo_files() {
  local name ending all=() before=${#COMPREPLY[@]}
  compopt -o filenames 2> /dev/null
  while IFS= read -r name; do
    all+=("$name")
    [[ -d $(_dravo_path "$name") ]] && COMPREPLY+=("$name") && continue
    for ending in $1; do
      [[ $name == *."$ending" ]] && COMPREPLY+=("$name")
    done
  done < <(compgen -f -- "$cur")
  ((${#COMPREPLY[@]} > before)) || COMPREPLY+=("${all[@]}")
}

_dravo_folders() {
  local name
  compopt -o filenames 2> /dev/null
  while IFS= read -r name; do
    COMPREPLY+=("$name")
  done < <(compgen -d -- "$cur")
}

# Names of finished scans and dockings: those of a record that has its table beside it.
_dravo_results() {
  local name
  compopt -o filenames 2> /dev/null
  while IFS= read -r name; do
    [[ $name == *.json && -e $(_dravo_path "${name%.json}").csv ]] && COMPREPLY+=("${name%.json}")
  done < <(compgen -f -- "$cur")
}

# Names of scans and dockings that were made in parts: NAME of NAME-1-of-8.json.
_dravo_parts() {
  local name
  compopt -o filenames 2> /dev/null
  while IFS= read -r name; do
    [[ $name =~ ^(.+)-1-of-[0-9]+\.json$ ]] && COMPREPLY+=("${BASH_REMATCH[1]}")
  done < <(compgen -f -- "$cur")
}
)bash";

constexpr auto kBashTail = R"bash(
_dravo() {
  local cur=${COMP_WORDS[COMP_CWORD]} command='' option='' place=0 options='' valued=''
  local joined='' word k
  COMPREPLY=()
  for ((k = 1; k < COMP_CWORD; ++k)); do
    word=${COMP_WORDS[k]}
    if [[ -n $option ]]; then
      [[ $word == = ]] || option=''
    elif [[ $word == -?* ]]; then
      [[ " $valued " == *" $word "* ]] && option=$word
    elif [[ -z $command ]]; then
      command=$word
      _dravo_options "$command"
    else
      ((++place))
    fi
  done
  [[ $cur == = ]] && cur=''
  # Where = does not divide words, the option and its value are one.
  if [[ -z $option && $cur == --*=* ]]; then
    option=${cur%%=*}
    joined=$option=
    cur=${cur#*=}
  fi
  if [[ -z $command ]]; then
    _dravo_options ''
    _dravo_words "$options"
  elif [[ -n $option ]]; then
    _dravo_value "$command $option"
  elif [[ $cur == -* ]]; then
    _dravo_words "$options"
  else
    _dravo_value "$command $((place + 1))"
  fi
  [[ -z $joined ]] || COMPREPLY=("${COMPREPLY[@]/#/$joined}")
}

complete -F _dravo dravo
)bash";

Texts options_named(const CLI::App& command, bool valued_alone) {
  Texts names;
  for (const CLI::Option* option : options_of(command))
    if (!valued_alone || takes_value(*option))
      for (const std::string& name : spellings_of(*option)) names.push_back(name);
  return names;
}

/// "_dravo_words 'light dark'"; empty where nothing can be offered.
std::string bash_offer(const OfferedValues& offered) {
  Texts calls;
  if (!offered.words.empty())
    calls.push_back(fmt::format("_dravo_words '{}'", fmt::join(offered.words, " ")));
  if (offered.files)
    calls.push_back(fmt::format("_dravo_files '{}'", fmt::join(offered.endings, " ")));
  // They may stand in folders.
  const bool only_names = offered.parts || (offered.results && !offered.files);
  if (offered.folders || only_names) calls.emplace_back("_dravo_folders");
  if (offered.results) calls.emplace_back("_dravo_results");
  if (offered.parts) calls.emplace_back("_dravo_parts");
  return fmt::format("{}", fmt::join(calls, "; "));
}

std::string bash_case(std::string_view pattern, std::string_view action) {
  return fmt::format("    {}) {} ;;\n", pattern, action);
}

std::string options_function(const CLI::App& program,
                             const std::vector<const CLI::App*>& commands) {
  Texts first_words;
  for (const CLI::App* command : commands) first_words.push_back(command->get_name());
  for (const std::string& name : options_named(program, false)) first_words.push_back(name);
  std::string text =
      "\n# The options of a command, and those of them that take a value; without a command what can\n"
      "# stand there.\n_dravo_options() {\n  case $1 in\n";
  text += bash_case("''", fmt::format("options='{}'", fmt::join(first_words, " ")));
  for (const CLI::App* command : commands)
    text += fmt::format("    {})\n      options='{}'\n      valued='{}'\n      ;;\n",
                        command->get_name(), fmt::join(options_named(*command, false), " "),
                        fmt::join(options_named(*command, true), " "));
  return text + "  esac\n}\n";
}

std::string values_function(const std::vector<const CLI::App*>& commands) {
  std::string text =
      "\n# What is offered for the value of an option, or for an argument by its place.\n"
      "_dravo_value() {\n  case $1 in\n";
  for (const CLI::App* command : commands) {
    for (const CLI::Option* option : options_of(*command)) {
      const std::string offer = bash_offer(offered_values(*command, *option));
      if (offer.empty()) continue;
      Texts patterns;
      for (const std::string& name : spellings_of(*option))
        patterns.push_back(fmt::format("'{} {}'", command->get_name(), name));
      text += bash_case(fmt::format("{}", fmt::join(patterns, " | ")), offer);
    }
    int place = 0;
    for (const CLI::Option* argument : arguments_of(*command))
      text += bash_case(fmt::format("'{} {}'", command->get_name(), ++place),
                        bash_offer(offered_values(*command, *argument)));
  }
  return text + "  esac\n}\n";
}

}  // namespace

std::string bash_completion(const CLI::App& program) {
  const auto commands = shown_commands(program);
  return kBashHead + options_function(program, commands) + values_function(commands) + kBashTail;
}

}  // namespace dravo
