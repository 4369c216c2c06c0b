#include <ko/json.hpp>

#include "conversion.hpp"
#include "documentreader.hpp"
#include "jsontree.hpp"

#include <ko/typeerror.hpp>
#include <ko/wirelimits.hpp>

#include <stdexcept>

namespace ko::json
{

std::string encode(const Value& value, int indent)
{
  return DocumentTree({value.type(), value.storage()}, WireForm::Json).root().dump(indent);
}

Value decode(std::string_view text)
{
  if (text.size() > wirelimits::bytes)
    throw TypeError("", "longer than " + std::to_string(wirelimits::bytes) + " bytes");
  // The parser takes a NUL for the end, and would not read the text after it.
  if (text.find('\0') != std::string_view::npos)
    throw TypeError("", "a NUL at byte " + std::to_string(text.find('\0') + 1) + ", which no JSON has");
  DocumentReader reader;
  if (!JsonTree::sax_parse(text, &reader))
    throw TypeError(reader.path(), reader.error());
  return reader.document();
}

Value decode(std::string_view text, TypeInterface* type)
{
  if (!type)
    throw std::invalid_argument("A value needs a type.");
  const Value document = decode(text);
  ConversionRules rules;
  rules.nonFiniteAsText = true;
  return converted({document.type(), document.storage()}, type, rules);
}

}  // namespace ko::json
