#include "bodylanguagestateprivate.hpp"

#include <boost/thread/lock_guard.hpp>

#include <cstddef>

namespace KV
{

namespace
{

constexpr float easeConfidence = 0.5f;

std::size_t countAfterForgetting(ShortTermMemory<HeadPosture>& memory)
{
  const boost::lock_guard<boost::mutex> lock(memory.mutex());
  memory._forgetOld();
  return memory.records().size();
}

}  // namespace

void BodyLanguageStatePrivate::_update(ShortTermMemory<HeadPosture>& memory)
{
  if (countAfterForgetting(memory) == 0)
    return;

  float sum = 0.f;
  for (const Timestamped<HeadPosture>& record : memory.records())
    sum += estimateFromHeadPosture(record.value);

  const std::size_t count = countAfterForgetting(memory);
  if (count == 0)
    return;  // all expired between the two counts: nothing to divide by
  ease = BodyLanguageEase(sum / static_cast<float>(count), easeConfidence);
}

float BodyLanguageStatePrivate::estimateFromHeadPosture(const HeadPosture& posture)
{
  if (posture.isUp())
    return -0.5f;
  if (posture.isDown())
    return 0.5f;
  if (posture.isLeft())
    return -0.5f;
  if (posture.isRight())
    return 0.5f;
  return 0.f;
}

}  // namespace KV
