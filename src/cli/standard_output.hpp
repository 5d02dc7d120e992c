/// Standard output of the program.
#pragma once

#include <memory>
#include <streambuf>
#include <string>
#include <string_view>

#include "common/byte_sink.hpp"

namespace dravo {

/// Takes what std::cout is given for as long as it exists, and remembers why standard output took
/// no more of it: a stream only knows that it failed.
class StandardOutput : public std::streambuf {
 public:
  StandardOutput();
  StandardOutput(const StandardOutput&) = delete;
  StandardOutput& operator=(const StandardOutput&) = delete;
  ~StandardOutput() override;

  /// Writes what is left. The message of the first write that failed, empty if none did.
  std::string delivered();

 protected:
  int_type overflow(int_type character) override;
  std::streamsize xsputn(const char* characters, std::streamsize count) override;
  int sync() override;

 private:
  bool writes(std::string_view text);

  std::unique_ptr<ByteSink> output_;
  std::streambuf* earlier_;
  std::string waiting_;
  std::string failure_;
};

}  // namespace dravo
