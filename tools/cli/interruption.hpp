#pragma once

namespace KV::tools
{

/// A signal came that ends the program.
struct Interrupted
{
  int signal;
};

/// While it lives, the signals that end a program (interrupt, terminate, hang up) are noted instead, so that temporary
/// files can be removed first. One that was ignored before stays ignored.
///
/// Make one at most.
class Interruption
{
public:
  Interruption();
  ~Interruption();
  Interruption(const Interruption&) = delete;
  Interruption& operator=(const Interruption&) = delete;

  /// May be called from any thread.
  ///
  /// \throws Interrupted if a signal came.
  static void check();
};

}  // namespace KV::tools
