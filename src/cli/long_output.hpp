/// Texts of any length that a command writes bit by bit.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "common/byte_sink.hpp"
#include "results/growing_file.hpp"
#include "results/interruption.hpp"

namespace dravo {

/// Standard output, or a file that gets its name when it is complete and goes when it is not.
class LongOutput {
 public:
  /// `name` is empty for standard output. Throws IoFailure when the file may not be written, or is
  /// one of `inputs`.
  LongOutput(std::string name, bool overwrite, const std::vector<std::string>& inputs);
  LongOutput(const LongOutput&) = delete;
  LongOutput& operator=(const LongOutput&) = delete;
  ~LongOutput();

  /// Throws IoFailure, and EndedBySignal after Ctrl-C while a file is written.
  void append(std::string_view text);

  void finish();

 private:
  std::string name_;
  std::unique_ptr<ByteSink> output_;  ///< without a name
  std::unique_ptr<InterruptionWatch> watch_;
  std::unique_ptr<GrowingFile> file_;
};

/// Whether the text of this name goes to a terminal, where it is its own progress.
bool is_on_terminal(const std::string& name);

}  // namespace dravo
