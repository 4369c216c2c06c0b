#include <skeigiot/shorttermmemory.hpp>

#include "age.hpp"

#include <boost/thread/lock_guard.hpp>

#include <algorithm>
#include <exception>
#include <iostream>
#include <iterator>
#include <stdexcept>
#include <utility>

namespace KV
{

namespace
{

/// Brings the records for which `isTooOld` is false to the front, in their order, and returns where they end.
///
/// Swaps rather than moves, so that no record is lost or doubled if `isTooOld` throws on the way; while records only
/// grow older along the way, nothing is swapped at all.
template <typename Iterator, typename Predicate>
Iterator keepYoung(Iterator first, Iterator last, Predicate isTooOld)
{
  Iterator kept = first;
  for (Iterator it = first; it != last; ++it)
  {
    if (isTooOld(*it))
      continue;
    if (kept != it)
      std::swap(*kept, *it);
    ++kept;
  }
  return kept;
}

}  // namespace

template <typename T>
ShortTermMemory<T>::ShortTermMemory(boost::chrono::milliseconds horizon) : _horizon(horizon)
{}

template <typename T>
void ShortTermMemory<T>::record(const Timestamped<T>& reading)
{
  const boost::lock_guard<boost::mutex> lock(_mutex);
  _records.insert(reading);
  _forgetOld();
}

template <typename T>
Timestamped<T>& ShortTermMemory<T>::youngest()
{
  const boost::lock_guard<boost::mutex> lock(_mutex);
  _forgetOld();
  if (_records.empty())
    throw std::range_error("The ShortTermMemory is empty.");
  return *_records.begin();
}

template <typename T>
void ShortTermMemory<T>::_forgetOld()
{
  try
  {
    const auto tooOld = [this](const Timestamped<T>& reading) { return _isTooOld(reading); };
    _records.erase(keepYoung(_records.begin(), _records.end(), tooOld), _records.end());
  }
  catch (const std::exception& error)
  {
    std::sort(_records.begin(), _records.end(), std::greater<Timestamped<T>>());  // swaps may have been left half-way
    std::cout << "Error while forgeting old memory: " << error.what() << std::endl;
  }
}

template <typename T>
bool ShortTermMemory<T>::_isTooOld(const Timestamped<T>& reading) const
{
  return ageInMs(reading.time) > _horizon.count();
}

template class ShortTermMemory<HeadPosture>;
template class ShortTermMemory<float>;
template class ShortTermMemory<bool>;
template class ShortTermMemory<Smile>;
template class ShortTermMemory<Gaze>;
template class ShortTermMemory<Expressions>;
template class ShortTermMemory<ValueConfidence<bool>>;
template class ShortTermMemory<ValueConfidence<unsigned int>>;
template class ShortTermMemory<FacialPoints>;
template class ShortTermMemory<std::int32_t>;
template class ShortTermMemory<ContextEmotion>;
template class ShortTermMemory<RobotHeadPosture>;

}  // namespace KV
