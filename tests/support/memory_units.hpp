/// A run whose outputs stay in memory.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "common/output_folder.hpp"
#include "driver/run_units.hpp"

namespace dravo::test {

class TextSink final : public ByteSink {
 public:
  explicit TextSink(std::string& text) : text_(&text) {}
  void write(std::string_view bytes) override { text_->append(bytes); }

 private:
  std::string* text_;
};

class MemoryFolder final : public OutputFolder {
 public:
  std::unique_ptr<ByteSink> open(const std::string& name) override {
    files[name].clear();
    return std::make_unique<TextSink>(files[name]);
  }
  void replace(const std::string& name, std::string_view contents) override {
    files[name] = contents;
  }

  std::map<std::string, std::string> files;
};

/// Screen, warnings and files as text; call `units.finish()` before reading them.
struct MemoryUnits {
  std::string screen;
  std::string warnings;
  MemoryFolder folder;
  TextSink screen_sink{screen};
  TextSink warning_sink{warnings};
  RunUnits units{screen_sink, warning_sink, folder};
};

}  // namespace dravo::test
