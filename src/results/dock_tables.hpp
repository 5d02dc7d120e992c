/// The tables of a docking: its starts, and the minima that it found.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "dravo/dock.hpp"
#include "dravo/place.hpp"
#include "results/columns.hpp"
#include "results/scan_totals.hpp"

namespace dravo {

/// start, end, energy, six parameters, evaluations; all digits, so that what is read back is what
/// was written.
Columns<DockStart> columns_of_starts(const DockOptions& options);

/// A minimum as the results tell it.
struct DockRow {
  std::int64_t rank = 0;  ///< from 1, by the energy of `DockOptions::score`
  DockMinimum minimum{};
  double shortest = 0.0;            ///< distance between the molecules, Angstrom
  std::int64_t contacts = 0;        ///< short ones
  std::int64_t hydrogen_bonds = 0;  ///< how many `hydrogen_bonds` finds
};

/// rank, energies by the names of their methods, six parameters, starts, refined, shortest,
/// contacts, hydrogen_bonds. Energies in kcal/mol with six decimals, parameters with all digits.
Columns<DockRow> columns_of_minima(const DockOptions& options);

/// The pair at a minimum.
Pair pair_at(const Placer& placer, const PoseDegrees& pose);

/// The results of a docking as text.
struct DockTexts {
  std::string table;   ///< with its heading
  std::string frames;  ///< extended xyz, with the columns of the table in the comment lines
  ScanTotals totals;   ///< of the minima; but `poses` counts starts
};

/// Of these minima, best first.
DockTexts texts_of(const Placer& placer, const DockOptions& options,
                   std::span<const DockMinimum> minima);

/// The rows of a table of this name. Throws IoFailure for other ones.
template <class Row>
std::vector<Row> read_table(const std::string& table, const Columns<Row>& columns);

extern template std::vector<DockStart> read_table(const std::string&, const Columns<DockStart>&);
extern template std::vector<DockRow> read_table(const std::string&, const Columns<DockRow>&);

}  // namespace dravo
