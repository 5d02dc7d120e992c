#include <fmt/format.h>

#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "cli/commands.hpp"
#include "cli/output_file.hpp"
#include "cli/pair_options.hpp"
#include "common/output_folder.hpp"
#include "dravo/molecule.hpp"
#include "molecules/coordinate.hpp"
#include "molecules/fragments.hpp"
#include "molecules/input_file.hpp"

namespace dravo {
namespace {

constexpr auto kConvertFooter =
    "Writes extended xyz with element symbols, eight decimals, and a column with the molecule of\n"
    "each atom where FILE or --split divides them: what viewers and Python's ASE read.\n"
    "Example: the pair that qn-dravo wrote, which has atomic numbers\n"
    "  dravo convert '[0006.5-084-011]-(214-152-306)-QN-DRAVO.xyz' --split 6 -o pair.xyz";

struct ConvertCommand {
  SharedRequest request;
  std::string output;
  bool overwrite = false;
};

std::string frame_of(const AtomsFile& file) {
  std::vector<Vec3> positions = file.atoms.positions();
  for (Vec3& p : positions)
    p = {without_negative_zero(p.x), without_negative_zero(p.y), without_negative_zero(p.z)};
  return fmt::format("{}\nProperties=species:S:1:pos:R:3{}\n{}", file.atoms.size(),
                     file.n1 ? ":molecule:I:1" : "",
                     atom_lines(file.atoms.labels(), positions, file.n1));
}

void convert(const ConvertCommand& command) {
  const AtomsFile file = read_atoms(*command.request);
  tell(file.remarks);
  if (!file.n1)
    tell({shown_name(command.request->file) +
          ": which atoms are molecule 1 is not known; --split N1 or --split auto adds a column "
          "that says it"});
  const std::string text = frame_of(file);
  if (command.output.empty()) {
    std::cout << text;
    return;
  }
  refuse_inputs_as_output(command.output, {command.request->file});
  require_replaceable(command.output, command.overwrite);
  WorkingDirectory().replace(command.output, text);
  tell({file.n1 ? written_line(command.output, Pair(*file.n1, file.atoms))
                : fmt::format("wrote {}: {}", command.output, atoms_text(file.atoms.size()))});
}

}  // namespace

void add_convert(CLI::App& program) {
  CLI::App& command = *program.add_subcommand(
      "convert", "Write a file of qn-dravo, or any xyz file, as extended xyz with symbols");
  const auto options = std::make_shared<ConvertCommand>();
  options->request = add_pair_options(command);
  // Nothing is judged here: the pair of a run may have contacts as close as bonds.
  command.remove_option(command.get_option("--no-check"));
  command.get_option("pair")->description(
      "a file that qn-dravo or dravo wrote or reads, or any xyz file");
  command.add_option("-o,--output", options->output, "file to write (standard output)")
      ->type_name("FILE");
  command.add_flag("--overwrite", options->overwrite, "replace a file that exists");
  command.footer(kConvertFooter);
  command.callback([options] { convert(*options); });
}

}  // namespace dravo
