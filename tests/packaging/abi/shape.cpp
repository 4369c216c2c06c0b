#include "shape.hpp"

namespace KV
{

[[gnu::visibility("default")]] float area(const Shape& shape)
{
  return shape.width * shape.height;
}

#ifdef SHAPE_HAS_OUTLINE
[[gnu::visibility("default")]] float outline(const Shape& shape)
{
  return 2.f * (shape.width + shape.height);
}
#endif

}  // namespace KV
