#pragma once

#include <sys/types.h>
#include <termios.h>

#include <string>
#include <vector>

namespace livetests
{

/// A run of the built command in a terminal of the test's own: what it draws is looked for as text between the marks of
/// the terminal.
class TerminalProcess
{
public:
  /// What its standard input is.
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

  /// Waits until the text was drawn since the last call, and returns whether it was.
  bool sees(const std::string& text);

  /// Returns all that was drawn and not looked for yet; read by sees().
  const std::string& drawn() const { return _drawn; }

  /// Waits for its end; returns its exit status, or minus the signal that ended it.
  int status();

  /// Tells whether the terminal echoes and edits lines again as it did before.
  bool isRestored() const;

private:
  pid_t _process = 0;
  int _terminal = -1;
  int _input = -1;
  termios _before{};
  std::string _drawn;
};

}  // namespace livetests
