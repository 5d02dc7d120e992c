#include "driver/run_units.hpp"

#include "driver/banners.hpp"

namespace dravo {

void RunUnits::open_log() {
  if (log_file_) return;
  log_file_ = folder_->open(kLogFileName);
  log_.attach(log_file_.get());
  write_log_banner(log_);
}

void RunUnits::write_file(const std::string& name, const RecordStream& file) {
  folder_->replace(name, file.text());
}

void RunUnits::warn(const std::string& message) {
  warnings_->write(kMessagePrefix + message + "\n");
}

void RunUnits::flush() {
  screen_.flush();
  log_.flush();
}

}  // namespace dravo
