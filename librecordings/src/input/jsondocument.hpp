#pragma once

#include "input/jsonvalue.hpp"

#include <skeigiot/recordings/inputlimits.hpp>

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

namespace KV::recordings
{

/// [levels] that a document may have; the formats have stricter limits.
constexpr int deepestDocument = 2 * limits::deepestJson;

/// A tree of JSON that is parsed or built without copies of its parts, and that frees itself without allocating.
///
/// The library's own destructor allocates for each value that has parts: it would end the process if no memory was
/// left. Trees here are at most deepestDocument levels deep, so they can be freed level by level.
template <typename Json>
class JsonDocument
{
public:
  /// Makes an empty document, null.
  JsonDocument() = default;

  /// Parses a text.
  ///
  /// \throws JsonError if it is nested too deep.
  /// \throws Json::exception as the parser of the library does.
  explicit JsonDocument(std::string_view text)
    : JsonDocument(text, [](int, typename Json::parse_event_t, const std::string&) {})
  {}

  /// As above; calls `check(depth, event, name)` for each part, with the depths and events of the library's parser
  /// callback. The name is that of a member, for the event of a key. An exception of it ends the parsing.
  template <typename Check>
  JsonDocument(std::string_view text, Check check)
    : JsonDocument()  // so that an exception finds a complete object, whose destructor frees the parts so far
  {
    Builder<Check> builder(_root, check);
    Json::sax_parse(text.begin(), text.end(), &builder);
  }

  ~JsonDocument() { _free(_root); }
  JsonDocument(const JsonDocument&) = delete;
  JsonDocument& operator=(const JsonDocument&) = delete;

  Json& root() { return _root; }
  const Json& root() const { return _root; }

  /// Returns the member of that name, which is null if it is new; `object` must be an object of a document.
  static Json& member(Json& object, std::string name)
  {
    auto& members = object.template get_ref<typename Json::object_t&>();
    const auto found = members.find(name);
    if (found != members.end())
      return found->second;
    if constexpr (isOrdered)
    {
      if (members.size() == members.capacity())
        _grow(members);
      return members.emplace_back(std::move(name), Json()).second;
    }
    else
      return members[std::move(name)];
  }

  /// Appends null to `array`, which must be an array of a document, and returns it.
  static Json& element(Json& array) { return array.template get_ref<typename Json::array_t&>().emplace_back(); }

private:
  /// Whether an object keeps its members in a vector, in the order in which they were added.
  static constexpr bool isOrdered =
      std::is_base_of_v<std::vector<typename Json::object_t::value_type>, typename Json::object_t>;

  /// Builds the tree as the parser goes on; the operations have the names that the parser calls.
  template <typename Check>
  class Builder
  {
  public:
    using Event = typename Json::parse_event_t;

    Builder(Json& root, Check& check) : _next(&root), _check(check) {}

    bool null() { return _add(Json()); }
    bool boolean(bool value) { return _add(Json(value)); }
    bool number_integer(typename Json::number_integer_t value) { return _add(Json(value)); }
    bool number_unsigned(typename Json::number_unsigned_t value) { return _add(Json(value)); }
    bool number_float(typename Json::number_float_t value, const std::string&) { return _add(Json(value)); }
    bool string(std::string& value) { return _add(Json(std::move(value))); }
    bool binary(typename Json::binary_t&) { return false; }  // a text has none

    bool start_object(std::size_t) { return _open(Event::object_start, Json(Json::value_t::object)); }
    bool start_array(std::size_t) { return _open(Event::array_start, Json(Json::value_t::array)); }
    bool end_object() { return _close(Event::object_end); }
    bool end_array() { return _close(Event::array_end); }

    bool key(std::string& name)
    {
      _check(_depth(), Event::key, name);
      _next = &member(*_containers.back(), std::move(name));
      _free(*_next);  // of a member that is there twice, the last one counts
      *_next = nullptr;
      return true;
    }

    template <typename Exception>
    bool parse_error(std::size_t, const std::string&, const Exception& error)
    {
      throw error;
    }

  private:
    bool _add(Json&& value)
    {
      _check(_depth(), Event::value, std::string());
      _place() = std::move(value);
      return true;
    }

    bool _open(Event event, Json&& container)
    {
      _check(_depth(), event, std::string());
      if (_depth() == deepestDocument)
        throw JsonError("", "is nested too deep");
      Json& place = _place();
      place = std::move(container);
      _containers.push_back(&place);
      return true;
    }

    bool _close(Event event)
    {
      _containers.pop_back();
      _check(_depth(), event, std::string());
      return true;
    }

    /// Returns where the next value belongs.
    Json& _place() { return _next != nullptr ? *std::exchange(_next, nullptr) : element(*_containers.back()); }

    int _depth() const { return static_cast<int>(_containers.size()); }

    Json* _next;                     // the root or a member, which waits for its value; null: an element of an array
    std::vector<Json*> _containers;  // that are open, the outermost first
    Check& _check;
  };

  /// Makes room for more members: the vector itself would copy them, and free the old ones.
  template <typename Members>
  static void _grow(Members& members)
  {
    constexpr std::size_t least = 8;
    Members larger;
    larger.reserve(std::max(least, 2 * members.size()));
    for (const auto& [name, value] : members)
      larger.emplace_back(name, Json());
    for (std::size_t i = 0; i < members.size(); ++i)  // nothing throws from here on
      std::swap((larger.begin() + static_cast<std::ptrdiff_t>(i))->second,
                (members.begin() + static_cast<std::ptrdiff_t>(i))->second);
    members.swap(larger);
  }

  static void _free(Json& value) noexcept
  {
    if (value.is_array())
    {
      auto& elements = value.template get_ref<typename Json::array_t&>();
      for (Json& part : elements)
        _free(part);
      elements.clear();
    }
    else if (value.is_object())
    {
      auto& members = value.template get_ref<typename Json::object_t&>();
      for (auto& part : members)
        _free(part.second);
      members.clear();
    }
  }

  Json _root;
};

}  // namespace KV::recordings
