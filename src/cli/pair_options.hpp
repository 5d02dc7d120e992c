/// Options that say where a pair of molecules is.
#pragma once

#include <CLI/CLI.hpp>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "dravo/contacts.hpp"
#include "dravo/molecule.hpp"
#include "dravo/place.hpp"

namespace dravo {

/// Filled when the arguments are parsed; shared by the options and the work of a command.
using SharedRequest = std::shared_ptr<PairRequest>;

/// Atoms of molecule 1 where the user says so.
std::optional<std::int32_t> n1_of(const PairRequest& request);

/// What tells how the file of a pair is read, but for its frame: `--split N1|auto`, `--unit UNIT`
/// and `--no-check`.
void add_reading_options(CLI::App& command, const SharedRequest& request);

/// The same and `--frame K`.
void add_split_options(CLI::App& command, const SharedRequest& request);

/// The file of a pair as first argument.
SharedRequest add_pair_file(CLI::App& command);

/// The file of a pair as first argument, and how it is read.
SharedRequest add_pair_options(CLI::App& command);

/// `--like FILE`, the file of the same pair whose axes are carried along.
CLI::Option* add_like_option(CLI::App& command, std::string& file);

/// The pair of `--like`; empty without the option. Where its file does not tell, it is divided as
/// the pair that was read by the request: by bonds, or after `n1` atoms. Throws InvalidInput and
/// IoFailure.
std::optional<Pair> reference_pair(const std::string& file, const PairRequest& request,
                                   std::optional<std::int32_t> n1);

/// How poses are placed, and by whose axes.
struct PlacingOptions {
  Placing placing = Placing::automatic;
  std::string like;  ///< file of the reference; empty for none
};

/// `--exact`, `--as-qn-dravo` and `--like FILE`.
void add_placing_options(CLI::App& command, PlacingOptions& options);

/// What `--help` of every command says of `--contact-distance`.
inline constexpr auto kContactDistanceType = "D|vdw*F";
inline constexpr auto kContactDistanceHelp =
    "atoms of different molecules up to D Angstrom are in short contact (1.9), or up to F times the "
    "sum of their van der Waals radii";

/// `--contact-distance D|vdw*F`.
void add_contact_option(CLI::App& command, ContactCriterion& criterion);

/// That the clearance of the pair leaves atoms out, on standard error.
void tell_of_unknown_radii(const Pair& pair);

/// A second argument, the file of molecule 2.
void add_second_file(CLI::App& command, const SharedRequest& request);

/// Every message on a line of its own on standard error.
void tell(const std::vector<std::string>& messages);

}  // namespace dravo
