#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/session/sessionobserver.hpp>

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

  /// Says that the session with this number comes next; they count from 1.
  void beginSession(int number) { _session = number; }

protected:
  /// Returns the number of the session that is exported, from 1.
  int session() const { return _session; }

private:
  int _session = 1;
};

}  // namespace KV::session
