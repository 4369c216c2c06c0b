#pragma once

#include <skeigiot/ambiancestate.hpp>
#include <skeigiot/bodylanguagestate.hpp>
#include <skeigiot/facialpoints.hpp>
#include <skeigiot/forceobserver.hpp>
#include <skeigiot/personstate.hpp>
#include <skeigiot/ramp.hpp>

#include <ko/human/attentionstate.hpp>

#include <pybind11/pybind11.h>

#include <cstdint>
#include <limits>

/// \file
/// Enumerations as enum.IntEnum: the library returns members, and takes members and any other int, so that the library
/// itself refuses a value outside its list.

namespace binding
{

/// The Python class of an enumeration, made by bindEnumerations() and kept for the life of the process.
template <typename Enumeration>
inline PyObject* enumerationClass = nullptr;

template <typename Enumeration>
class EnumerationCaster
{
public:
  bool load(pybind11::handle source, bool)
  {
    if (!source || !PyLong_Check(source.ptr()) || PyBool_Check(source.ptr()))
      return false;
    int overflow = 0;
    const long long number = PyLong_AsLongLongAndOverflow(source.ptr(), &overflow);
    if (overflow != 0 || number < std::numeric_limits<std::int32_t>::min() ||
        number > std::numeric_limits<std::int32_t>::max())
      return false;
    value = static_cast<Enumeration>(static_cast<std::int32_t>(number));
    return true;
  }

  static pybind11::handle cast(Enumeration source, pybind11::return_value_policy, pybind11::handle)
  {
    return pybind11::handle(enumerationClass<Enumeration>)(static_cast<std::int32_t>(source)).release();
  }

protected:
  Enumeration value{};
};

}  // namespace binding

namespace pybind11::detail
{

/// Defines how an enumeration is cast, and its name in signatures.
#define SKEIGIOT_PYTHON_ENUMERATION(type, pythonName)               \
  template <>                                                       \
  class type_caster<type> : public binding::EnumerationCaster<type> \
  {                                                                 \
  public:                                                           \
    static constexpr auto name = const_name(pythonName);            \
    template <typename>                                             \
    using cast_op_type = type;                                      \
    operator type() const { return value; }                         \
  };

SKEIGIOT_PYTHON_ENUMERATION(KV::AmbianceDescription, "AmbianceDescription")
SKEIGIOT_PYTHON_ENUMERATION(KV::BodyLanguageDescription, "BodyLanguageDescription")
SKEIGIOT_PYTHON_ENUMERATION(KV::ExcitationState, "ExcitationState")
SKEIGIOT_PYTHON_ENUMERATION(KV::PersonDescription, "PersonDescription")
SKEIGIOT_PYTHON_ENUMERATION(KV::PleasureState, "PleasureState")
SKEIGIOT_PYTHON_ENUMERATION(KV::PointDescription, "PointDescription")
SKEIGIOT_PYTHON_ENUMERATION(KV::Quantity, "Quantity")
SKEIGIOT_PYTHON_ENUMERATION(KV::RampSlope, "RampSlope")
SKEIGIOT_PYTHON_ENUMERATION(KV::ZoneEvidence, "ZoneEvidence")
SKEIGIOT_PYTHON_ENUMERATION(ko::human::AttentionState, "AttentionState")

#undef SKEIGIOT_PYTHON_ENUMERATION

}  // namespace pybind11::detail
