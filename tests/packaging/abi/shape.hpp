#pragma once

// A very small library, in the versions that tests compare.
namespace KV
{

struct Shape
{
  float width = 0.f;
#ifdef SHAPE_HAS_DEPTH
  float depth = 0.f;
#endif
  float height = 0.f;
};

float area(const Shape& shape);
#ifdef SHAPE_HAS_OUTLINE
float outline(const Shape& shape);
#endif

}  // namespace KV
