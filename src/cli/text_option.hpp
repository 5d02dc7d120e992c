#pragma once

#include <CLI/CLI.hpp>
#include <string>

#include "dravo/error.hpp"

namespace dravo {

/// An option for what `Value::of_text` reads. What that refuses is wrong usage.
template <class Value>
CLI::Option* add_text_option(CLI::App& command, const char* name, Value& value, const char* help) {
  const auto read = [name, &value](const std::string& text) {
    try {
      value = Value::of_text(text);
    } catch (const InvalidInput& fault) {
      throw CLI::ValidationError(name, fault.what());
    }
  };
  return command.add_option_function<std::string>(name, read, help);
}

}  // namespace dravo
