#include <skeigiot/recordings/interruptioncheck.hpp>

#include <utility>

namespace KV::recordings
{
namespace
{
thread_local const InterruptionCheck* newest = nullptr;

}  // namespace

InterruptionCheck::InterruptionCheck(std::function<void()> check)
  : _check(std::move(check)), _outer(std::exchange(newest, this))
{}

InterruptionCheck::~InterruptionCheck()
{
  newest = _outer;
}

void InterruptionCheck::ask()
{
  if (newest != nullptr)
    newest->_check();
}

}  // namespace KV::recordings
