#include <algorithm>

#include "quantum/output_text.hpp"

namespace dravo {
namespace {

/// Of the n-body table: total energies of 1 body, which are those of the molecules together, and 2.
std::optional<double> difference_in(std::string_view text, Treatment treatment) {
  const std::string_view title = treatment == Treatment::counterpoise
                                     ? "==> N-Body: Counterpoise Corrected (CP)"
                                     : "==> N-Body: Non-Counterpoise Corrected (NoCP)";
  const std::string_view table = behind(behind(text, title), "Delta [kcal/mol]\n");
  const auto one = words_in(line_at(table, 0));
  const auto two = words_in(line_at(table, std::min(table.find('\n'), table.size()) + 1));
  if (one.size() < 2 || two.size() < 2 || one[0] != "1" || two[0] != "2") return std::nullopt;
  const auto apart = number_in_front(one[1]), together = number_in_front(two[1]);
  if (!apart || !together) return std::nullopt;
  return *together - *apart;
}

/// Psi4 prints thousandths of a Hartree.
std::optional<double> sapt_value(std::string_view results, std::string_view name) {
  constexpr double kMilli = 1e-3;
  const auto value = number_in_front(behind(results, name));
  return value ? std::optional(*value * kMilli) : std::nullopt;
}

/// What stands behind `name` and the method, or else behind the first `name` alone where
/// `or_alone`: "Total SAPT0", "Induction sSAPT0", "Induction". Methods are written in small and
/// large letters.
std::optional<double> value_of(std::string_view results, std::string_view name,
                               std::string_view method, bool or_alone) {
  for (std::string_view rest = behind(results, name); !rest.empty(); rest = behind(rest, name)) {
    const std::size_t end = std::min(rest.find(' '), rest.size());
    if (is_same_word(rest.substr(0, end), method)) return sapt_value(rest, " ");
  }
  return or_alone ? sapt_value(results, name) : std::nullopt;
}

void read_sapt(const QuantumJob& job, std::string_view text, QuantumOutput& output) {
  const std::string_view results = behind(text, "SAPT Results");
  output.energy = value_of(results, "\n  Total ", job.method, false);
  constexpr std::array kTermNames{"\n    Electrostatics ", "\n    Exchange ", "\n    Induction ",
                                  "\n    Dispersion "};
  SaptTerms terms{};
  for (std::size_t k = 0; k < terms.size(); ++k) {
    const auto value = value_of(results, kTermNames[k], job.method, true);
    if (!value) return;
    terms[k] = *value;
  }
  output.terms = terms;
}

}  // namespace

QuantumOutput read_psi4(const QuantumJob& job, std::string_view text) {
  QuantumOutput output;
  if (has(text, "*** Psi4 exiting successfully"))
    output.state = OutputState::finished;
  else if (has(text, "*** Psi4 encountered an error"))
    output.state = OutputState::failed;
  add_atoms(output.atoms, text, {"       Center              X ", 2, 0, 1});
  if (job.ghost != 0)
    output.energy = number_in_front(behind(text, "\"CURRENT ENERGY\""));
  else if (job.treatment == Treatment::sapt)
    read_sapt(job, text, output);
  else
    output.energy = difference_in(text, job.treatment);
  return output;
}

}  // namespace dravo
