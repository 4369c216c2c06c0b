#pragma once

#include "sessionobserver.hpp"

namespace tools
{

/// Writes every update of every person to a file.
class UpdateExport : public SessionObserver
{
public:
  /// Says that the next updates come from the recording with this number.
  void beginRecording(int number) { _recording = number; }

protected:
  int recording() const { return _recording; }

private:
  int _recording = 1;
};

}  // namespace tools
