#pragma once

#include "valueview.hpp"

#include <nlohmann/json.hpp>

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

/// A value as a tree.
///
/// Frees the tree itself, without allocating: the library's destructor needs memory for a tree of more than one level,
/// and would end the process if no memory was left.
class DocumentTree
{
public:
  /// \throws TypeError with the path of a part that cannot be written, see json::encode().
  DocumentTree(const ValueView& view, WireForm form);
  ~DocumentTree();
  DocumentTree(const DocumentTree&) = delete;
  DocumentTree& operator=(const DocumentTree&) = delete;

  const JsonTree& root() const { return _root; }

private:
  DocumentTree() = default;  // a constructor that throws after delegating has its object destroyed

  JsonTree _root;
};

}  // namespace ko
