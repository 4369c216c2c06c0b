#include <ko/cbor.hpp>

#include "cborcheck.hpp"
#include "conversion.hpp"
#include "documentreader.hpp"
#include "jsontree.hpp"

#include <ko/typeerror.hpp>
#include <ko/wirelimits.hpp>

#include <stdexcept>

namespace ko::cbor
{

std::vector<std::uint8_t> encode(const Value& value)
{
  return JsonTree::to_cbor(DocumentTree({value.type(), value.storage()}, WireForm::Cbor).root());
}

Value decode(const std::vector<std::uint8_t>& bytes)
{
  if (bytes.size() > wirelimits::bytes)
    throw TypeError("", "longer than " + std::to_string(wirelimits::bytes) + " bytes");

  // The bytes before a fault are still parsed, to learn the path of the fault.
  const std::optional<CborFault> fault = findCborFault(bytes);
  const std::uint8_t* const end = bytes.data() + (fault ? fault->offset : bytes.size());
  DocumentReader reader;
  const bool isComplete = JsonTree::sax_parse(bytes.data(), end, &reader, JsonTree::input_format_t::cbor);
  if (fault && (isComplete || reader.isCutOff()))
    throw TypeError(reader.path(), "at byte " + std::to_string(fault->offset + 1) + ": " + fault->message);
  if (!isComplete)
    throw TypeError(reader.path(), reader.error());
  return reader.document();
}

Value decode(const std::vector<std::uint8_t>& bytes, TypeInterface* type)
{
  if (!type)
    throw std::invalid_argument("A value needs a type.");
  const Value document = decode(bytes);
  return converted({document.type(), document.storage()}, type, {});
}

}  // namespace ko::cbor
