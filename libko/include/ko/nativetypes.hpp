#pragma once

#include <ko/api.hpp>
#include <ko/typeinterface.hpp>

#include <boost/optional/optional.hpp>

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <tuple>
#include <type_traits>
#include <typeinfo>
#include <utility>
#include <vector>

/// \file
/// The interfaces of the types that need no registration. Programs use them through ko::typeOf().

namespace ko
{

template <typename T>
KO_API TypeInterface* typeOf();

namespace detail
{

/// The common part of all C++ types that can be made and copied; the storage is the address of the object.
template <typename T, typename Interface>
class TypeBase : public Interface
{
public:
  const std::type_info& info() const override { return typeid(T); }
  void* initializeStorage(void* object) const override { return object ? object : new T(); }
  void* ptrFromStorage(void* storage) const override { return storage; }
  void* clone(void* storage) const override { return new T(object(storage)); }
  void destroy(void* storage) const override { delete static_cast<T*>(storage); }
  bool less(void* left, void* right) const override { return std::less<void*>()(left, right); }

protected:
  static T& object(void* storage) { return *static_cast<T*>(storage); }
};

class BoolType : public TypeBase<bool, BoolTypeInterface>
{
public:
  bool value(void* storage) const override { return object(storage); }
  void assign(void* storage, bool value) const override { object(storage) = value; }
};

template <typename T, bool = std::is_enum_v<T>>
struct IntegerOf
{
  using type = T;
};

template <typename T>
struct IntegerOf<T, true>
{
  using type = std::underlying_type_t<T>;
};

template <typename T>
class IntType : public TypeBase<T, IntTypeInterface>
{
public:
  std::size_t size() const override { return sizeof(T); }
  bool isSigned() const override { return std::is_signed_v<typename IntegerOf<T>::type>; }
  std::int64_t value(void* storage) const override { return static_cast<std::int64_t>(this->object(storage)); }
  void assign(void* storage, std::int64_t value) const override { this->object(storage) = static_cast<T>(value); }
};

template <typename T>
class FloatType : public TypeBase<T, FloatTypeInterface>
{
public:
  std::size_t size() const override { return sizeof(T); }
  double value(void* storage) const override { return static_cast<double>(this->object(storage)); }
  void assign(void* storage, double value) const override { this->object(storage) = static_cast<T>(value); }
};

class StringType : public TypeBase<std::string, StringTypeInterface>
{
public:
  std::string& value(void* storage) const override { return object(storage); }
};

template <typename Element>
class ListType : public TypeBase<std::vector<Element>, ListTypeInterface>
{
public:
  TypeInterface* elementType() const override { return typeOf<Element>(); }
  std::size_t size(void* storage) const override { return this->object(storage).size(); }
  void* element(void* storage, std::size_t index) const override { return &this->object(storage)[index]; }
  void append(void* storage, void* element) const override
  {
    this->object(storage).push_back(*static_cast<const Element*>(element));
  }
};

template <typename Key, typename Element>
class MapType : public TypeBase<std::map<Key, Element>, MapTypeInterface>
{
public:
  TypeInterface* keyType() const override { return typeOf<Key>(); }
  TypeInterface* elementType() const override { return typeOf<Element>(); }
  std::size_t size(void* storage) const override { return this->object(storage).size(); }
  void forEach(void* storage, const std::function<void(void*, void*)>& visit) const override
  {
    for (auto& [key, element] : this->object(storage))
      visit(const_cast<Key*>(&key), &element);  // storages are not const; the contract keeps the key unchanged
  }
  void insert(void* storage, void* key, void* element) const override
  {
    this->object(storage).insert_or_assign(*static_cast<const Key*>(key), *static_cast<const Element*>(element));
  }
};

/// For std::optional and boost::optional.
template <typename Optional>
class OptionalType : public TypeBase<Optional, OptionalTypeInterface>
{
  using Held = typename Optional::value_type;

public:
  TypeInterface* valueType() const override { return typeOf<Held>(); }
  void* value(void* storage) const override
  {
    Optional& optional = this->object(storage);
    return optional ? &*optional : nullptr;
  }
  void assign(void* storage, void* value) const override
  {
    if (value)
      this->object(storage) = *static_cast<const Held*>(value);
    else
      this->object(storage).reset();
  }
};

/// For std::pair and std::tuple.
template <typename T, typename Indices = std::make_index_sequence<std::tuple_size_v<T>>>
class TupleType;

template <typename T, std::size_t... I>
class TupleType<T, std::index_sequence<I...>> : public TypeBase<T, StructTypeInterface>
{
public:
  TypeKind kind() const override { return TypeKind::Tuple; }
  std::string className() const override { return {}; }
  std::vector<std::string> elementsName() const override { return {}; }
  std::vector<TypeInterface*> memberTypes() const override { return {typeOf<std::tuple_element_t<I, T>>()...}; }

  void* get([[maybe_unused]] void* storage, std::size_t index) const override
  {
    const std::array<void*, sizeof...(I)> members = {&std::get<I>(this->object(storage))...};
    return index < members.size() ? members[index] : nullptr;
  }

  bool set([[maybe_unused]] void* storage, std::size_t index, [[maybe_unused]] void* value) const override
  {
    ((I == index ? assign(std::get<I>(this->object(storage)), value) : void()), ...);
    return index < sizeof...(I);
  }

private:
  template <typename Member>
  static void assign(Member& member, void* value)
  {
    member = *static_cast<const Member*>(value);
  }
};

/// Makes the interface of a type that needs no registration, or null for one that does.
template <typename T, typename = void>
struct NativeType
{
  static std::unique_ptr<TypeInterface> make() { return nullptr; }
};

template <typename Interface>
struct NativeTypeAs
{
  static std::unique_ptr<TypeInterface> make() { return std::make_unique<Interface>(); }
};

template <>
struct NativeType<bool> : NativeTypeAs<BoolType>
{};

template <typename T>
struct NativeType<T, std::enable_if_t<std::is_integral_v<T> || std::is_enum_v<T>>> : NativeTypeAs<IntType<T>>
{};

template <>
struct NativeType<float> : NativeTypeAs<FloatType<float>>
{};

template <>
struct NativeType<double> : NativeTypeAs<FloatType<double>>
{};

template <>
struct NativeType<std::string> : NativeTypeAs<StringType>
{};

/// Not for vector<bool>, whose elements have no address.
template <typename T>
struct NativeType<std::vector<T>, std::enable_if_t<!std::is_same_v<T, bool>>> : NativeTypeAs<ListType<T>>
{};

template <typename Key, typename T>
struct NativeType<std::map<Key, T>> : NativeTypeAs<MapType<Key, T>>
{};

template <typename T>
struct NativeType<std::optional<T>> : NativeTypeAs<OptionalType<std::optional<T>>>
{};

template <typename T>
struct NativeType<boost::optional<T>> : NativeTypeAs<OptionalType<boost::optional<T>>>
{};

template <typename First, typename Second>
struct NativeType<std::pair<First, Second>> : NativeTypeAs<TupleType<std::pair<First, Second>>>
{};

template <typename... T>
struct NativeType<std::tuple<T...>> : NativeTypeAs<TupleType<std::tuple<T...>>>
{};

}  // namespace detail

}  // namespace ko
