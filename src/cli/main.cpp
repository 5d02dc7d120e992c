#include <unistd.h>

#include <csignal>
#include <exception>
#include <iostream>
#include <string>

#include "cli/commands.hpp"
#include "common/errors.hpp"
#include "common/version.hpp"
#include "pairs/refusal.hpp"

namespace {

constexpr int kDone = 0;
constexpr int kCannotBeDone = 1;
constexpr int kBadUsageOrInput = 2;

constexpr auto kExample =
    "A scan of a dimer, from two xyz files:\n"
    "  dravo prepare formamide.xyz water.xyz --r 4\n"
    "  dravo scan QN-input-GEOMETRY.xyz --r \"contact + 0:2:0.1\" --theta 0:180:10 --phi 0\n"
    "`dravo COMMAND --help` tells more.";

int failed(int status, const std::string& message) {
  std::cerr << "dravo: " << message << '\n';
  return status;
}

/// Help and version are what was asked for; any other end of the parsing is bad usage.
int usage_ended(const CLI::App& program, const CLI::ParseError& end) {
  if (end.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success))
    return program.exit(end, std::cout, std::cerr);
  return failed(kBadUsageOrInput, std::string(end.what()) + "\nRun with --help for more.");
}

/// Results are worth nothing when nobody got them.
int results_delivered() {
  std::cout.flush();
  if (std::cout) return kDone;
  return failed(kBadUsageOrInput, "standard output: cannot write");
}

}  // namespace

int main(int argc, char** argv) {
  std::signal(SIGPIPE, SIG_IGN);
  std::signal(SIGXFSZ, SIG_IGN);
  CLI::App program("Prepares, identifies and scans pairs of molecules", "dravo");
  program.footer(kExample);
  program.set_version_flag("--version", "dravo " DRAVO_VERSION);
  program.require_subcommand(1);
  dravo::add_prepare(program);
  dravo::add_identify(program);
  dravo::add_scan(program);
  dravo::add_merge(program);
  for (CLI::App* command : program.get_subcommands({}))
    command->set_version_flag("--version", "dravo " DRAVO_VERSION);

  try {
    program.parse(argc, argv);
    return results_delivered();
  } catch (const CLI::ParseError& end) {
    return usage_ended(program, end);
  } catch (const dravo::Refusal& refusal) {
    return failed(kCannotBeDone, refusal.what());
  } catch (const std::exception& failure) {
    return failed(kBadUsageOrInput, failure.what());
  }
}
