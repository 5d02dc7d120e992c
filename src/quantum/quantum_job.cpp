#include "quantum/quantum_job.hpp"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <numeric>

#include "common/shown_text.hpp"
#include "dravo/error.hpp"
#include "driver/element_table.hpp"
#include "energy/electrons.hpp"
#include "quantum/quantum_text.hpp"

namespace dravo {
namespace {

/// What a program can do, and what it is asked for when nobody says anything else.
struct Abilities {
  QuantumProgram program;
  std::string_view name;
  bool ghosts;
  bool sapt;
  bool basis;
  std::string_view method;      ///< when none is given; empty: it has to be given
  bool counterpoise_by_itself;  ///< from one file
  bool plain_by_itself;
};

constexpr std::array<Abilities, 10> kAbilities{{
    {QuantumProgram::psi4, "psi4", true, true, true, "", true, true},
    {QuantumProgram::orca, "orca", true, false, true, "", false, false},
    {QuantumProgram::gaussian, "gaussian", true, false, true, "", true, false},
    {QuantumProgram::nwchem, "nwchem", true, false, true, "", true, false},
    {QuantumProgram::qchem, "qchem", true, false, true, "", false, false},
    {QuantumProgram::cp2k, "cp2k", true, false, true, "", true, false},
    {QuantumProgram::gamess, "gamess", true, false, true, "", false, false},
    {QuantumProgram::xtb, "xtb", false, false, false, "gfn2", false, false},
    {QuantumProgram::qcschema, "qcschema", true, true, true, "", false, false},
    {QuantumProgram::user, "template", false, false, false, "", false, true},
}};

const Abilities& abilities(QuantumProgram program) {
  return kAbilities.at(static_cast<std::size_t>(program));
}

constexpr std::array<std::string_view, 3> kTreatments{"counterpoise", "plain", "sapt"};

constexpr QuantumSystem kBoth{"pair", {Presence::real, Presence::real}};

/// A molecule, from 1, beside the other one.
QuantumSystem alone(int molecule, Presence other) {
  QuantumSystem system{molecule == 1 ? "molecule-1" : "molecule-2", {other, other}};
  system.molecules.at(static_cast<std::size_t>(molecule - 1)) = Presence::real;
  return system;
}

/// Files of programs are read line by line.
void require_one_line(const char* option, std::string_view text) {
  constexpr std::size_t kLongest = 200;
  const ColumnText shown = printable(text, kLongest);
  if (shown.whole && shown.text == text) return;
  throw InvalidInput(
      fmt::format("{}: expected one line of at most {} printable characters, found {}", option,
                  kLongest, dravo::quoted(text)));
}

/// HF-3c, r2SCAN-3c and their like.
bool has_own_basis(const QuantumJob& job) {
  const bool named = job.method.ends_with("3c") || job.method.ends_with("3C");
  return named && (job.program == QuantumProgram::orca || job.program == QuantumProgram::psi4 ||
                   job.program == QuantumProgram::qchem);
}

void require_able(const QuantumJob& job, const Abilities& program) {
  const auto refuse = [&](const char* option, const std::string& why) {
    throw InvalidInput(fmt::format("{}: {} {}", option, program.name, why));
  };
  if (job.treatment == Treatment::sapt && !program.sapt)
    refuse("--sapt", "has no symmetry-adapted perturbation theory here; psi4 has");
  if (job.ghost != 0 && !program.ghosts) refuse("--ghost", "has no basis functions to lend");
  if (job.ghost != 0 && job.treatment == Treatment::sapt)
    refuse("--ghost", "computes one molecule, and --sapt the interaction of two");
  if (job.treatment == Treatment::counterpoise && !program.ghosts)
    refuse("--counterpoise", "has no basis functions to correct for");
  if (job.program == QuantumProgram::user) return;  // a template asks for what it needs
  if (job.method.empty()) refuse("--method", "needs one, such as --method hf");
  const bool perturbation = small_letters(job.method).find("sapt") != std::string::npos;
  if (program.sapt && perturbation != (job.treatment == Treatment::sapt))
    throw InvalidInput(fmt::format("--method: {} {} --sapt", job.method,
                                   perturbation ? "needs the option" : "does not go with"));
  if (program.basis && job.basis.empty() && !has_own_basis(job))
    refuse("--basis", "needs one, such as --basis cc-pvdz");
  if (!program.basis && !job.basis.empty()) refuse("--basis", "has no choice of basis functions");
}

}  // namespace

std::vector<QuantumSystem> systems_of(const QuantumJob& job) {
  if (job.ghost != 0) return {alone(3 - job.ghost, Presence::ghost)};
  if (in_one_file(job)) return {kBoth};
  const Presence other =
      job.treatment == Treatment::counterpoise ? Presence::ghost : Presence::absent;
  return {kBoth, alone(1, other), alone(2, other)};
}

bool in_one_file(const QuantumJob& job) {
  const Abilities& program = abilities(job.program);
  if (job.ghost != 0) return false;
  if (job.treatment == Treatment::sapt) return true;
  return job.treatment == Treatment::counterpoise ? program.counterpoise_by_itself
                                                  : program.plain_by_itself;
}

int charge_of(const QuantumJob& job, const QuantumSystem& system) {
  int charge = 0;
  for (std::size_t m = 0; m < job.charges.size(); ++m)
    if (system.molecules[m] == Presence::real) charge += job.charges[m];
  return charge;
}

int multiplicity_of(const QuantumJob& job, const QuantumSystem& system) {
  int multiplicity = 1;
  for (std::size_t m = 0; m < job.multiplicities.size(); ++m)
    if (system.molecules[m] == Presence::real) multiplicity += job.multiplicities[m] - 1;
  return multiplicity;
}

int charge_of(const QuantumJob& job) { return charge_of(job, kBoth); }

int multiplicity_of(const QuantumJob& job) { return multiplicity_of(job, kBoth); }

std::string_view name_of(QuantumProgram program) { return abilities(program).name; }

QuantumProgram quantum_program(std::string_view name) {
  for (const Abilities& program : kAbilities)
    if (program.name == name) return program.program;
  throw InvalidInput(fmt::format("expected one of {}, found {}",
                                 fmt::join(quantum_program_names(), ", "), dravo::quoted(name)));
}

std::vector<std::string> quantum_program_names() {
  std::vector<std::string> names;
  names.reserve(kAbilities.size());
  for (const Abilities& program : kAbilities) names.emplace_back(program.name);
  return names;
}

Treatment usual_treatment(QuantumProgram program) {
  return abilities(program).ghosts ? Treatment::counterpoise : Treatment::plain;
}

std::string_view name_of(Treatment treatment) {
  return kTreatments.at(static_cast<std::size_t>(treatment));
}

Treatment treatment_of(std::string_view name) {
  const auto* const found = std::find(kTreatments.begin(), kTreatments.end(), name);
  if (found == kTreatments.end())
    throw InvalidInput(
        fmt::format("expected counterpoise, plain or sapt, found {}", dravo::quoted(name)));
  return static_cast<Treatment>(found - kTreatments.begin());
}

void complete(QuantumJob& job) {
  const Abilities& program = abilities(job.program);
  if (job.method.empty())
    job.method = job.treatment == Treatment::sapt ? "sapt0" : std::string(program.method);
  require_able(job, program);
  require_one_line("--method", job.method);
  if (job.method.find('\'') != std::string::npos)  // Psi4 has it within such quotes
    throw InvalidInput("--method: expected the name of a method, found " +
                       dravo::quoted(job.method));
  require_one_line("--basis", job.basis);
  for (const std::string& line : job.keywords) require_one_line("--keywords", line);
}

void require_possible(const QuantumJob& job, const Pair& pair) {
  const auto n1 = static_cast<std::size_t>(pair.n1());
  const std::span<const Label> labels(pair.labels());
  const std::array molecules{labels.first(n1), labels.subspan(n1)};
  for (std::size_t m = 0; m < molecules.size(); ++m) {
    const int protons = std::accumulate(molecules[m].begin(), molecules[m].end(), 0,
                                        [](int sum, const Label& label) {
                                          return sum + atomic_number_of_symbol(label).value_or(0);
                                        });
    const int electrons = protons - job.charges[m];
    if (electrons < 0)
      throw InvalidInput(
          fmt::format("--charges: molecule {} cannot have charge {:+}: its nuclei have {:+}", m + 1,
                      job.charges[m], protons));
    const int unpaired = job.multiplicities[m] - 1;
    if (unpaired >= 0 && unpaired <= electrons && unpaired % 2 == electrons % 2) continue;
    throw InvalidInput(
        fmt::format("--multiplicities: molecule {} with charge {} has {} electrons: expected an {} "
                    "multiplicity up to {}, found {}",
                    m + 1, charge_text(job.charges[m]), electrons,
                    electrons % 2 == 0 ? "odd" : "even", electrons + 1, job.multiplicities[m]));
  }
}

}  // namespace dravo
