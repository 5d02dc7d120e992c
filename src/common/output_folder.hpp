/// The folder that takes the output files.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "common/byte_sink.hpp"

namespace dravo {

class OutputFolder {
 public:
  OutputFolder() = default;
  OutputFolder(const OutputFolder&) = delete;
  OutputFolder& operator=(const OutputFolder&) = delete;
  virtual ~OutputFolder() = default;

  /// A file that grows while the run goes on, started anew. Throws IoFailure.
  virtual std::unique_ptr<ByteSink> open(const std::string& name) = 0;

  /// A file that appears under its name only when it is complete; an earlier one is replaced.
  /// Throws IoFailure.
  virtual void replace(const std::string& name, std::string_view contents) = 0;
};

/// The working directory of the process.
class WorkingDirectory final : public OutputFolder {
 public:
  std::unique_ptr<ByteSink> open(const std::string& name) override;
  void replace(const std::string& name, std::string_view contents) override;
};

/// A sink over a file descriptor that stays open, such as standard output.
std::unique_ptr<ByteSink> sink_to_descriptor(int descriptor, const std::string& name);

}  // namespace dravo
