#pragma once

#include "valueview.hpp"

#include <nlohmann/json.hpp>

#include <string_view>

namespace ko
{

/// The library's tree that JSON and CBOR are written from; its objects keep the order of the members.
using JsonTree = nlohmann::ordered_json;

/// The two forms a value may be written in; they differ in how they write floating-point numbers.
enum class WireForm
{
  Json,
  Cbor
};

/// Returns the object as a tree.
///
/// \throws TypeError with the path of a part that cannot be written, see json::encode().
JsonTree treeOf(const ValueView& view, WireForm form);

/// Whether the text is well-formed UTF-8.
bool isUtf8(std::string_view text);

}  // namespace ko
