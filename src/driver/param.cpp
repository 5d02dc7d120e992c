#include "driver/param.hpp"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "common/large_pages.hpp"
#include "driver/element_table.hpp"
#include "driver/output_names.hpp"
#include "driver/pair_files.hpp"
#include "driver/run_stop.hpp"
#include "orientation/molecule_alignment_log.hpp"
#include "orientation/pair_analysis.hpp"
#include "orientation/pair_analysis_log.hpp"
#include "output/bild_writer.hpp"
#include "output/placement.hpp"
#include "output/placement_log.hpp"
#include "output/short_contacts.hpp"
#include "output/short_contacts_log.hpp"
#include "output/xyz_writer.hpp"

namespace dravo {
namespace {

/// The seven work tables.
struct WorkTables {
  AtomTable originalcoo_and_m;                  ///< the pair as the last analysis found it
  AtomTable auxiliar;                           ///< aligned pair
  AtomTable coo_and_m_transl;                   ///< placed pair
  AtomTable inicial_posicao_correta_coo_and_m;  ///< aligned pair, as a cycle hands it to the next
  AtomTable final_coo_and_m;                    ///< placed pair, as checked and written
  AtomTable auxiliar_paralelas;                 ///< aligned pair, molecule 1 in molecule 2's frame
  AtomTable aux;                                ///< aligned pair, molecule 1 not turned
};

/// Tables of `rows` rows one behind the other in static storage, so that a small pair touches
/// little of it.
WorkTables work_tables(std::int32_t rows) {
  constexpr std::size_t kTables = 7;
  static std::array<double, kTables * kColumns * kMaxAtoms> storage;
  const std::size_t size = kColumns * static_cast<std::size_t>(rows);
  prefer_large_pages(storage.data(), kTables * size * sizeof(double));
  const auto table = [&](std::size_t k) {
    return AtomTable(std::span(storage).subspan(k * size, size), rows);
  };
  return {table(0), table(1), table(2), table(3), table(4), table(5), table(6)};
}

void warn_about_unknown_labels(const std::vector<std::int32_t>& rows,
                               std::span<const Label> isymbol, RunUnits& units) {
  if (rows.empty()) return;
  units.warn("warning: unknown element labels count as mass 0: " +
             describe_unknown_labels(rows, isymbol));
}

/// The analysis with its log; a pair that it refuses is a prescribed stop.
AnalysedPair analyse_or_stop(const MoleculeSplit& split, AnalysisTables& tables,
                             FullTurns full_turns, RunUnits& units) {
  PairAnalysisLog observer(units.screen(), units.log());
  try {
    return analyse_pair(split, tables, observer, full_turns);
  } catch (const NoUniqueFrame& failure) {
    write_stop(failure, units.screen(), units.log());
  } catch (const NoRotationFound& failure) {
    write_stop(failure, units.screen(), units.log());
  }
  throw RunStop{};
}

/// The placed pair as the text of its file, and behind it what tells another run where molecule 1
/// ends.
class GeometryText {
 public:
  GeometryText(const MoleculeSplit& split, const ConstAtomTable& placed,
               const ConstAtomTable& atomic_numbers) {
    write_geometry(text_, split.N, placed, atomic_numbers);
    size_ = text_.text().size();
    write_geometry_trailer(text_, split.n1);
  }

  [[nodiscard]] std::string_view of_pair() const { return of_input().substr(0, size_); }
  [[nodiscard]] std::string_view of_input() const { return text_.text(); }

 private:
  RecordStream text_;
  std::size_t size_ = 0;
};

void check_and_write(const OutputNames& names, const MoleculeSplit& split,
                     std::span<const Label> isymbol, const ConstAtomTable& final_coo_and_m,
                     const GeometryText& geometry, const Placement& placement, RunUnits& units) {
  const auto contacts = find_short_contacts(final_coo_and_m, split);
  write_short_contacts(units.screen(), units.log(), contacts, isymbol);
  const PairFileNames files = pair_file_names(names, !contacts.empty());
  RecordStream drawing;
  write_bild(drawing, placement.drawn_centre, placement.molecule1);
  units.write_file(files.geometry, geometry.of_pair());
  units.write_file(files.drawing, drawing.text());
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
  units.open_log();
  RecordStream& log = units.log();

  WorkTables tables = work_tables(N);
  AnalysisTables analysis{newcoo_and_m, tables.originalcoo_and_m, tables.auxiliar,
                          tables.inicial_posicao_correta_coo_and_m, tables.auxiliar_paralelas};
  const auto [frames, found, missed] =
      analyse_or_stop(split, analysis, build ? FullTurns::kept : FullTurns::folded, units);
  tables.aux.copy_rows(tables.auxiliar, N);
  if (!build) {
    alpha = found.alpha;
    beta = found.beta;
    gamma = found.gamma;
  }

  write_molecule_alignment(log);

  write_rotation_heading(log);
  write_position_heading(log);
  const Placement placement =
      build ? place_by_user(tables.auxiliar_paralelas, split, frames[0], {alpha, beta, gamma},
                            {r, theta, phi}, tables.coo_and_m_transl)
            : place_as_found(tables.aux, split, frames, tables.coo_and_m_transl);
  const GeometryText geometry(split, tables.coo_and_m_transl, tables.originalcoo_and_m);
  if (build) units.write_file("input-GEOMETRY.xyz", geometry.of_input());
  final_r = placement.applied.r;
  final_theta = placement.applied.theta;
  final_phi = placement.applied.phi;
  final_alpha = build ? alpha : 0.0;
  final_beta = build ? beta : 0.0;
  final_gamma = build ? gamma : 0.0;

  tables.final_coo_and_m.copy_rows(tables.coo_and_m_transl, N);
  check_and_write(names, split, isymbol, tables.final_coo_and_m, geometry, placement, units);
  write_log_trailer(log);
}

}  // namespace dravo
