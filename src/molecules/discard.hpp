/// Outputs that nobody reads.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "common/output_folder.hpp"
#include "common/record_stream.hpp"

namespace dravo {

class DiscardingSink final : public ByteSink {
 public:
  void write(std::string_view /*bytes*/) override {}
};

class DiscardingFolder final : public OutputFolder {
 public:
  std::unique_ptr<ByteSink> open(const std::string& /*name*/) override {
    return std::make_unique<DiscardingSink>();
  }
  void replace(const std::string& /*name*/, std::string_view /*contents*/) override {}
};

}  // namespace dravo
