#include "driver/param.hpp"

#include <string>
#include <vector>

#include "driver/banners.hpp"
#include "driver/element_table.hpp"
#include "driver/output_names.hpp"
#include "driver/pair_analysis.hpp"
#include "inertia/centre_of_mass.hpp"
#include "orientation/molecule_alignment.hpp"
#include "orientation/rotations.hpp"
#include "output/bild_writer.hpp"
#include "output/placement.hpp"
#include "output/short_contacts.hpp"
#include "output/xyz_writer.hpp"

namespace dravo {
namespace {

/// The seven work tables.
struct WorkTables {
  AtomTable originalcoo_and_m;                  ///< the pair as the last analysis found it
  AtomTable auxiliar;                           ///< aligned pair, then molecule 1 placed
  AtomTable coo_and_m_transl;                   ///< placed pair
  AtomTable inicial_posicao_correta_coo_and_m;  ///< aligned pair
  AtomTable final_coo_and_m;                    ///< placed pair, as checked and written
  AtomTable auxiliar_paralelas;                 ///< molecule 1 in molecule 2's frame, then turned
  AtomTable aux;                                ///< aligned pair, molecule 1 not turned
};

WorkTables& work_tables() {
  static std::array<AtomStorage<kMaxAtoms>, 7> storage;
  static WorkTables tables{AtomTable(storage[0]), AtomTable(storage[1]), AtomTable(storage[2]),
                           AtomTable(storage[3]), AtomTable(storage[4]), AtomTable(storage[5]),
                           AtomTable(storage[6])};
  return tables;
}

void warn_about_unknown_labels(const std::vector<std::int32_t>& rows,
                               std::span<const Label> isymbol, RunUnits& units) {
  if (rows.empty()) return;
  units.warn("warning: unknown element labels count as mass 0: " +
             describe_unknown_labels(rows, isymbol));
}

/// Molecule 1 into molecule 2's frame, in `auxiliar_paralelas`. `aux` keeps the pair as it is.
void bring_together(const MoleculeSplit& split, const EulerAngles& found, const Vec3& cm1,
                    WorkTables& tables) {
  tables.auxiliar_paralelas.copy_rows(tables.auxiliar, split.N);
  tables.aux.copy_rows(tables.auxiliar, split.N);
  align_molecule1(tables.auxiliar_paralelas, split.molecule1(), found, cm1);
}

/// Writes input-GEOMETRY.xyz, the pair with molecule 1 at its new place.
void write_input_geometry(const MoleculeSplit& split, const WorkTables& tables, RunUnits& units) {
  RecordStream file;
  write_geometry(file, split.N, tables.auxiliar, tables.originalcoo_and_m);
  write_geometry_trailer(file, split.n1);
  units.write_file("input-GEOMETRY.xyz", file);
}

/// Moves molecule 1 to the user's position and its tips with it; the placed pair ends in
/// `coo_and_m_transl`, and the centres of mass become those of the placed atoms.
void place_by_user(const MoleculeSplit& split, const SphericalPosition& user, PairOfFrames& frames,
                   WorkTables& tables, RunUnits& units) {
  const Vec3 translation = cartesian(user) - frames[0].cm;
  tables.auxiliar.copy_rows(tables.auxiliar_paralelas, split.molecule1().end);
  translate_rows(tables.auxiliar, split.molecule1(), translation);
  write_input_geometry(split, tables, units);
  tables.coo_and_m_transl.copy_rows(tables.auxiliar, split.N);

  for (Vec3& tip : frames[0].tips) tip = tip + translation;
  frames[0].cm = centre_of_mass(tables.coo_and_m_transl, split.molecule1());
  frames[1].cm = centre_of_mass(tables.coo_and_m_transl, split.molecule2());
}

/// Identification: molecule 1 goes to the position measured where it stands. It moves only when
/// molecule 2's centre of mass is not the origin. The centres of mass stay as analysed.
void place_as_found(const MoleculeSplit& split, PairOfFrames& frames, WorkTables& tables) {
  const Vec3 translation = cartesian(measured_position(frames[0].cm, frames[1].cm)) - frames[0].cm;
  translate_rows(tables.aux, split.molecule1(), translation);
  tables.coo_and_m_transl.copy_rows(tables.aux, split.N);
  for (Vec3& tip : frames[0].tips) tip = tip + translation;
}

/// Short contacts choose the names of the pair of files.
void check_and_write(const OutputNames& names, const MoleculeSplit& split,
                     std::span<const Label> isymbol, const WorkTables& tables,
                     const MoleculeFrame& molecule1, const Vec3& drawn_centre, RunUnits& units) {
  const auto contacts = find_short_contacts(tables.final_coo_and_m, split);
  write_short_contacts(units.screen(), units.log(), contacts, isymbol);

  RecordStream geometry;
  RecordStream drawing;
  write_geometry(geometry, split.N, tables.final_coo_and_m, tables.final_coo_and_m);
  write_bild(drawing, drawn_centre, molecule1);
  const bool found = !contacts.empty();
  units.write_file(found ? names.short_contact_geometry : names.geometry, geometry);
  units.write_file(found ? names.short_contact_drawing : names.drawing, drawing);
}

void write_log_trailer(RecordStream& log) {
  log.blank();
  log.repeat(" USER-DEFINED PARAMETERS APPLIED ", 5);
  log.blank(2);
}

}  // namespace

void param([[maybe_unused]] WorkText& work_text, const std::int32_t& N, const std::int32_t& n1,
           std::span<Label> isymbol, AtomTable& newcoo_and_m, double& final_r, double& final_alpha,
           double& final_beta, double& final_gamma, const char& mode_flag, double& final_theta,
           double& final_phi, const double& theta, const double& phi, double& alpha, double& beta,
           double& gamma, const double& r, RunUnits& units) {
  const bool build = mode_flag == kBuildMode;
  const MoleculeSplit split{N, n1};
  const OutputNames names = build_output_names({r, theta, phi, alpha, beta, gamma}, units.screen());
  warn_about_unknown_labels(resolve_elements(N, isymbol, newcoo_and_m), isymbol, units);

  WorkTables& tables = work_tables();
  AnalysisTables analysis{newcoo_and_m, tables.originalcoo_and_m, tables.auxiliar,
                          tables.inicial_posicao_correta_coo_and_m};
  PairOfFrames frames = align_pair(split, analysis, units);
  EulerAngles found = find_euler_angles(frames, units);

  write_molecule_alignment(units.log());
  if (!build) {
    found = full_turns_folded(found);
    alpha = found.alpha;
    beta = found.beta;
    gamma = found.gamma;
  }
  bring_together(split, found, frames[0].cm, tables);

  write_rotation_heading(units.log());
  final_alpha = build ? alpha : 0.0;
  final_beta = build ? beta : 0.0;
  final_gamma = build ? gamma : 0.0;
  const Matrix3 user_rotation =
      build ? euler_matrix(alpha, beta, gamma) : euler_matrix(kNoTurn, kNoTurn, kNoTurn);
  turn_rows(tables.auxiliar_paralelas, split.molecule1(), user_rotation, frames[0].cm);

  write_position_heading(units.log());
  if (build) {
    place_by_user(split, {r, theta, phi}, frames, tables, units);
  } else {
    place_as_found(split, frames, tables);
  }
  const SphericalPosition applied = measured_position(frames[0].cm, frames[1].cm);
  final_r = applied.r;
  final_theta = applied.theta;
  final_phi = applied.phi;

  tables.final_coo_and_m.copy_rows(tables.coo_and_m_transl, N);
  check_and_write(names, split, isymbol, tables, frames[0], cartesian(applied), units);
  write_log_trailer(units.log());
}

}  // namespace dravo
