#include <fmt/format.h>

#include <array>

#include "quantum/input_files.hpp"
#include "quantum/nwchem_theory.hpp"
#include "quantum/quantum_text.hpp"

namespace dravo {
namespace {

/// Without a list of its own a ghost has no functions at all.
std::string basis_block(const QuantumJob& job, const Pair& pair) {
  std::string text = "basis spherical\n";
  for (const std::string_view element : elements_of(pair))
    text += fmt::format(" {0} library {1}\n bq{0} library {0} {1}\n", element, job.basis);
  return text + "end\n";
}

std::string bsse_block(const QuantumJob& job, const Pair& pair) {
  constexpr std::array kMonomers{"first", "second"};
  std::string text = "bsse\n";
  for (std::size_t m = 0; m < kMonomers.size(); ++m) {
    text += fmt::format(" mon {}", kMonomers[m]);
    const std::int32_t begin = m == 0 ? 0 : pair.n1(), end = m == 0 ? pair.n1() : pair.size();
    constexpr std::int32_t kOnALine = 20;
    for (std::int32_t i = begin; i < end; ++i)
      text +=
          fmt::format("{}{}", i > begin && (i - begin) % kOnALine == 0 ? " \\\n  " : " ", i + 1);
    text += fmt::format("\n  charge {}\n  mult {}\n", job.charges[m], job.multiplicities[m]);
  }
  return text + "end\n";
}

std::string theory_block(const QuantumJob& job, const NwchemTheory& theory, int multiplicity) {
  if (theory.functional)
    return fmt::format("dft\n xc {}\n mult {}\nend\n", job.method, multiplicity);
  if (multiplicity == 1) return "";
  return fmt::format("scf\n nopen {}\n uhf\nend\n", multiplicity - 1);
}

}  // namespace

NwchemTheory nwchem_theory(const std::string& method) {
  const std::string name = small_letters(method);
  if (name == "hf" || name == "scf") return {"scf", "Total SCF energy", false};
  if (name == "mp2") return {"mp2", "Total MP2 energy", false};
  if (name == "ccsd") return {"ccsd", "Total CCSD energy", false};
  if (name == "ccsd(t)") return {"ccsd(t)", "Total CCSD(T) energy", false};
  return {"dft", "Total DFT energy", true};
}

std::string nwchem_input(const QuantumJob& job, const QuantumSystem& system,
                         const NumberedPair& pose) {
  const NwchemTheory theory = nwchem_theory(job.method);
  std::string text = fmt::format("# pose {}\nstart {}\n", pose.index, system.name);
  constexpr int kMegabytes = 1000;  // of each process
  if (job.memory > 0)
    text += fmt::format("memory total {} mb\n", kMegabytes * job.memory / job.cores);
  text += fmt::format("charge {}\n", charge_of(job, system));
  text += "geometry units angstrom nocenter noautosym noautoz\n";
  append_atom_lines(text, atoms_of(pose.pair, system), {"bq", ""});
  text += "end\n" + basis_block(job, pose.pair);
  if (in_one_file(job)) text += bsse_block(job, pose.pair);
  text += theory_block(job, theory, multiplicity_of(job, system));
  for (const std::string& line : job.keywords) text.append(line).append("\n");
  return text + fmt::format("task {} energy\n", theory.task);
}

}  // namespace dravo
