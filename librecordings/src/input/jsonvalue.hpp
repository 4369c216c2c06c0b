#pragma once

#include <skeigiot/recordings/quote.hpp>

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

namespace KV::recordings
{

/// A value of a JSON document that differs from the expected one.
class JsonError : public std::runtime_error
{
public:
  /// `path` is the place of the value, such as "observation.gaze.yaw"; empty for the document.
  JsonError(std::string path, const std::string& message) : std::runtime_error(message), _path(std::move(path)) {}

  const std::string& path() const { return _path; }

private:
  std::string _path;
};

/// Returns the message of the parser without the code in brackets at its beginning.
std::string withoutErrorCode(const std::string& parserMessage);

/// Refuses a text with a NUL: the parser takes it for the end, and would not read the text after it.
///
/// \throws JsonError
void refuseNul(std::string_view text);

/// A value of a JSON document that knows its path.
///
/// The path is built only on demand: a part refers to the value of which it is a part. That value must outlive it, and
/// so must the document.
template <typename Json>
class JsonValue
{
public:
  /// The whole document.
  explicit JsonValue(const Json& document) : _json(&document) {}

  /// A member of an object.
  JsonValue(const JsonValue& object, std::string_view name, const Json& json)
    : _json(&json), _whole(&object), _name(name)
  {}

  /// Returns an element of the array.
  JsonValue element(std::size_t index) const { return JsonValue(*this, index); }

  const Json& operator*() const { return *_json; }
  const Json* operator->() const { return _json; }

  /// Returns the place of the value, such as "blendshapes.joy.sum[0]"; empty for the document.
  std::string path() const
  {
    if (_whole == nullptr)
      return {};
    return _name.empty() ? _whole->path() + "[" + std::to_string(_index) + "]" : _whole->memberPath(_name);
  }

  /// Returns the place of the member of that name, existing or not.
  std::string memberPath(std::string_view name) const
  {
    const std::string own = path();
    return own + (own.empty() ? "" : ".") + shortened(name);
  }

  /// \throws JsonError
  [[noreturn]] void refuse(const std::string& expected) const
  {
    throw JsonError(path(), "expected " + expected + ", found " + quote(_json->dump()));
  }

  /// Reports that there is no such member, and the existing names.
  ///
  /// \throws JsonError
  [[noreturn]] void refuseMember(std::string_view name, const std::string& expected) const
  {
    throw JsonError(memberPath(name), "there is no such member; expected " + expected);
  }

private:
  JsonValue(const JsonValue& array, std::size_t index) : _json(&(*array)[index]), _whole(&array), _index(index) {}

  const Json* _json;
  const JsonValue* _whole = nullptr;
  std::string_view _name;  // of a member
  std::size_t _index = 0;  // of an element, which has no name
};

}  // namespace KV::recordings
