#include "module.hpp"
#include "unlocked.hpp"

#include <cstddef>
#include <exception>
#include <stdexcept>

namespace
{

/// A query to an empty memory is a failed look-up.
void translateEmptyMemory(std::exception_ptr exception)
{
  try
  {
    if (exception)
      std::rethrow_exception(exception);
  }
  catch (const std::range_error& error)
  {
    PyErr_SetString(PyExc_LookupError, error.what());
  }
}

/// Replaces pybind11's allocation, which would give memory without an object to methods of an uninitialised object.
void* refuseUnmade(std::size_t)
{
  throw pybind11::type_error(
      "this object was made by __new__() alone, so it holds nothing: call the class, or __init__() first");
}

/// Every operation refuses objects of this module that are not initialised.
void refuseUnmadeObjects(const pybind11::module_& module)
{
  for (const auto& [name, value] : module.attr("__dict__").cast<pybind11::dict>())
    if (PyType_Check(value.ptr()))
      if (auto* const type = pybind11::detail::get_type_info(reinterpret_cast<PyTypeObject*>(value.ptr())))
        type->operator_new = &refuseUnmade;
}

}  // namespace

PYBIND11_MODULE(_skeigiot, module)
{
  module.doc() = "The compiled part of the package skeigiot; use the names of that package.";
  module.attr("__version__") = SKEIGIOT_VERSION;
  pybind11::register_exception_translator(translateEmptyMemory);

  // Classes name the module in which users find them.
  const auto under = [&module](const char* package, auto... bind) {
    module.attr("__name__") = package;
    (bind(module), ...);
  };
  const pybind11::object name = module.attr("__name__");
  using namespace binding;
  under("skeigiot", bindEnumerations);
  under("skeigiot.ko", bindTimes, bindClock, bindLog);
  under("skeigiot", bindRecords, bindFacialPoints, bindObservation, bindFinite, bindMemory, bindRamp);
  under("skeigiot.classification", bindClassification);
  under("skeigiot", bindBodyLanguage, bindAmbiance, bindState, bindPerson, bindPacer, bindGraph, bindRecorder,
        bindForces, bindReplay, bindStudy);
  module.attr("__name__") = name;
  refuseUnmadeObjects(module);
  endWithoutDaemonThreads();
}
