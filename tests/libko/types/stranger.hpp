#pragma once

#include <ko/nativetypes.hpp>
#include <ko/typeinterface.hpp>

/// A type of a kind that the library does not know, such as one from a later version of it.
namespace strangers
{

struct Stranger
{};

class StrangerType : public ko::detail::TypeBase<Stranger, ko::TypeInterface>
{
public:
  ko::TypeKind kind() const override { return static_cast<ko::TypeKind>(99); }
};

inline StrangerType strangerType;

}  // namespace strangers
