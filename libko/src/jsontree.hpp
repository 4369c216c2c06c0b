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
/// It takes the tree down itself: a tree of more than one level needs memory for its own end, and would end the process
/// if there were none.
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
  DocumentTree() = default;  // what another constructor delegates to is destroyed if that throws

  JsonTree _root;
};

}  // namespace ko
