/// Any bytes as what programs of quantum chemistry wrote, as a manifest, as a template, and as a
/// condition on the rows of a table.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "dravo/molecule.hpp"
#include "fuzz/expectations.hpp"
#include "quantum/manifest.hpp"
#include "quantum/output_files.hpp"
#include "quantum/user_template.hpp"
#include "results/row_filter.hpp"

namespace {

using namespace dravo;
using test::require;

constexpr auto kHeading = "index,r,contacts,status";
constexpr auto kRow = "17,4.25,0,ok";

/// One of each kind of computation.
std::array<QuantumJob, 4> jobs_of(QuantumProgram program) {
  std::array<QuantumJob, 4> jobs;
  for (QuantumJob& job : jobs) job.program = program;
  jobs[0].method = "scf";
  jobs[1].method = "mp2";
  jobs[1].treatment = Treatment::plain;
  jobs[2].method = "sapt0";
  jobs[2].treatment = Treatment::sapt;
  jobs[3].method = "b3lyp";
  jobs[3].ghost = 1;
  return jobs;
}

/// As those of every pair, which are compared with these.
bool are_somewhere(const std::vector<OutputAtom>& atoms) {
  return std::all_of(atoms.begin(), atoms.end(), [](const OutputAtom& atom) {
    const auto [x, y, z] = atom.position;
    return std::isfinite(x) && std::isfinite(y) && std::isfinite(z);
  });
}

void read_outputs(const std::string& text) {
  for (const auto program : {QuantumProgram::psi4, QuantumProgram::nwchem, QuantumProgram::cp2k,
                             QuantumProgram::xtb, QuantumProgram::qcschema})
    for (const QuantumJob& job : jobs_of(program)) {
      const QuantumOutput output = read_output(job, text);
      require(!output.energy || std::isfinite(*output.energy), "an energy is a number");
      if (!output.atoms.empty() && are_somewhere(output.atoms))
        require(are_those_of(output.atoms, output.atoms), "atoms are those that they are");
    }
}

void read_manifest(const std::string& text) {
  const std::string written = text_of(parse_manifest("manifest.json", text));
  require(text_of(parse_manifest("manifest.json", written)) == written,
          "a manifest is the same when it is written and read again");
}

void fill_template(const test::MemoryFolder& folder, const std::string& text) {
  const UserTemplate form(folder.write("form.inp", text), kHeading);
  const Pair pair(1, Molecule(std::vector<std::string>{"O", "C"}, {{0, 0, 0}, {0, 0, 3}}));
  const std::string filled = form.text({}, {17, pair}, kRow);
  if (text.find('{') == std::string::npos) require(filled == text, "what has no names stays");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  static const test::MemoryFolder folder;
  const std::string text = test::text_of(bytes, size);
  read_outputs(text);
  test::read_or_refuse([&] { read_manifest(text); });
  test::read_or_refuse([&] { fill_template(folder, text); });
  test::read_or_refuse([&] { (void)RowFilter(text, kHeading).holds(kRow); });
  return 0;
}
