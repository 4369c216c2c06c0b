#pragma once

#include <ko/record.hpp>
#include <ko/value.hpp>

#include <cstring>
#include <random>
#include <string>
#include <vector>

/// Shared parts of the tests of the registered records.
namespace records
{

/// The class names, in the order of registration.
inline const std::vector<std::string>& classNames()
{
  static const std::vector<std::string> names = {"::KV::AmbianceState",
                                                 "KV::BodyLanguageEase",
                                                 "::KV::BodyLanguageStatePrivate",
                                                 "::KV::BodyLanguageState",
                                                 "::KV::ValueConfidence<bool>",
                                                 "::KV::ValueConfidence<float>",
                                                 "::KV::ValueConfidence<unsigned int>",
                                                 "::KV::Expressions",
                                                 "::KV::Gaze",
                                                 "::KV::Smile",
                                                 "::KV::PersonStatePrivate",
                                                 "::KV::PersonState",
                                                 "::KV::Person"};
  return names;
}

/// Calls `visit` with the type and the storage of every number and truth in the object, in order.
template <typename Visit>
void forEachLeaf(const ko::TypeInterface* type, void* storage, const Visit& visit)
{
  if (type->kind() != ko::TypeKind::Struct)
    return visit(type, storage);
  const auto& structType = static_cast<const ko::StructTypeInterface&>(*type);
  const std::vector<ko::TypeInterface*> memberTypes = structType.memberTypes();
  for (std::size_t i = 0; i < memberTypes.size(); ++i)
    forEachLeaf(memberTypes[i], structType.get(storage, i), visit);
}

/// Returns a float of any bits: of all sizes, subnormal, infinite, NaN.
inline float anyFloat(std::mt19937& random)
{
  const auto bits = static_cast<std::uint32_t>(random());
  float number = 0.f;
  std::memcpy(&number, &bits, sizeof(number));
  return number;
}

/// Fills every number and truth in the object with random bits.
inline void fillAtRandom(const ko::Value& value, std::mt19937& random)
{
  forEachLeaf(value.type(), value.storage(), [&random](const ko::TypeInterface* type, void* storage) {
    if (type->kind() == ko::TypeKind::Bool)
      static_cast<const ko::BoolTypeInterface*>(type)->assign(storage, random() % 2 == 0);
    else if (type->kind() == ko::TypeKind::Int)
      static_cast<const ko::IntTypeInterface*>(type)->assign(storage, static_cast<std::int32_t>(random()));
    else
      *static_cast<float*>(storage) = anyFloat(random);
  });
}

/// Returns the bits of every number and truth in the object, one NaN for all.
inline std::vector<std::uint64_t> bitsOf(const ko::Value& value)
{
  std::vector<std::uint64_t> all;
  forEachLeaf(value.type(), value.storage(), [&all](const ko::TypeInterface* type, void* storage) {
    std::uint64_t bits = 0;
    if (type->kind() == ko::TypeKind::Bool)
      bits = static_cast<const ko::BoolTypeInterface*>(type)->value(storage) ? 1 : 0;
    else if (type->kind() == ko::TypeKind::Int)
      bits = static_cast<std::uint64_t>(static_cast<const ko::IntTypeInterface*>(type)->value(storage));
    else if (*static_cast<float*>(storage) == *static_cast<float*>(storage))
      std::memcpy(&bits, storage, sizeof(float));
    else
      bits = ~std::uint64_t{0};
    all.push_back(bits);
  });
  return all;
}

}  // namespace records
