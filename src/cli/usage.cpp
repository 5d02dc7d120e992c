#include "cli/usage.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <functional>
#include <regex>
#include <string_view>

#include "cli/offered_values.hpp"
#include "cli/words.hpp"
#include "common/shown_text.hpp"

namespace dravo {
namespace {

using Texts = std::vector<std::string>;

// --- names ------------------------------------------------------------------------------------

Texts command_names(const CLI::App& program) {
  Texts names;
  for (const CLI::App* command : shown_commands(program)) names.push_back(command->get_name());
  return names;
}

/// Null without a command of this name.
const CLI::App* command_of(const CLI::App& program, const std::string& name) {
  const auto commands = program.get_subcommands([](const CLI::App*) { return true; });
  const auto found = std::find_if(commands.begin(), commands.end(), [&](const CLI::App* command) {
    return command->get_name() == name;
  });
  return found == commands.end() ? nullptr : *found;
}

/// The command that the words named, or the program itself.
const CLI::App& asked_of(const CLI::App& program) {
  const auto parsed = program.get_subcommands();
  return parsed.empty() ? program : *parsed.front();
}

/// "dravo scan"
std::string full_name(const CLI::App& command) {
  const CLI::App* parent = command.get_parent();
  return parent == nullptr ? command.get_name() : parent->get_name() + " " + command.get_name();
}

/// "--output" of "-o,--output"; the name in the help, "FILE", of an argument without hyphens.
std::string name_of(const CLI::Option& option) {
  if (!option.get_lnames().empty()) return "--" + option.get_lnames().front();
  if (!option.get_snames().empty()) return "-" + option.get_snames().front();
  return option.get_type_name();
}

/// By one of its names with their hyphens; null without such a one.
const CLI::Option* option_of(const CLI::App& command, const std::string& word) {
  return word.starts_with('-') ? command.get_option_no_throw(word) : nullptr;
}

/// Whether a word that belongs to nothing was meant as an option, not as a number.
bool is_like_an_option(std::string_view word) {
  return word.size() > 1 && word[0] == '-' && word.find_first_of("0123456789.", 1) != 1;
}

std::string_view without_hyphens(std::string_view word) {
  word.remove_prefix(std::min(word.find_first_not_of('-'), word.size()));
  return word;
}

Texts quoted_texts(const Texts& words) {
  Texts texts;
  for (const std::string& word : words) texts.push_back(dravo::quoted(word));
  return texts;
}

// --- one sentence for each fault ----------------------------------------------------------------

std::string about_unknown_command(const CLI::App& program, const std::string& word) {
  const Texts names = command_names(program);
  if (const auto meant = nearest_to(word, names))
    return fmt::format("{}: no such command; did you mean {}?", dravo::quoted(word), *meant);
  return fmt::format("{}: no such command; there are {}", dravo::quoted(word), enumerated(names));
}

std::string about_unknown_option(const CLI::App& program, const CLI::App& command,
                                 const std::string& word) {
  const std::string name = word.substr(0, word.find('='));
  Texts owners;
  for (const CLI::App* other : shown_commands(program))
    if (option_of(*other, name) != nullptr) owners.push_back(full_name(*other));
  if (!owners.empty() && &command == &program)
    return fmt::format("{} is an option of {}, and stands behind the command", name,
                       enumerated(owners));
  if (!owners.empty())
    return fmt::format("{} is an option of {}, not of {}", name, enumerated(owners),
                       full_name(command));
  Texts names;
  for (const CLI::Option* option : command.get_options())
    for (const std::string& own : option->get_lnames()) names.push_back(own);
  const auto meant = nearest_to(without_hyphens(name), names);
  return fmt::format("{} is not an option of {}{}", printable(name, name.size()).text,
                     full_name(command), meant ? fmt::format("; did you mean --{}?", *meant) : "");
}

std::string about_extra_words(const CLI::App& command, const Texts& words) {
  Texts taken;
  for (const CLI::Option* option : command.get_options())
    if (option->get_positional()) taken.push_back(name_of(*option));
  return fmt::format("{}: not expected; {} takes {}, and a value with blanks needs quotes",
                     enumerated(quoted_texts(words)), full_name(command),
                     taken.empty() ? "a command" : enumerated(taken));
}

/// What the parser says of a value, in our words; its own where it says anything else.
std::string about_value(const std::string& said) {
  static const std::regex of_range("(.*): Value (.*) not in range (.*) to (.*)");
  static const std::regex of_choice("(.*): (.*) not in \\{(.*)\\}");
  static const std::regex of_number("Could not convert: (.*) = (.*)");
  static const std::regex of_nothing("(.*): 1 required (.*) missing");
  static const std::regex comma(",");
  constexpr auto kNoUpperEnd = "2147483647";
  std::smatch part;
  if (std::regex_match(said, part, of_range))
    return fmt::format("{}: expected a whole number {}, found {}", part.str(1),
                       part.str(4) == kNoUpperEnd
                           ? fmt::format("of {} or more", part.str(3))
                           : fmt::format("from {} to {}", part.str(3), part.str(4)),
                       dravo::quoted(part.str(2)));
  if (std::regex_match(said, part, of_choice)) {
    const std::string choices = part.str(3);
    const Texts names(std::sregex_token_iterator(choices.begin(), choices.end(), comma, -1), {});
    return fmt::format("{}: expected {}, found {}", part.str(1), enumerated(names, "or"),
                       dravo::quoted(part.str(2)));
  }
  if (std::regex_match(said, part, of_number))
    return fmt::format("{}: expected a number, found {}", part.str(1), dravo::quoted(part.str(2)));
  if (std::regex_match(said, part, of_nothing))
    return fmt::format("{}: expected {}, found nothing", part.str(1), part.str(2));
  return said;
}

/// The first sentence that one of the options gives; empty when none does.
template <class Sentence>
std::string first_about(const CLI::App& command, const Sentence& sentence_about) {
  for (const CLI::Option* option : command.get_options()) {
    std::string sentence = sentence_about(*option);
    if (!sentence.empty()) return sentence;
  }
  return "";
}

std::string about_repetition(const CLI::Option& option) {
  const bool repeated = option.get_items_expected_max() == 1 && option.count() > 1;
  return repeated ? fmt::format("{}: expected one value, found {}", name_of(option),
                                enumerated(quoted_texts(option.results())))
                  : "";
}

std::string about_exclusion(const CLI::Option& option) {
  if (option.count() == 0) return "";
  for (const CLI::Option* other : option.get_excludes())
    if (other->count() > 0)
      return fmt::format("{} and {} exclude each other", name_of(option), name_of(*other));
  return "";
}

std::string about_need(const CLI::Option& option) {
  if (option.count() == 0) return "";
  for (const CLI::Option* other : option.get_needs())
    if (other->count() == 0) return fmt::format("{} needs {}", name_of(option), name_of(*other));
  return "";
}

std::string about_requirement(const CLI::Option& option) {
  if (!option.get_required() || option.count() > 0) return "";
  return fmt::format("{} is missing: {}", name_of(option), option.get_description());
}

std::string about_missing_value(const CLI::Option& option, const std::string& found) {
  return fmt::format("{}: expected {}, found {}", name_of(option), option.get_type_name(), found);
}

}  // namespace

std::optional<std::string> fault_before_parsing(const CLI::App& program, const Texts& words) {
  if (words.empty())
    return fmt::format("expected a command: {}", enumerated(command_names(program), "or"));
  if (words[0].starts_with('-')) return std::nullopt;
  const CLI::App* const command = command_of(program, words[0]);
  if (command == nullptr) return about_unknown_command(program, words[0]);
  for (std::size_t k = 1; k < words.size(); ++k) {
    const std::size_t equals = words[k].find('=');
    const CLI::Option* const option = option_of(*command, words[k].substr(0, equals));
    if (option == nullptr) continue;
    if (!takes_value(*option) && equals != std::string::npos)
      return fmt::format("{}: expected no value, found {}", name_of(*option),
                         dravo::quoted(words[k].substr(equals + 1)));
    if (!takes_value(*option) || equals != std::string::npos) continue;
    ++k;
    if (k == words.size()) return about_missing_value(*option, "nothing behind it");
    if (option_of(*command, words[k]) != nullptr)
      return about_missing_value(*option, "the option " + words[k]);
  }
  return std::nullopt;
}

std::string fault_of_parsing(const CLI::App& program, const CLI::ParseError& refusal) {
  const CLI::App& command = asked_of(program);
  const Texts extra = command.remaining();
  for (const CLI::App* app : {&program, &command}) {
    const Texts words = app->remaining();
    const auto unknown = std::find_if(words.begin(), words.end(), is_like_an_option);
    if (unknown != words.end()) return about_unknown_option(program, *app, *unknown);
  }
  for (const auto& about : {about_repetition, about_exclusion, about_need, about_requirement}) {
    std::string sentence = first_about(command, about);
    if (!sentence.empty()) return sentence;
  }
  if (!extra.empty()) return about_extra_words(command, extra);
  return about_value(refusal.what());
}

}  // namespace dravo
