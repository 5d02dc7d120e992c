#include "frames/symmetric_molecule_log.hpp"

#include "common/version.hpp"

namespace dravo {
namespace {

void write_explanation(RecordStream& out, const char* molecule, const char* frame) {
  out.repeat("    ", 2);
  out.record(molecule);
  out.record(" evaluation of a particular axis of inertia ");
  out.record(" It is not possible to undoubtedly define ");
  out.record(frame);
  out.record(" based on the higher-Z-CM procedure.");
  out.record(" Such issue is under investigation at ZPL ");
  out.record(" The program cannot proceed ");
  out.repeat("    ", 2);
}

void write_molecule1(RecordStream& out) {
  write_explanation(out, " Molecule 1 is symmetric concerning ", " a unique xyz system, ");
}

constexpr auto kMolecule2 = " Molecule 2 is symmetric concerning ";

void write_stop(RecordStream& out, const char* last_line) {
  out.blank();
  out.record(" program stopped");
  out.record(kStopVersionLine);
  out.record(last_line);
}

}  // namespace

void write_symmetric_molecules(std::span<const int> molecules, RecordStream& screen,
                               RecordStream& log) {
  for (const int molecule : molecules) {
    if (molecule == 1) {
      write_molecule1(screen);
      write_molecule1(log);
    } else {
      // The two copies differ in one letter; readers of either look for theirs.
      write_explanation(screen, kMolecule2, " a unique XYZ reference system, ");
      write_explanation(log, kMolecule2, " a unique ZYZ reference system, ");
    }
  }
  write_stop(screen, "  ");
  write_stop(log, kStopRevisionLine);
}

}  // namespace dravo
