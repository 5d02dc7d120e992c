#include "common/errors.hpp"

#include <cerrno>
#include <system_error>
#include <utility>

namespace dravo {
namespace {

/// Every reason on a line of its own, then the advice.
std::string lines_of(const std::vector<std::string>& reasons, const std::string& advice) {
  std::string text;
  for (const std::string& reason : reasons) text.append(reason).append("\n");
  return text + advice;
}

}  // namespace

InvalidInput::InvalidInput(const std::string& message, InputPlace place)
    : Error(message), place_(std::move(place)) {}

OutOfRange::OutOfRange(const std::string& message, std::string name, double value, double lowest,
                       double highest)
    : Error(message), name_(std::move(name)), value_(value), lowest_(lowest), highest_(highest) {}

NoUniqueFrame::NoUniqueFrame(std::vector<int> molecules, std::vector<std::string> reasons,
                             const std::string& advice)
    : Error(lines_of(reasons, advice)),
      molecules_(std::move(molecules)),
      reasons_(std::move(reasons)) {}

NoRotationFound::NoRotationFound(Search search)
    : Error(
          "no rotation was found that relates the frames of the two molecules\n"
          "Turn the geometry of the pair a little and try again."),
      search_(search) {}

void throw_system_failure(const std::string& name, const char* action) {
  const int reason = errno;
  const std::string message =
      name + ": cannot " + action + ": " + std::generic_category().message(reason);
  if (reason == ENOSPC || reason == EDQUOT || reason == EFBIG) throw NoRoom(message);
  throw IoFailure(message);
}

}  // namespace dravo
