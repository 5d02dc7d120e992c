#include "cli/long_output.hpp"

#include <unistd.h>

#include <cstdio>
#include <utility>

#include "cli/commands.hpp"
#include "cli/output_file.hpp"
#include "common/output_folder.hpp"

namespace dravo {

LongOutput::LongOutput(std::string name, bool overwrite, const std::vector<std::string>& inputs)
    : name_(std::move(name)) {
  if (name_.empty()) {
    output_ = sink_to_descriptor(STDOUT_FILENO, "standard output");
    return;
  }
  refuse_inputs_as_output(name_, inputs);
  require_replaceable(name_, overwrite);
  watch_ = std::make_unique<InterruptionWatch>();
  file_ = std::make_unique<GrowingFile>(name_ + ".part");
  file_->cut(0, {});
}

LongOutput::~LongOutput() {
  if (file_) std::remove(file_->name().c_str());
}

void LongOutput::append(std::string_view text) {
  if (output_) {
    output_->write(text);
    return;
  }
  if (InterruptionWatch::noted() != 0)
    throw EndedBySignal("interrupted: " + name_ + " is not written", InterruptionWatch::noted());
  file_->append(text);
}

void LongOutput::finish() {
  if (file_) file_->finish(name_);
  file_.reset();
}

bool is_on_terminal(const std::string& name) {
  return name.empty() && ::isatty(STDOUT_FILENO) == 1;
}

}  // namespace dravo
