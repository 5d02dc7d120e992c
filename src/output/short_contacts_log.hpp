/// What the screen and the log tell of short contacts.
#pragma once

#include <span>

#include "common/atom_table.hpp"
#include "common/record_stream.hpp"
#include "output/short_contacts.hpp"

namespace dravo {

/// One report per contact, on the screen and in the log. A contact is a warning: the run goes on.
void write_short_contacts(RecordStream& screen, RecordStream& log,
                          std::span<const ShortContact> contacts, std::span<const Label> isymbol);

}  // namespace dravo
