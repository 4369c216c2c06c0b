#pragma once

#include <ko/api.hpp>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <typeinfo>
#include <vector>

namespace ko
{

class Value;

/// The kind of a type: which of the interfaces below describes it.
enum class TypeKind
{
  Bool,      ///< true or false
  Int,       ///< signed or unsigned, of 1, 2, 4 or 8 bytes; enumerations too
  Float,     ///< of 4 or 8 bytes
  String,    ///< UTF-8 text
  List,      ///< any number of elements of one type
  Map,       ///< any number of keys of one type, each with an element of one type
  Optional,  ///< a value of one type, or nothing
  Tuple,     ///< members by index, each of its own type; a StructTypeInterface without names
  Struct,    ///< members by name and by index, each of its own type
  Dynamic    ///< a ko::Value: itself of any type, or empty
};

/// Describes a C++ type to programs that do not know it: makes, copies and destroys its objects.
///
/// There is one interface for each kind of type, derived from this one; an interface is of the class that its kind()
/// names, so a static_cast leads there. Interfaces live as long as the process and never change.
///
/// *Storage* is the pointer by which an interface knows an object: initializeStorage() gives the storage of an object,
/// ptrFromStorage() the object of a storage. For all types here the two are the same address.
///
/// \par Thread safety
///   Operations on different objects may run at once. Access to one object is for the caller to keep in order.
class KO_API TypeInterface
{
public:
  TypeInterface() = default;
  TypeInterface(const TypeInterface&) = delete;
  TypeInterface& operator=(const TypeInterface&) = delete;
  virtual ~TypeInterface();

  /// Returns which of the interfaces below this is.
  virtual TypeKind kind() const = 0;

  /// Returns the C++ type.
  virtual const std::type_info& info() const = 0;

  /// Returns the storage of `object`, or without one that of a new default object, which destroy() deletes.
  virtual void* initializeStorage(void* object = nullptr) const = 0;

  /// Returns the address of the object, which has the type that info() returns.
  virtual void* ptrFromStorage(void* storage) const = 0;

  /// Returns the storage of a new object, made by the type's copy constructor; destroy() deletes it.
  ///
  /// A clone is what a copy is in C++: cloning a handle gives a handle on the same record.
  virtual void* clone(void* storage) const = 0;

  /// Deletes an object that initializeStorage() or clone() made.
  virtual void destroy(void* storage) const = 0;

  /// Orders two objects by their addresses, not by their contents; compare the contents as ko::Value.
  virtual bool less(void* left, void* right) const = 0;
};

/// bool.
class KO_API BoolTypeInterface : public TypeInterface
{
public:
  TypeKind kind() const final { return TypeKind::Bool; }

  virtual bool value(void* storage) const = 0;               ///< what is stored
  virtual void assign(void* storage, bool value) const = 0;  ///< stores it
};

/// An integer or an enumeration, of any width.
class KO_API IntTypeInterface : public TypeInterface
{
public:
  TypeKind kind() const final { return TypeKind::Int; }

  virtual std::size_t size() const = 0;  ///< in bytes
  virtual bool isSigned() const = 0;     ///< whether it can be negative

  /// Returns the value; for an unsigned type, convert the result to std::uint64_t.
  virtual std::int64_t value(void* storage) const = 0;

  /// Stores the value without a test: the caller knows that it fits.
  virtual void assign(void* storage, std::int64_t value) const = 0;
};

/// float or double.
class KO_API FloatTypeInterface : public TypeInterface
{
public:
  TypeKind kind() const final { return TypeKind::Float; }

  virtual std::size_t size() const = 0;  ///< in bytes

  /// Returns the value, which a double holds exactly.
  virtual double value(void* storage) const = 0;

  /// Stores the value, rounded to the nearest that the type has.
  virtual void assign(void* storage, double value) const = 0;
};

/// A text.
class KO_API StringTypeInterface : public TypeInterface
{
public:
  TypeKind kind() const final { return TypeKind::String; }

  virtual std::string& value(void* storage) const = 0;  ///< the text in place
};

/// A std::vector.
class KO_API ListTypeInterface : public TypeInterface
{
public:
  TypeKind kind() const final { return TypeKind::List; }

  virtual TypeInterface* elementType() const = 0;     ///< null if that type is not registered
  virtual std::size_t size(void* storage) const = 0;  ///< number of elements

  /// Returns the storage of an element; valid until the list changes. `index` is less than size().
  virtual void* element(void* storage, std::size_t index) const = 0;

  /// Appends a copy of `element`, a storage of elementType().
  virtual void append(void* storage, void* element) const = 0;
};

/// A std::map.
class KO_API MapTypeInterface : public TypeInterface
{
public:
  TypeKind kind() const final { return TypeKind::Map; }

  virtual TypeInterface* keyType() const = 0;         ///< null if that type is not registered
  virtual TypeInterface* elementType() const = 0;     ///< null if that type is not registered
  virtual std::size_t size(void* storage) const = 0;  ///< number of keys

  /// Calls `visit` with the storage of each key and its element, in the order of the map; leave the keys as they are.
  virtual void forEach(void* storage, const std::function<void(void* key, void* element)>& visit) const = 0;

  /// Sets the element of `key` to a copy of `element`, adding the key if it is not there.
  virtual void insert(void* storage, void* key, void* element) const = 0;
};

/// A std::optional or boost::optional.
class KO_API OptionalTypeInterface : public TypeInterface
{
public:
  TypeKind kind() const final { return TypeKind::Optional; }

  virtual TypeInterface* valueType() const = 0;  ///< null if that type is not registered

  /// Returns the storage of the value, or null without a value.
  virtual void* value(void* storage) const = 0;

  /// Stores a copy of `value`, a storage of valueType(), or nothing if it is null.
  virtual void assign(void* storage, void* value) const = 0;
};

/// The differences of a struct on the other side from one here, by the names of members.
struct KO_API MemberDifference
{
  std::vector<std::string> dropped;  ///< the source has them, the target does not
  std::vector<std::string> missing;  ///< the target has them, the source does not
};

/// A type with members, each with an index (0 is the first) and a type of its own; a Struct also names them.
class KO_API StructTypeInterface : public TypeInterface
{
public:
  TypeKind kind() const override { return TypeKind::Struct; }

  /// Returns the name of the struct, as detail::normalizeClassName() spells it; empty for a Tuple.
  virtual std::string className() const = 0;

  /// Returns the names of the members, in order; empty for a Tuple.
  virtual std::vector<std::string> elementsName() const = 0;

  /// Returns the types of the members, in order; null where a type is not registered.
  virtual std::vector<TypeInterface*> memberTypes() const = 0;

  /// Returns the storage of a member inside the object: what is written there is written to the object.
  ///
  /// Returns null if `index` is beyond the last member, the member's type is not registered, or the object is a handle
  /// without a record.
  virtual void* get(void* storage, std::size_t index) const = 0;

  /// Copies `value`, a storage of the member's type, into the member; returns false where get() returns null.
  virtual bool set(void* storage, std::size_t index, void* value) const = 0;

  /// Whether a value with other members may become one of this struct: dropped ones are then ignored, missing ones keep
  /// their defaults. Without versions that is so only if nothing is dropped and nothing is missing.
  virtual bool convertFrom(const MemberDifference& difference) const;

  /// Whether a value of this struct may become one with other members; as convertFrom(), for the other direction.
  virtual bool convertTo(const MemberDifference& difference) const;
};

/// A ko::Value.
class KO_API DynamicTypeInterface : public TypeInterface
{
public:
  TypeKind kind() const final { return TypeKind::Dynamic; }

  virtual Value& value(void* storage) const = 0;  ///< the value in place
};

/// Returns what to call the type towards people: "float", "list of int32", or the class name of a struct; "an
/// unregistered type" for null.
KO_API std::string typeName(const TypeInterface* type);

}  // namespace ko
