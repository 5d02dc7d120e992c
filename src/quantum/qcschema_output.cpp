#include <exception>
#include <nlohmann/json.hpp>

#include "quantum/output_text.hpp"

namespace dravo {
namespace {

using Json = nlohmann::ordered_json;

std::vector<OutputAtom> atoms_in(const Json& molecule) {
  std::vector<OutputAtom> atoms;
  const Json& symbols = molecule.at("symbols");
  const Json& geometry = molecule.at("geometry");
  const auto coordinate = [&](std::size_t k) {
    return geometry.at(k).get<double>() * kAngstromPerBohr;
  };
  for (std::size_t i = 0; i < symbols.size(); ++i)
    atoms.push_back({symbols.at(i).get<std::string>(),
                     {coordinate(3 * i), coordinate(3 * i + 1), coordinate(3 * i + 2)}});
  return atoms;
}

/// As Psi4 calls them among what it found.
std::optional<SaptTerms> terms_in(const Json& result) {
  constexpr std::array kTermNames{"SAPT ELST ENERGY", "SAPT EXCH ENERGY", "SAPT IND ENERGY",
                                  "SAPT DISP ENERGY"};
  const auto extras = result.find("extras");
  if (extras == result.end() || !extras->contains("qcvars")) return std::nullopt;
  const Json& found = extras->at("qcvars");
  SaptTerms terms{};
  for (std::size_t k = 0; k < terms.size(); ++k) {
    if (!found.contains(kTermNames[k])) return std::nullopt;
    terms[k] = found.at(kTermNames[k]).get<double>();
  }
  return terms;
}

}  // namespace

QuantumOutput read_qcschema(const QuantumJob& job, std::string_view text) {
  try {
    const Json result = Json::parse(text);
    if (!result.at("success").get<bool>()) return {OutputState::failed};
    QuantumOutput output{OutputState::finished, result.at("return_result").get<double>()};
    output.atoms = atoms_in(result.at("molecule"));
    if (job.treatment == Treatment::sapt) output.terms = terms_in(result);
    return output;
  } catch (const std::exception&) {
    return {};
  }
}

}  // namespace dravo
