#include <algorithm>
#include <exception>
#include <iostream>
#include <string>

#include "cli/commands.hpp"
#include "common/errors.hpp"
#include "common/shown_text.hpp"
#include "common/standard_streams.hpp"
#include "common/version.hpp"

namespace {

constexpr int kDone = 0;
constexpr int kCannotBeDone = 1;
constexpr int kBadUsageOrInput = 2;

constexpr auto kExample =
    "Examples: two molecules placed; what a pair is; a scan around a molecule\n"
    "  dravo place water.xyz benzene.xyz --r 3.3 -o pair.xyz\n"
    "  dravo identify pair.xyz\n"
    "  dravo scan pair.xyz --r \"contact + 0:2:0.1\" --theta 0:180:10 --output water-benzene\n"
    "`dravo COMMAND --help` tells more.";

int failed(int status, const std::string& message) {
  std::cerr << "dravo: " << message << '\n';
  return status;
}

/// Results are worth nothing when nobody got them.
int results_delivered() {
  std::cout.flush();
  if (std::cout) return kDone;
  return failed(kBadUsageOrInput, "standard output: cannot write");
}

/// Help and version are what was asked for; any other end of the parsing is bad usage.
int usage_ended(const CLI::App& program, const CLI::ParseError& end) {
  if (end.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) {
    program.exit(end, std::cout, std::cerr);
    return results_delivered();
  }
  return failed(kBadUsageOrInput, std::string(end.what()) + "\nRun with --help for more.");
}

void describe(CLI::App& program) {
  program.footer(kExample);
  program.set_version_flag("--version", "dravo " DRAVO_VERSION);
  program.require_subcommand(1);
  dravo::add_prepare(program);
  dravo::add_identify(program);
  dravo::add_place(program);
  dravo::add_scan(program);
  dravo::add_merge(program);
  dravo::add_extract(program);
  for (CLI::App* command : program.get_subcommands({}))
    command->set_version_flag("--version", "dravo " DRAVO_VERSION);
}

/// The library would only say that a command is missing.
void require_known_command(const CLI::App& program, const std::string& word) {
  const auto commands = program.get_subcommands([](const CLI::App*) { return true; });
  const auto is_word = [&](const CLI::App* command) { return command->get_name() == word; };
  if (word.starts_with('-') || std::any_of(commands.begin(), commands.end(), is_word)) return;
  throw dravo::InvalidInput(
      dravo::quoted(word) +
      ": no such command; there are prepare, identify, place, scan, merge and extract");
}

int run(int argc, char** argv) {
  CLI::App program("Prepares, identifies, places and scans pairs of molecules", "dravo");
  describe(program);
  try {
    if (argc > 1) require_known_command(program, argv[1]);
    program.parse(argc, argv);
    return results_delivered();
  } catch (const CLI::ParseError& end) {
    return usage_ended(program, end);
  }
}

}  // namespace

int main(int argc, char** argv) {
  dravo::secure_standard_streams();
  try {
    return run(argc, argv);
  } catch (const dravo::NoUniqueFrame& refusal) {
    return failed(kCannotBeDone, refusal.what());
  } catch (const dravo::NoRotationFound& refusal) {
    return failed(kCannotBeDone, refusal.what());
  } catch (const dravo::CannotBeDone& refusal) {
    return failed(kCannotBeDone, refusal.what());
  } catch (const dravo::Error& failure) {
    return failed(kBadUsageOrInput, failure.what());
  } catch (const std::exception& failure) {
    return failed(kBadUsageOrInput, std::string("cannot go on: ") + failure.what());
  }
}
