#pragma once

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <string>

#include "dravo/error.hpp"

namespace dravo {

/// What a function throws is about this option.
template <class Function>
auto about(const char* option, Function&& function) {
  try {
    return function();
  } catch (const InvalidInput& fault) {
    throw InvalidInput(fmt::format("{}: {}", option, fault.what()));
  }
}

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
