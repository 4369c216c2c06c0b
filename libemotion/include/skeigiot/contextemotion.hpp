#pragma once

#include <skeigiot/api.hpp>

#include <cstdint>

namespace KV
{

/// An emotion that the context of the interaction imposes. Stores its values unchanged.
struct SKEIGIOT_API ContextEmotion
{
  /// Stores both as they are given.
  ContextEmotion(std::int32_t valence_, float lifetime_) : valence(valence_), lifetime(lifetime_) {}

  std::int32_t valence;  ///< target valence, a number such as -1, 0 or 1
  float lifetime;        ///< [s], the age at which its pull has fallen to one half
};

}  // namespace KV
