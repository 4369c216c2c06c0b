#include <ko/proxy.hpp>

#include <boost/thread/lock_guard.hpp>
#include <boost/thread/mutex.hpp>

#include <algorithm>

namespace ko::proxy
{

namespace
{

struct Registry
{
  boost::mutex mutex;
  std::vector<Family> families;  // guarded by mutex
};

/// Built on first use and never destroyed, so that static initialisers of any unit may include families.
Registry& registry()
{
  static auto& instance = *new Registry;
  return instance;
}

}  // namespace

void include(Family family)
{
  Registry& shared = registry();
  const boost::lock_guard<boost::mutex> lock(shared.mutex);
  if (std::find(shared.families.begin(), shared.families.end(), family) == shared.families.end())
    shared.families.push_back(family);
}

std::vector<Family> included()
{
  Registry& shared = registry();
  const boost::lock_guard<boost::mutex> lock(shared.mutex);
  return shared.families;
}

}  // namespace ko::proxy
