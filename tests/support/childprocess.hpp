#pragma once

#include <sys/types.h>
#include <string>
#include <string_view>
#include <vector>

namespace livetests
{

/// A run of the built command whose standard input and output are the test's. Standard error is that of the test.
class ChildProcess
{
public:
  explicit ChildProcess(const std::vector<std::string>& arguments);
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  /// Writes all of the text to its standard input.
  void write(std::string_view text) const;

  /// Waits for the next line of its output, and returns it without the line end; empty at the end of the output.
  ///
  /// \throws std::runtime_error if no line comes for long.
  std::string readLine();

  /// Returns whether there is output that was not read yet, without waiting for it.
  bool hasOutput() const;

  pid_t id() const { return _process; }

  void closeInput();
  void closeOutput();
  void signal(int number) const;

  /// Waits for its end; returns its exit status, or minus the signal that ended it.
  int wait();

private:
  pid_t _process = 0;
  int _input = -1;
  int _output = -1;
  std::string _read;
};

}  // namespace livetests
