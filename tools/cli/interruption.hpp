#pragma once

namespace KV::tools
{

/// A signal came that ends the program.
struct Interrupted
{
  int signal;
};

/// While an object lives, the signals that end a program (interrupt, terminate, hang up) are noted instead, so that
/// temporary files can be removed first. Signals that were ignored before stay ignored.
///
/// Make at most one.
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
