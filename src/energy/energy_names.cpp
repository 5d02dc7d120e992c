#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <string>
#include <vector>

#include "common/shown_text.hpp"
#include "dravo/energy.hpp"

namespace dravo {
namespace {

template <class Value>
struct Named {
  std::string_view name;
  Value value;
};

constexpr std::array<Named<EnergyMethod>, 4> kMethods{{{"gfnff", EnergyMethod::gfnff},
                                                       {"gfn2", EnergyMethod::gfn2},
                                                       {"gfn1", EnergyMethod::gfn1},
                                                       {"command", EnergyMethod::command}}};

constexpr std::array<Named<EnergyUnit>, 4> kUnits{{{"hartree", EnergyUnit::hartree},
                                                   {"ev", EnergyUnit::ev},
                                                   {"kcal/mol", EnergyUnit::kcal_mol},
                                                   {"kj/mol", EnergyUnit::kj_mol}}};

constexpr std::array<Named<EnergyStatus>, 5> kStatuses{
    {{"ok", EnergyStatus::ok},
     {"clash", EnergyStatus::clash},
     {"scf_fail", EnergyStatus::scf_fail},
     {"nonphysical", EnergyStatus::nonphysical},
     {"engine_died", EnergyStatus::engine_died}}};

template <class Table>
auto found_in(const Table& table, std::string_view name) {
  const auto found = std::find_if(table.begin(), table.end(),
                                  [&](const auto& entry) { return entry.name == name; });
  return found == table.end() ? std::nullopt : std::optional(found->value);
}

template <class Table, class Value>
std::string_view name_in(const Table& table, Value value) {
  return std::find_if(table.begin(), table.end(),
                      [&](const auto& entry) { return entry.value == value; })
      ->name;
}

template <class Table>
std::vector<std::string> names_in(const Table& table) {
  std::vector<std::string> names;
  names.reserve(table.size());
  for (const auto& entry : table) names.emplace_back(entry.name);
  return names;
}

template <class Table>
auto required(const Table& table, std::string_view name) {
  const auto found = found_in(table, name);
  if (found) return *found;
  throw InvalidInput(fmt::format("expected one of {}, found {}", fmt::join(names_in(table), ", "),
                                 dravo::quoted(name)));
}

}  // namespace

std::string_view name_of(EnergyMethod method) { return name_in(kMethods, method); }

EnergyMethod energy_method(std::string_view name) { return required(kMethods, name); }

std::vector<std::string> energy_method_names() { return names_in(kMethods); }

std::string_view name_of(EnergyUnit unit) { return name_in(kUnits, unit); }

EnergyUnit energy_unit(std::string_view name) { return required(kUnits, name); }

std::vector<std::string> energy_unit_names() { return names_in(kUnits); }

std::string_view name_of(EnergyStatus status) { return name_in(kStatuses, status); }

std::optional<EnergyStatus> energy_status(std::string_view name) {
  return found_in(kStatuses, name);
}

}  // namespace dravo
