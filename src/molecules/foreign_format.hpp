/// Files of other formats, which are not read but known: a message tells how to convert them.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace dravo {

/// What to say of a text that could not be read as xyz: the format that it has and the command that
/// converts it. Empty for a format that is not known. The command writes a file that does not exist
/// yet.
///
/// `name` is that of the file, or "-" for standard input; of `text` the first part is enough, some
/// thousand lines.
std::optional<std::string> foreign_format_message(const std::string& name, std::string_view text);

/// A name as a shell takes it: in quotes where it needs them, never like an option.
std::string shell_word(const std::string& name);

}  // namespace dravo
