#include <pybind11/pybind11.h>

#include <exception>

#include "dravo/energy.hpp"
#include "dravo/error.hpp"
#include "parts.hpp"

namespace dravo::python {
namespace {

/// Raises the exception of this name of dravo._errors.
template <class... Arguments>
void raise(const char* name, const Arguments&... arguments) {
  const py::object type = py::module_::import("dravo._errors").attr(name);
  const py::object exception = type(arguments...);
  PyErr_SetObject(type.ptr(), exception.ptr());
}

// Of the type that pybind11 calls.
void translate(std::exception_ptr failure) {  // NOLINT(performance-unnecessary-value-param)
  try {
    if (failure) std::rethrow_exception(failure);
  } catch (const InvalidInput& fault) {
    raise("InputError", fault.what(), fault.file(), fault.line(), fault.column());
  } catch (const OutOfRange& fault) {
    raise("OutOfRange", fault.what(), fault.name(), fault.value(), fault.lowest(), fault.highest());
  } catch (const NoUniqueFrame& refusal) {
    raise("NoUniqueFrame", refusal.what(), refusal.molecules(), refusal.reasons());
  } catch (const NoRotationFound& refusal) {
    raise("NoRotationFound", refusal.what());
  } catch (const EngineFailure& failed) {
    raise("EngineError", failed.what());
  } catch (const IoFailure& failed) {
    raise("FileError", failed.what());
  } catch (const Error& failed) {
    raise("Error", failed.what());
  }
}

}  // namespace

void add_failures(py::module_& /*core*/) { py::register_exception_translator(translate); }

}  // namespace dravo::python
