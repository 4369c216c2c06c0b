#include <skeigiot/emotionrecorder.hpp>

#include <skeigiot/verdict.hpp>

#include <ko/log.hpp>

#include <boost/thread/lock_types.hpp>

#include <algorithm>
#include <cstddef>

namespace KV
{

namespace
{

[[maybe_unused]] const ko::log::Category category = ko::log::addCategory("KVMoodRecorder");

using Lock = boost::unique_lock<boost::mutex>;

}  // namespace

KVEmotionRecorder::KVEmotionRecorder(const KVEmotionRecorder& other) : _scopes(other._scopes) {}

void KVEmotionRecorder::startRecording(const std::string& scope, std::int32_t samples)
{
  const Lock lock(_mutex);
  EmoRecordInfo& info = _scopes[scope];
  info.remainingSamples = samples;
  info.samples.clear();
}

void KVEmotionRecorder::update_notMutexed(const PersonState& state)
{
  const auto takesSamples = [](const auto& scope) { return scope.second.remainingSamples != 0; };
  const auto taking = static_cast<std::size_t>(std::count_if(_scopes.begin(), _scopes.end(), takesSamples));
  // All are created before the first is stored: if memory runs out, no scope has changed.
  std::list<Sample> samples(taking, Sample(ko::SystemClock::now(), state));
  for (auto& [name, info] : _scopes)
  {
    if (info.remainingSamples == 0)
      continue;
    if (info.remainingSamples > 0)
      --info.remainingSamples;
    info.samples.splice(info.samples.end(), samples, samples.begin());
  }
}

bool KVEmotionRecorder::hasAnOpenScope_notMutexed() const
{
  return !_scopes.empty();
}

std::pair<std::string, std::list<KVEmotionRecorder::Sample>> KVEmotionRecorder::stopRecording(const std::string& scope)
{
  const Lock lock(_mutex);
  const auto found = _scopes.find(scope);
  if (found == _scopes.end())
    return {"error", {}};

  Verdict verdict;
  for (const Sample& sample : found->second.samples)
    verdict.add(sample.second);

  std::pair<std::string, std::list<Sample>> result(verdict.word(), {});
  result.second.swap(found->second.samples);
  _scopes.erase(found);
  return result;
}

}  // namespace KV
