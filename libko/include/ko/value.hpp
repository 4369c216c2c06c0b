#pragma once

#include <ko/api.hpp>
#include <ko/type.hpp>

#include <cstddef>
#include <iosfwd>
#include <string>
#include <string_view>
#include <typeinfo>
#include <vector>

namespace ko
{

/// A value of any registered type, owned; or nothing, when empty.
///
/// Copies are copies as C++ makes them, so a value that holds a handle shares the handle's record: what is set in it is
/// set for everyone, and what others do to the record shows in it. detached() makes a value that shares nothing.
///
/// Conversion, to another C++ type or between structs, goes by form:
/// - a value of the very type is copied;
/// - a bool becomes a bool only;
/// - a number becomes an integer if it is whole and in range, and a floating-point number if it is in range, rounded to
///   the nearest; NaN and the infinities stay what they are;
/// - lists and maps become lists and maps of other elements, a list a tuple of as many members and the reverse;
/// - structs, and maps with text keys, become structs with the same member names, in whatever order, and the reverse;
/// - a value becomes an optional that holds it, an empty value an empty optional; an optional that holds a value
///   becomes what that value does.
///
/// \par Thread safety
///   Not synchronised; different values may be used at once, unless they share a record.
class KO_API Value
{
public:
  /// Makes an empty value.
  Value() noexcept = default;
  /// Holds a clone of what the other holds.
  Value(const Value& other);
  /// Takes over what the other holds, which is empty afterwards.
  Value(Value&& other) noexcept;
  /// Lets go of what was held, and holds what the other did.
  Value& operator=(Value other) noexcept;
  ~Value();

  /// Makes a value that holds a copy of `object`.
  ///
  /// \throws TypeError "no type is registered for <class>" if the type is not registered.
  template <typename T>
  static Value from(const T& object)
  {
    TypeInterface* type = requiredType<T>();
    return copyOf(type, type->initializeStorage(const_cast<T*>(&object)));  // only read
  }

  /// Makes a value that holds the text.
  static Value from(const char* text);

  /// Makes a value that holds a clone of the object of this storage; an empty one if `type` is null.
  static Value copyOf(TypeInterface* type, void* storage);

  /// Makes a value that holds a new default object of the type.
  ///
  /// \throws std::invalid_argument "A value needs a type." if `type` is null.
  static Value ofType(TypeInterface* type);

  /// Whether nothing is held.
  bool isEmpty() const { return !_type; }

  /// Returns the type of what is held, null if empty.
  TypeInterface* type() const { return _type; }

  /// Returns the storage of what is held, null if empty; valid until the value is assigned to or destroyed.
  void* storage() const { return _storage; }

  /// Returns a copy.
  Value clone() const { return *this; }

  /// Returns a value of the same type that shares no record: each handle in it is on a new one, whose registered
  /// members have the same contents. All other members have their defaults.
  ///
  /// \throws TypeError if a member is of a type that is not registered, or a handle has no record.
  Value detached() const;

  /// Returns what is held as an object of another type, see the rules above.
  ///
  /// \throws TypeError with the path of the first member that does not fit.
  template <typename T>
  T to() const
  {
    const Value converted = convertedTo(requiredType<T>());
    return *static_cast<const T*>(converted._type->ptrFromStorage(converted._storage));
  }

  /// As to(), with the type known when the program runs.
  ///
  /// \throws std::invalid_argument "A value needs a type." if `type` is null.
  Value convertedTo(TypeInterface* type) const;

  /// Returns the number of members of a struct or tuple, or of elements of a list or map; 0 for everything else.
  std::size_t size() const;

  /// Returns the names of the members of a struct, or the keys of a map with text keys; empty for everything else.
  std::vector<std::string> names() const;

  /// Returns a copy of a member or element, by its index, or by its name or text key.
  ///
  /// \throws std::out_of_range with the index or name, if there is no such member.
  Value at(std::size_t index) const;
  /// As above.
  Value at(std::string_view name) const;

  /// Sets a member of a struct or tuple, converting `value` to its type.
  ///
  /// \throws std::out_of_range with the index or name, if there is no such member.
  /// \throws TypeError if the value does not fit.
  void set(std::size_t index, const Value& value);
  /// As above.
  void set(std::string_view name, const Value& value);

  /// Orders by contents: negative if this is less than `other`, 0 if equal, positive if greater.
  ///
  /// Empty is less than everything; otherwise the kind decides (in the order of TypeKind), for structs then the class
  /// name, then the contents: numbers by value, whatever their width, texts by bytes, everything else member by member,
  /// a shorter list before a longer one that begins with it. The order is total: NaN equals NaN, and is greater than
  /// every other number; -0 equals 0. Handles compare as what they show, not by their records.
  ///
  /// \throws TypeError if a member is of a type that is not registered, or a handle has no record.
  int compare(const Value& other) const;

  /// Whether compare() gives 0.
  friend bool operator==(const Value& left, const Value& right) { return left.compare(right) == 0; }
  /// Whether compare() gives anything but 0.
  friend bool operator!=(const Value& left, const Value& right) { return left.compare(right) != 0; }
  /// Whether compare() gives less than 0.
  friend bool operator<(const Value& left, const Value& right) { return left.compare(right) < 0; }
  /// Exchanges what both hold; the held objects stay where they are.
  friend KO_API void swap(Value& left, Value& right) noexcept;

private:
  template <typename T>
  static TypeInterface* requiredType()
  {
    TypeInterface* type = typeOf<T>();
    if (!type)
      throwNotRegistered(typeid(T));
    return type;
  }
  [[noreturn]] static void throwNotRegistered(const std::type_info& info);

  TypeInterface* _type = nullptr;
  void* _storage = nullptr;  // owned; null if and only if _type is
};

/// Writes the value as JSON, on one line.
KO_API std::ostream& operator<<(std::ostream& stream, const Value& value);

}  // namespace ko
