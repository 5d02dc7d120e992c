#include <algorithm>
#include <exception>
#include <iostream>
#include <new>
#include <string>

#include "cli/commands.hpp"
#include "cli/standard_output.hpp"
#include "cli/usage.hpp"
#include "common/errors.hpp"
#include "common/standard_streams.hpp"
#include "common/version.hpp"

namespace {

constexpr int kDone = 0;
constexpr int kCannotBeDone = 1;
constexpr int kBadUsageOrInput = 2;
constexpr int kSignal = 128;  // as shells count

constexpr auto kProgramFooter =
    "Examples: two molecules placed; what a pair is; a scan around a molecule; the best pairs\n"
    "  dravo place water.xyz benzene.xyz --r 3.3 -o pair.xyz\n"
    "  dravo identify pair.xyz\n"
    "  dravo scan pair.xyz --r \"contact + 0:2:0.1\" --theta 0:180:10 --output water-benzene\n"
    "  dravo dock water.xyz benzene.xyz\n"
    "`dravo COMMAND --help` has more.\n"
    "\n"
    "Beside dravo stands qn-dravo. It takes no arguments: it places the pair of the\n"
    "QN-input-GEOMETRY.xyz in its folder, draws both frames, and writes a log of every number.\n"
    "`dravo prepare` writes its input, `dravo place --as-qn-dravo` gives its digits, and\n"
    "`dravo identify` reads its results.";

constexpr auto kVersions =
    "dravo " DRAVO_VERSION "\nqn-dravo " QN_DRAVO_VERSION ", revision " QN_DRAVO_REVISION;

int failed(int status, const std::string& message) {
  std::cerr << "dravo: " << message << '\n';
  return status;
}

/// Results are worth nothing when nobody got them.
int results_delivered(dravo::StandardOutput& output) {
  const std::string fault = output.delivered();
  return fault.empty() ? kDone : failed(kBadUsageOrInput, fault);
}

int bad_usage(const std::string& fault) {
  return failed(kBadUsageOrInput, fault + "\nRun with --help for more.");
}

/// Help and version are what was asked for; any other end of the parsing is bad usage.
int parsing_ended(const CLI::App& program, const CLI::ParseError& end,
                  dravo::StandardOutput& output) {
  if (end.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) {
    program.exit(end, std::cout, std::cerr);
    return results_delivered(output);
  }
  return bad_usage(dravo::fault_of_parsing(program, end));
}

void describe(CLI::App& program) {
  program.footer(kProgramFooter);
  program.set_version_flag("--version", kVersions);
  program.require_subcommand(1);
  dravo::add_prepare(program);
  dravo::add_identify(program);
  dravo::add_place(program);
  dravo::add_scan(program);
  dravo::add_dock(program);
  dravo::add_merge(program);
  dravo::add_extract(program);
  dravo::add_energy(program);
  dravo::add_export(program);
  dravo::add_collect(program);
  dravo::add_draw(program);
  dravo::add_view(program);
  dravo::add_convert(program);
  dravo::add_completion(program);
  for (CLI::App* command : program.get_subcommands({}))
    command->set_version_flag("--version", kVersions);
}

int run(int argc, char** argv) {
  CLI::App program("Prepares, identifies, places, scans and docks pairs of molecules", "dravo");
  describe(program);
  dravo::StandardOutput output;
  try {
    const auto fault =
        dravo::fault_before_parsing(program, {argv + std::min(argc, 1), argv + argc});
    if (fault) return bad_usage(*fault);
    program.parse(argc, argv);
    return results_delivered(output);
  } catch (const CLI::ParseError& end) {
    return parsing_ended(program, end, output);
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
  } catch (const dravo::EndedBySignal& end) {
    return failed(kSignal + end.signal(), end.what());
  } catch (const dravo::Error& failure) {
    return failed(kBadUsageOrInput, failure.what());
  } catch (const std::bad_alloc&) {
    return failed(kBadUsageOrInput, "cannot go on: there is not enough memory");
  } catch (const std::exception& failure) {
    return failed(kBadUsageOrInput, std::string("cannot go on: ") + failure.what());
  }
}
