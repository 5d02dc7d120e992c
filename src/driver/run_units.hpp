/// The output side of a run: screen, log, files, warnings.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "common/errors.hpp"
#include "common/output_folder.hpp"
#include "common/record_stream.hpp"

namespace dravo {

inline constexpr auto kLogFileName = "QN-LOG-PARAM.txt";

/// Text at the head of every message on standard error.
inline constexpr auto kMessagePrefix = "qn-dravo: ";

/// Takes the screen output. A screen that is lost costs no file: the failure is kept to the end.
class ScreenSink final : public ByteSink {
 public:
  explicit ScreenSink(ByteSink& sink) : sink_(&sink) {}

  void write(std::string_view bytes) override;

  /// Throws the first failure.
  void close() override;

 private:
  ByteSink* sink_;
  std::optional<IoFailure> failure_;
};

class RunUnits {
 public:
  /// `screen` takes standard output, `warnings` what does not belong to it. Both and `folder` must
  /// outlive the units.
  RunUnits(ByteSink& screen, ByteSink& warnings, OutputFolder& folder)
      : screen_sink_(screen), screen_(&screen_sink_), warnings_(&warnings), folder_(&folder) {}

  RecordStream& screen() { return screen_; }
  RecordStream& log() { return log_; }

  /// Opens the log and writes its banner; opening the open log again has no effect.
  void open_log();

  /// A file of the output folder, all at once.
  void write_file(const std::string& name, std::string_view contents);

  /// One line beside the results. The run goes on even where nobody can read it.
  void warn(const std::string& message);

  /// Brings every record to its file, the log first. Throws IoFailure, also for a screen that was
  /// lost earlier.
  void finish();

 private:
  ScreenSink screen_sink_;
  RecordStream screen_;
  RecordStream log_;
  std::unique_ptr<ByteSink> log_file_;
  ByteSink* warnings_;
  OutputFolder* folder_;
};

}  // namespace dravo
