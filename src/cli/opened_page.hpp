/// Pages in the browser of whoever runs the program.
#pragma once

#include <string>

namespace dravo {

/// Opens a file by xdg-open where there is a display, and does not wait for it. Returns what went
/// wrong, or nothing.
std::string open_page(const std::string& file);

}  // namespace dravo
