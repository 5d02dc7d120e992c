/// What engines of energies say: none of it is trusted, and messages show a line of it at most.
#pragma once

#include <iosfwd>
#include <optional>
#include <regex>
#include <string>

#include "energy/xtb_protocol.hpp"

namespace dravo {

/// What a program printed.
struct Printed {
  std::optional<double> energy;  ///< of the last match, if that is a finite number
  std::string last_line;         ///< with something in it, for messages
};

/// `expression` has one group, the energy.
Printed read_printed(std::istream& in, const std::regex& expression);

/// Why libxtb failed. It writes "-3- a: this failed", a line for each routine that gave up: the
/// last one has the cause.
std::string cause_of(const XtbReply& reply);

/// ": " and the line in which a process that died says why; empty without one.
std::string complaint_in(std::istream& printed);

}  // namespace dravo
