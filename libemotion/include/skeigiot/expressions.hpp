#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/valueconfidence.hpp>

namespace KV
{

/// Scores of seven emotional expressions, each meant to lie in [0, 1]. Stores its values unchanged; default all 0.
///
/// Calm, anger, joy and sorrow are features of the mood classes; laughter, excitement and surprise are kept for
/// callers, and the estimate does not read them.
struct SKEIGIOT_API Expressions
{
  ValueConfidence<float> calm;        ///< the face or voice shows no emotion
  ValueConfidence<float> anger;       ///< of the face or voice
  ValueConfidence<float> joy;         ///< of the face or voice
  ValueConfidence<float> sorrow;      ///< of the face or voice
  ValueConfidence<float> laughter;    ///< of the face or voice
  ValueConfidence<float> excitement;  ///< of the face or voice
  ValueConfidence<float> surprise;    ///< of the face; no voice analyser reports it
};

}  // namespace KV
