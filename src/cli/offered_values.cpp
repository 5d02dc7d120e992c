#include "cli/offered_values.hpp"

#include <algorithm>
#include <array>
#include <string_view>

#include "common/text.hpp"
#include "dravo/energy.hpp"
#include "quantum/quantum_job.hpp"

namespace dravo {
namespace {

/// An option by its long name with hyphens, or an argument, of one command or of all.
struct Place {
  std::string_view command;  ///< empty for all
  std::string_view option;
};

struct Choices {
  std::string_view option;
  std::vector<std::string> (*words)();
};

/// Choices that are refused by the work itself, with its own words.
constexpr std::array<Choices, 3> kChoices{{{"--energy", energy_method_names},
                                           {"--read-unit", energy_unit_names},
                                           {"program", quantum_program_names}}};

struct Endings {
  Place place;
  std::string_view endings;
};

/// Files end so as a rule. Those that an option writes are here too: they may be replaced.
constexpr std::array<Endings, 15> kEndings{{{{"", "pair"}, "xyz"},
                                            {{"", "file"}, "xyz"},
                                            {{"", "file2"}, "xyz"},
                                            {{"", "--like"}, "xyz"},
                                            {{"", "--plan"}, "toml"},
                                            {{"", "--zip"}, "csv"},
                                            {{"collect", "--output"}, "csv"},
                                            {{"convert", "--output"}, "xyz"},
                                            {{"draw", "--output"}, "svg,png,bild,json"},
                                            {{"energy", "--output"}, "csv"},
                                            {{"extract", "--output"}, "xyz"},
                                            {{"identify", "--output"}, "csv"},
                                            {{"place", "--output"}, "xyz"},
                                            {{"prepare", "--output"}, "xyz"},
                                            {{"view", "--output"}, "html"}}};

constexpr std::array<std::string_view, 4> kFileTypes{"FILE", "FILE2", "CSV", "PAGE"};

std::vector<std::string> texts_between(std::string_view text, char separator) {
  std::vector<std::string> texts;
  for (const std::string_view part : parts_between(text, separator)) texts.emplace_back(part);
  return texts;
}

std::string main_name(const CLI::Option& option) {
  return option.get_lnames().empty() ? option.get_single_name()
                                     : "--" + option.get_lnames().front();
}

/// "angstrom", "bohr" and "nm" of "UNIT:{angstrom,bohr,nm}", where the choices stand behind the
/// type.
std::vector<std::string> checked_choices(const std::string& type) {
  const std::size_t begin = type.find(":{");
  const std::size_t end = type.find('}');
  if (begin == std::string::npos || end == std::string::npos) return {};
  return texts_between(std::string_view(type).substr(begin + 2, end - begin - 2), ',');
}

/// Whether a part of "N1|auto" is a word to be given as it stands: it has no capitals.
bool is_literal(std::string_view part) {
  return !part.empty() &&
         std::none_of(part.begin(), part.end(), [](char c) { return c >= 'A' && c <= 'Z'; });
}

std::vector<std::string> endings_of(const CLI::App& command, const std::string& name) {
  for (const auto& [place, endings] : kEndings)
    if (place.option == name && (place.command.empty() || place.command == command.get_name()))
      return texts_between(endings, ',');
  return {};
}

}  // namespace

OfferedValues offered_values(const CLI::App& command, const CLI::Option& option) {
  const std::string name = main_name(option);
  const std::string type = option.get_type_name();
  OfferedValues offered;
  offered.words = checked_choices(type);
  for (const auto& [chosen, words] : kChoices)
    if (chosen == name) offered.words = words();
  for (const std::string_view part :
       parts_between(std::string_view(type).substr(0, type.find(':')), '|')) {
    if (std::find(kFileTypes.begin(), kFileTypes.end(), part) != kFileTypes.end())
      offered.files = true;
    else if (part == "DIR")
      offered.folders = true;
    else if (part == "NAME")
      (command.get_name() == "merge" ? offered.parts : offered.results) = true;
    else if (is_literal(part))
      offered.words.emplace_back(part);
  }
  if (offered.files) offered.endings = endings_of(command, name);
  return offered;
}

std::vector<const CLI::App*> shown_commands(const CLI::App& program) {
  return program.get_subcommands(
      [](const CLI::App* command) { return !command->get_group().empty(); });
}

std::vector<const CLI::Option*> options_of(const CLI::App& command) {
  return command.get_options([](const CLI::Option* option) { return !option->get_positional(); });
}

std::vector<const CLI::Option*> arguments_of(const CLI::App& command) {
  return command.get_options([](const CLI::Option* option) { return option->get_positional(); });
}

std::vector<std::string> spellings_of(const CLI::Option& option) {
  std::vector<std::string> names;
  for (const std::string& name : option.get_snames()) names.push_back("-" + name);
  for (const std::string& name : option.get_lnames()) names.push_back("--" + name);
  return names;
}

bool takes_value(const CLI::Option& option) { return option.get_items_expected_max() > 0; }

}  // namespace dravo
