#pragma once

#include <ko/api.hpp>
#include <ko/nativetypes.hpp>
#include <ko/typeinterface.hpp>

#include <atomic>
#include <memory>
#include <string>
#include <string_view>
#include <typeinfo>
#include <vector>

/// \file
/// The registry of types: from a C++ type, or from a class name alone, to the interface that describes it.
///
/// May be used at any time, static initialisation and end of the process included. Registered types stay for the
/// life of the process, so a library that registers types must stay loaded. All of it is safe from any thread. If
/// memory runs out, a call throws and registers nothing.

namespace ko
{

/// Makes a struct known by its class name.
///
/// \return false, and nothing changes, if `type` is null or not a Struct, or another one has this class name already.
KO_API bool registerStruct(TypeInterface* type);

/// Binds a C++ type to the interface that describes it; a Struct is made known by its class name as well.
///
/// \return false, and nothing changes, if `type` is null, or the C++ type is bound already.
KO_API bool registerType(const std::type_info& info, TypeInterface* type);

/// Returns the interface that a C++ type is bound to, or null.
KO_API TypeInterface* getType(const std::type_info& info);

/// Returns the struct of this class name, or null. Spelling is normalised, and a leading "::" makes no difference.
KO_API StructTypeInterface* findStruct(std::string_view className);

/// Returns all structs known by class name, in the order of registration.
KO_API std::vector<StructTypeInterface*> registeredStructs();

/// Returns the interface of a C++ type, or null if it is a class that nobody registered (yet).
///
/// bool, integers, enumerations, float, double and std::string need no registration; nor do vectors, maps, optionals,
/// pairs and tuples. Takes a lock until the type is known, and none from then on.
template <typename T>
KO_API TypeInterface* typeOf()
{
  static std::atomic<TypeInterface*> known{nullptr};
  TypeInterface* type = known.load(std::memory_order_acquire);
  if (type)
    return type;

  type = getType(typeid(T));
  if (!type)
  {
    std::unique_ptr<TypeInterface> made = detail::NativeType<T>::make();
    if (registerType(typeid(T), made.get()))
      static_cast<void>(made.release());  // owned by the registry from now on
    type = getType(typeid(T));
  }
  known.store(type, std::memory_order_release);
  return type;
}

namespace detail
{

/// Returns the one spelling of a class name: single blanks, and only between words; no "class", "struct" or "enum";
/// no inline namespaces of the standard library. A leading "::" stays as it is.
KO_API std::string normalizeClassName(std::string_view name);

}  // namespace detail

}  // namespace ko
