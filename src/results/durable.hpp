/// What the system has taken, and what is on the disk.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace dravo {

/// Writes all bytes from `offset` on. Messages have the `name`; throws IoFailure.
void write_at(int descriptor, const std::string& name, std::string_view bytes, std::int64_t offset);

/// The bytes of a file are on the disk when this returns, and can be found there. Throws IoFailure.
void sync_bytes(int descriptor, const std::string& name);

/// So are its owner, its times and its rights.
void sync_file(int descriptor, const std::string& name);

/// So are the names that files have in the folder of this file. File systems that cannot promise it
/// are not asked twice.
void sync_folder_of(const std::string& name);

/// Gives a complete file its name, for good. Throws IoFailure.
void put_in_place(const std::string& from, const std::string& to);

}  // namespace dravo
