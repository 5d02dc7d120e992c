#include "driver/run_units.hpp"

#include "driver/banners.hpp"

namespace dravo {

void ScreenSink::write(std::string_view bytes) {
  if (failure_) return;
  try {
    sink_->write(bytes);
  } catch (const IoFailure& failure) {
    failure_ = failure;
  }
}

void ScreenSink::close() {
  if (failure_) throw IoFailure(*failure_);
}

void RunUnits::open_log() {
  if (log_file_) return;
  log_file_ = folder_->open(kLogFileName);
  log_.attach(log_file_.get());
  write_log_banner(log_);
}

void RunUnits::write_file(const std::string& name, std::string_view contents) {
  folder_->replace(name, contents);
}

void RunUnits::warn(const std::string& message) {
  try {
    warnings_->write(kMessagePrefix + message + "\n");
  } catch (const IoFailure&) {
    // A warning is no result: losing it loses nothing of the run.
  }
}

void RunUnits::finish() {
  log_.flush();
  if (log_file_) log_file_->close();
  screen_.flush();
  screen_sink_.close();
}

}  // namespace dravo
