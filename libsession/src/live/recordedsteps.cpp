#include "live/recordedsteps.hpp"

namespace KV::session
{

void RecordedSteps::write(const recordings::Step& step)
{
  _use([&] { _writer.write(step); });
}

void RecordedSteps::flush()
{
  _use([this] { _stream.flush(); });
}

template <typename Use>
void RecordedSteps::_use(Use&& use)
{
  if (!_error.empty())
    return;
  try
  {
    use();
  }
  catch (const WriteError& problem)
  {
    _error = problem.what();
  }
}

}  // namespace KV::session
