#include "ros/updatesfile.hpp"

#include <skeigiot/session/outputcheck.hpp>
#include <skeigiot/session/outputstream.hpp>

namespace KV::tools
{

UpdatesFile::UpdatesFile(const std::string& path, const std::string& session, bool replaces)
{
  session::OutputCheck check(replaces);
  _exports.add("jsonl", path, check);
  _exports.beginSession({1, session});
}

void UpdatesFile::personUpdated(const session::Snapshot& snapshot)
{
  if (!_error.empty())
    return;
  try
  {
    for (session::SessionObserver* observer : _exports.observers())
      observer->personUpdated(snapshot);
  }
  catch (const session::WriteError& error)
  {
    _error = error.what();
  }
}

void UpdatesFile::complete()
{
  _exports.endSession("");
  _exports.commit();
}

}  // namespace KV::tools
