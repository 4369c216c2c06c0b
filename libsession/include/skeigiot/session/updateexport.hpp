#pragma once

#include <skeigiot/api.hpp>
#include <skeigiot/session/sessionobserver.hpp>

namespace KV::session
{

/// Writes every update of every person to a file.
class SKEIGIOT_API UpdateExport : public SessionObserver
{
public:
  /// Says that the next updates come from the recording with this number.
  void beginRecording(int number) { _recording = number; }

protected:
  int recording() const { return _recording; }

private:
  int _recording = 1;
};

}  // namespace KV::session
