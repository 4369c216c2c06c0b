#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/session/sessionname.hpp>
#include <skeigiot/session/sessionobserver.hpp>

#include <string>

namespace KV::session
{

/// Writes one session after the other to a stream.
///
/// Exporters are made by name: see exportformat.hpp.
class SKEIGIOT_API Exporter : public SessionObserver
{
public:
  /// Writes the head of the file, if its format has one. Call it once for each file, before the first session.
  virtual void writeHeader() {}

  /// Says which session comes next.
  void beginSession(const SessionName& session) { _session = session; }

  /// Says that the session has ended, after the last call of an observer's function. `error` is what ended it early, or
  /// kept it from beginning; it is empty if nothing did.
  virtual void endSession(const std::string& /*error*/) {}

protected:
  /// Returns which session is exported.
  const SessionName& session() const { return _session; }

private:
  SessionName _session;
};

}  // namespace KV::session
