#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/valueconfidence.hpp>

namespace KV
{

/// Scores of seven emotional expressions, each meant to lie in [0, 1]. Stores what it is given; default all 0.
struct SKEIGIOT_API Expressions
{
  ValueConfidence<float> calm;
  ValueConfidence<float> anger;
  ValueConfidence<float> joy;
  ValueConfidence<float> sorrow;
  ValueConfidence<float> laughter;
  ValueConfidence<float> excitement;
  ValueConfidence<float> surprise;
};

}  // namespace KV
