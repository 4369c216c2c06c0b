#pragma once

#include "study/tomlparser.hpp"

#include <skeigiot/recordings/error.hpp>

#include <cstddef>
#include <string>

namespace KV::session
{

/// A table of a study file: gives its fields by type, and refuses those that have another type or are not known.
class TomlTable
{
public:
  /// Both must outlive it; `name` is that of the table in messages, such as "files".
  TomlTable(const std::string& path, const toml::table& table, std::string name);

  /// Refuses fields that are not among `known`, a list separated by blanks.
  void knowOnly(const std::string& known) const;

  bool has(const char* field) const { return _table.contains(field); }

  std::string text(const char* field, const std::string& otherwise = "") const;  ///< refuses an empty text
  std::string neededText(const char* field) const;
  bool flag(const char* field) const;  ///< false if it is missing
  double number(const char* field, double otherwise) const;

  /// Calls `use` with each table of an array of tables.
  template <typename Use>
  void eachTable(const char* field, Use&& use) const
  {
    const toml::node* const node = _table.get(field);
    if (node == nullptr)
      return;
    if (node->as_array() == nullptr)
      refuse(*node, field, std::string("is one table for each item: begin each with [[") + field + "]]");
    for (const toml::node& item : *node->as_array())
    {
      if (item.as_table() == nullptr)
        refuse(item, field, std::string("expected a table: begin each with [[") + field + "]]");
      use(TomlTable(_path, *item.as_table(), field));
    }
  }

  std::size_t line() const { return _table.source().begin.line; }
  const toml::table& table() const { return _table; }
  const std::string& path() const { return _path; }

  /// \throws Error with the place of the node.
  [[noreturn]] void refuse(const toml::node& node, const std::string& field, const std::string& message) const;

private:
  const std::string& _path;
  const toml::table& _table;
  std::string _name;
};

}  // namespace KV::session
