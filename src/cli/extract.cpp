#include "results/extract.hpp"

#include <fmt/format.h>
#include <unistd.h>

#include <filesystem>
#include <iostream>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>

#include "cli/commands.hpp"
#include "cli/output_file.hpp"
#include "common/errors.hpp"
#include "results/growing_file.hpp"
#include "results/result_files.hpp"

namespace dravo {
namespace {

constexpr auto kFooter =
    "--poses takes numbers of the column index and ranges with both ends, FIRST:LAST or\n"
    "FIRST:LAST:STEP, with commas between, or all. Of a range the poses are written that the table\n"
    "has; a number that it lacks is an error. The poses come in the order of the table.\n"
    "Example: the table of a million poses, then the frames of some of them\n"
    "  dravo scan pair.xyz --r 3:8:0.001 --random 200 --table --output many\n"
    "  dravo extract many --poses 17,40:60 -o some.xyz";

struct ExtractCommand {
  std::string scan;
  std::string poses;
  bool moving = false;
  std::string output;
  bool overwrite = false;
};

/// NAME.csv is what people have before their eyes.
std::string name_of_scan(const std::string& given) {
  for (const std::string_view ending : {".csv", ".json", ".xyz"})
    if (given.ends_with(ending) && !has_finished_record(given))
      return given.substr(0, given.size() - ending.size());
  return given;
}

void refuse_input_as_output(const ExtractRequest& request, const std::string& output) {
  for (const std::string& input :
       {request.scan + kRecordEnding, request.scan + ending_of(ResultFile::table)}) {
    std::error_code ignored;  // what does not exist is not the same
    if (std::filesystem::equivalent(input, output, ignored))
      throw IoFailure(output + ": would be replaced by the frames; choose another --output");
  }
}

void write_file(const ExtractRequest& request, const std::string& output) {
  const std::string part = output + ".part";
  try {
    GrowingFile file(part);
    file.cut(0, {});
    extract_poses(request, [&](std::string_view frames) { file.append(frames); });
    file.finish(output);
  } catch (const Error&) {
    ::unlink(part.c_str());
    throw;
  }
}

void extract(const ExtractCommand& command) {
  const ExtractRequest request{name_of_scan(command.scan),
                               IndexSelection::parse("--poses", command.poses), command.moving};
  if (command.output.empty()) {
    extract_poses(request, [](std::string_view frames) { std::cout << frames; });
    return;
  }
  refuse_input_as_output(request, command.output);
  require_replaceable(command.output, command.overwrite);
  write_file(request, command.output);
}

}  // namespace

void add_extract(CLI::App& program) {
  CLI::App& command =
      *program.add_subcommand("extract", "Write frames of poses from the table of a scan");
  command.footer(kFooter);
  const auto options = std::make_shared<ExtractCommand>();
  command.add_option("name", options->scan, "what --output was for the scan")
      ->required()
      ->type_name("NAME");
  command.add_option("--poses", options->poses, "which ones, such as 17,40:60")
      ->required()
      ->type_name("LIST");
  command.add_flag("--moving", options->moving, "molecule 1 alone");
  command.add_option("-o,--output", options->output, "file to write (standard output)")
      ->type_name("FILE");
  command.add_flag("--overwrite", options->overwrite, "replace a file that exists");
  command.callback([options] { extract(*options); });
}

}  // namespace dravo
