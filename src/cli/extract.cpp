#include "results/extract.hpp"

#include <fmt/format.h>

#include <memory>
#include <string>
#include <string_view>

#include "cli/commands.hpp"
#include "cli/long_output.hpp"
#include "common/errors.hpp"
#include "results/result_files.hpp"

namespace dravo {
namespace {

constexpr auto kExtractFooter =
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

void extract(const ExtractCommand& command) {
  const ExtractRequest request{name_of_scan(command.scan),
                               IndexSelection::parse("--poses", command.poses), command.moving};
  LongOutput output(command.output, command.overwrite,
                    {request.scan + kRecordEnding, request.scan + ending_of(ResultFile::table)});
  extract_poses(request, [&](std::string_view frames) { output.append(frames); });
  output.finish();
}

}  // namespace

void add_extract(CLI::App& program) {
  CLI::App& command =
      *program.add_subcommand("extract", "Write frames of poses from the table of a scan");
  command.footer(kExtractFooter);
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
