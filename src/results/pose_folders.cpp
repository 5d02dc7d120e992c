#include "results/pose_folders.hpp"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

#include "common/descriptor.hpp"
#include "common/errors.hpp"
#include "driver/output_names.hpp"

namespace dravo {
namespace {

namespace fs = std::filesystem;

/// Distance, theta, phi; alpha, beta, gamma. '#' stands for a digit.
constexpr std::string_view kParameters = "[####.#-###-###]-(###-###-###)";
constexpr std::string_view kNoAngle = "NAD";
constexpr std::string_view kUnfinished = ".part";  // what a kill leaves

/// Takes the parameters off a name; false when it does not begin with them.
bool take_parameters(std::string_view& name) {
  for (std::size_t k = 0; k < kParameters.size();) {
    if (kParameters.substr(k).starts_with("###") && name.starts_with(kNoAngle)) {
      name.remove_prefix(kNoAngle.size());
      k += kNoAngle.size();
      continue;
    }
    if (name.empty()) return false;
    const bool digit = name[0] >= '0' && name[0] <= '9';
    if (kParameters[k] == '#' ? !digit : name[0] != kParameters[k]) return false;
    name.remove_prefix(1);
    ++k;
  }
  return true;
}

/// What follows the parameters in the names of a pose's files.
std::array<std::string, 4> endings_of_names() {
  const OutputNames names = output_names({});
  const auto ending = [](const std::string& name) { return name.substr(kParameters.size()); };
  return {ending(names.geometry), ending(names.drawing), ending(names.short_contact_geometry),
          ending(names.short_contact_drawing)};
}

/// Whether a file of a pose has this name, finished or not.
bool is_name_of_ours(std::string_view name) {
  if (!take_parameters(name)) return false;
  if (name.ends_with(kUnfinished)) name.remove_suffix(kUnfinished.size());
  static const std::array<std::string, 4> endings = endings_of_names();
  return std::find(endings.begin(), endings.end(), name) != endings.end();
}

struct Contents {
  std::vector<fs::path> ours;
  std::optional<fs::path> other;  ///< something in the folder, or the folder when it is none
};

Contents contents_of(const std::string& folder) {
  std::error_code failure;
  if (!fs::is_directory(fs::symlink_status(folder, failure))) return {{}, folder};
  Contents contents;
  for (const auto& entry : fs::directory_iterator(folder, failure)) {
    const bool ours = is_name_of_ours(entry.path().filename().string()) &&
                      entry.symlink_status().type() == fs::file_type::regular;
    if (ours)
      contents.ours.push_back(entry.path());
    else
      contents.other = entry.path();
  }
  if (failure) throw IoFailure(fmt::format("{}: cannot read: {}", folder, failure.message()));
  return contents;
}

void refuse_other(const Contents& contents) {
  if (contents.other)
    throw IoFailure(
        fmt::format("{}: is in the way and belongs to no scan; move it, or choose another --output",
                    contents.other->string()));
}

}  // namespace

PoseFolders::PoseFolders(std::string name, std::int64_t poses)
    : name_(std::move(name)), poses_(poses), digits_(std::to_string(poses).size()) {}

std::string PoseFolders::folder_of(std::int64_t index) const {
  return fmt::format("{}/{:0{}}", name_, index, digits_);
}

std::string PoseFolders::emptied(std::int64_t index) const {
  std::string folder = folder_of(index);
  constexpr mode_t kAsTheUserWants = 0777;
  int made = ::mkdir(folder.c_str(), kAsTheUserWants);
  if (made != 0 && errno == ENOENT) {
    std::error_code failure;
    fs::create_directories(name_, failure);
    if (failure)
      throw IoFailure(fmt::format("{}: cannot make the folder: {}", name_, failure.message()));
    made = ::mkdir(folder.c_str(), kAsTheUserWants);
  }
  if (made == 0) return folder;
  if (errno != EEXIST) throw_system_failure(folder, "make the folder");
  const Contents earlier = contents_of(folder);
  refuse_other(earlier);
  for (const fs::path& file : earlier.ours)
    if (::unlink(file.c_str()) != 0) throw_system_failure(file.string(), "remove");
  return folder;
}

std::optional<std::int64_t> PoseFolders::index_in(const std::string& entry) const {
  std::int64_t index = 0;
  const char* const end = entry.data() + entry.size();
  const auto [stop, error] = std::from_chars(entry.data(), end, index);
  const bool whole = error == std::errc{} && stop == end && entry.size() == digits_;
  return whole && index >= 1 && index <= poses_ ? std::optional(index) : std::nullopt;
}

template <class Fails>
std::int64_t PoseFolders::first_that(std::int64_t first, std::int64_t end,
                                     const Fails& fails) const {
  std::int64_t lowest = 0;
  std::error_code ignored;  // whatever it is, making the folders meets it too
  for (const auto& entry : fs::directory_iterator(name_, ignored)) {
    const auto index = index_in(entry.path().filename().string());
    if (!index || *index <= first || *index > end || (lowest != 0 && *index > lowest)) continue;
    if (fails(contents_of(entry.path().string()))) lowest = *index;
  }
  return lowest;
}

std::optional<std::string> PoseFolders::used(std::int64_t first, std::int64_t end) const {
  const std::int64_t index = first_that(first, end, [](const Contents& contents) {
    return contents.other || !contents.ours.empty();
  });
  return index == 0 ? std::nullopt : std::optional(folder_of(index));
}

void PoseFolders::require_own(std::int64_t first, std::int64_t end) const {
  const std::int64_t index =
      first_that(first, end, [](const Contents& contents) { return contents.other.has_value(); });
  if (index != 0) refuse_other(contents_of(folder_of(index)));
}

void PoseFolders::sync() const {
  const Descriptor folder(::open(name_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (folder.get() < 0 && errno == ENOENT) return;  // no pose was written yet
  if (folder.get() < 0) throw_system_failure(name_, "open");
  if (::syncfs(folder.get()) != 0) throw_system_failure(name_, "write");
}

}  // namespace dravo
