#include <nlohmann/json.hpp>
#include <string>

#include "common/version.hpp"
#include "dravo/energy.hpp"
#include "dravo/error.hpp"
#include "quantum/input_files.hpp"
#include "quantum/quantum_text.hpp"

namespace dravo {
namespace {

using Json = nlohmann::ordered_json;

/// Atoms from 0, those of each molecule that is there.
void add_fragments(Json& molecule, const QuantumJob& job, const std::vector<SystemAtom>& atoms) {
  Json fragments = Json::array(), charges = Json::array(), multiplicities = Json::array();
  for (int m = 1; m <= 2; ++m) {
    Json indices = Json::array();
    bool ghost = false;
    for (std::size_t k = 0; k < atoms.size(); ++k)
      if (atoms[k].molecule == m) {
        indices.push_back(k);
        ghost = atoms[k].ghost;
      }
    if (indices.empty()) continue;
    const auto i = static_cast<std::size_t>(m - 1);
    fragments.push_back(std::move(indices));
    charges.push_back(ghost ? 0 : job.charges.at(i));
    multiplicities.push_back(ghost ? 1 : job.multiplicities.at(i));
  }
  molecule["fragments"] = std::move(fragments);
  molecule["fragment_charges"] = std::move(charges);
  molecule["fragment_multiplicities"] = std::move(multiplicities);
}

Json molecule_of(const QuantumJob& job, const QuantumSystem& system, const NumberedPair& pose) {
  const std::vector<SystemAtom> atoms = atoms_of(pose.pair, system);
  Json symbols = Json::array(), geometry = Json::array(), real = Json::array();
  for (const SystemAtom& atom : atoms) {
    symbols.push_back(atom.symbol);
    real.push_back(!atom.ghost);
    for (const double x : {atom.position.x, atom.position.y, atom.position.z})
      geometry.push_back(x / kAngstromPerBohr);
  }
  Json molecule{{"schema_name", "qcschema_molecule"},
                {"schema_version", 2},
                {"symbols", std::move(symbols)},
                {"geometry", std::move(geometry)},
                {"real", std::move(real)}};
  add_fragments(molecule, job, atoms);
  molecule["molecular_charge"] = charge_of(job, system);
  molecule["molecular_multiplicity"] = multiplicity_of(job, system);
  molecule["fix_com"] = true;
  molecule["fix_orientation"] = true;
  molecule["fix_symmetry"] = "c1";
  molecule["provenance"] = {
      {"creator", "dravo"}, {"version", DRAVO_VERSION}, {"routine", "dravo export"}};
  molecule["extras"] = {{"index", pose.index}};
  return molecule;
}

/// "scf_type=pk": numbers and truths as such.
Json keywords_of(const QuantumJob& job) {
  Json keywords = Json::object();
  for (const std::string& word : job.keywords) {
    const std::size_t equals = word.find('=');
    if (equals == 0 || equals == std::string::npos)
      throw InvalidInput("--keywords: expected NAME=VALUE for qcschema, found \"" + word + "\"");
    const std::string value = word.substr(equals + 1);
    const Json parsed = Json::parse(value, nullptr, false);
    keywords[word.substr(0, equals)] =
        parsed.is_number() || parsed.is_boolean() ? parsed : Json(value);
  }
  return keywords;
}

}  // namespace

std::string qcschema_input(const QuantumJob& job, const QuantumSystem& system,
                           const NumberedPair& pose) {
  const Json input{{"schema_name", "qcschema_input"},
                   {"schema_version", 1},
                   {"molecule", molecule_of(job, system, pose)},
                   {"driver", "energy"},
                   {"model", {{"method", job.method}, {"basis", job.basis}}},
                   {"keywords", keywords_of(job)},
                   {"extras", {{"index", pose.index}, {"system", system.name}}}};
  return input.dump(1) + "\n";
}

}  // namespace dravo
