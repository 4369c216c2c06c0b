#pragma once

#include <skeigiot/session/orderedjobs.hpp>
#include <skeigiot/session/player.hpp>
#include <skeigiot/session/possiblejobs.hpp>
#include <skeigiot/session/studycheck.hpp>

#include <skeigiot/recordings/interruptioncheck.hpp>

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <functional>
#include <vector>

namespace KV::session
{

/// How much of a long work on sessions is done, by bytes. Threads add to it.
class StudyProgress
{
public:
  explicit StudyProgress(std::vector<std::uintmax_t> bytes) : _bytes(std::move(bytes))
  {
    for (std::uintmax_t& one : _bytes)
      _all += (one = std::max<std::uintmax_t>(one, 1));
  }

  double share() const
  {
    return static_cast<double>(_done.load()) / static_cast<double>(std::max<std::uintmax_t>(_all, 1));
  }

  /// One session under way.
  class OfSession
  {
  public:
    OfSession(StudyProgress& progress, std::size_t session) : _progress(progress), _bytes(progress._bytes[session]) {}
    ~OfSession() { reach(1.); }
    OfSession(const OfSession&) = delete;
    OfSession& operator=(const OfSession&) = delete;

    void reach(double share)
    {
      const auto reached = static_cast<std::uintmax_t>(static_cast<double>(_bytes) * std::clamp(share, 0., 1.));
      if (reached <= _reached)
        return;
      _progress._done += reached - _reached;
      _reached = reached;
    }

  private:
    StudyProgress& _progress;
    std::uintmax_t _bytes;
    std::uintmax_t _reached = 0;
  };

private:
  std::vector<std::uintmax_t> _bytes;  // by session
  std::uintmax_t _all = 0;
  std::atomic<std::uintmax_t> _done{0};
};

/// Nobody wants the result of a session any more.
struct StudyCancelled
{};

/// Works on the sessions with these numbers, several at a time, and calls `take` with each result in their order.
template <typename Result>
void workOnSessions(std::size_t count, const StudyWork& work, StudyProgress& progress,
                    const std::function<Result(std::size_t, StudyProgress::OfSession&)>& workOn,
                    const std::function<void(std::size_t, Result)>& take)
{
  const auto check = [&work] {
    if (work.check)
      work.check();
  };
  OrderedJobs<Result> jobs(count, possibleJobs(work.jobs), [&](std::size_t i, const std::atomic<bool>& cancelled) {
    const recordings::InterruptionCheck whileReading([&check, &cancelled] {
      check();
      if (cancelled)
        throw StudyCancelled();
    });
    StudyProgress::OfSession session(progress, i);
    return workOn(i, session);
  });
  for (std::size_t i = 0; i < count; ++i)
    take(i, jobs.take([&] {
      check();
      if (work.progress)
        work.progress(i, count, progress.share());
    }));
}

}  // namespace KV::session
