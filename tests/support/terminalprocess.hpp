#pragma once

#include <sys/types.h>
#include <termios.h>

#include <string>
#include <vector>

namespace livetests
{

/// A run of the built command in a terminal of the test's own: drawn text is searched for between the marks of the
/// terminal.
class TerminalProcess
{
public:
  /// The kind of its standard input.
  enum class Input
  {
    Pipe,
    Terminal
  };

  explicit TerminalProcess(const std::vector<std::string>& arguments, Input input = Input::Pipe);
  ~TerminalProcess();
  TerminalProcess(const TerminalProcess&) = delete;
  TerminalProcess& operator=(const TerminalProcess&) = delete;

  /// Writes to the pipe.
  void write(const std::string& text) const;
  void closeInput();

  /// Presses keys.
  void press(const std::string& keys) const;

  void signal(int number) const;
  void resize(unsigned short columns) const;

  /// Waits until the text was drawn since the last call; returns false if it was not.
  bool sees(const std::string& text);

  /// Returns all drawn text that was not searched yet; read by sees().
  const std::string& drawn() const { return _drawn; }

  /// Reads all that is drawn up to the end; returns its exit status, or minus the signal that ended it.
  int status();

  /// Returns whether the terminal echoes and edits lines again as before.
  bool isRestored() const;

private:
  bool _readPiece();
  /// Returns whether the process ends while a program that does not hang would.
  bool _endsInTime() const;

  pid_t _process = 0;
  int _terminal = -1;
  int _input = -1;
  termios _before{};
  std::string _drawn;
};

}  // namespace livetests
