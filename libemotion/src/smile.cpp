#include <skeigiot/smile.hpp>

namespace KV
{

void Smile::setSmile(const ValueConfidence<float>& smile)
{
  value = smile.value;
  confidence = smile.confidence;
}

}  // namespace KV
