#pragma once

#include <string>
#include <string_view>

namespace dravo {

/// A word as people type it in a shell: quoted where it has to be. Control characters and what is
/// not ASCII or UTF-8 are written as $'\x1b', which the usual shells know.
std::string shell_word(std::string_view word);

/// The same of the name of a file or of results: one that begins with a hyphen, such as "-a.xyz",
/// is no option then. "-" alone stays.
std::string shell_file(std::string_view name);

}  // namespace dravo
