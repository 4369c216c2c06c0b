#pragma once

#include <iostream>
#include <streambuf>

namespace faults
{

/// Drops what is written to standard error while it lives, without any memory.
class DeafStandardError
{
public:
  DeafStandardError() : _former(std::cerr.rdbuf(&_nowhere)) {}
  ~DeafStandardError() { std::cerr.rdbuf(_former); }
  DeafStandardError(const DeafStandardError&) = delete;
  DeafStandardError& operator=(const DeafStandardError&) = delete;

private:
  struct Nowhere : std::streambuf
  {
    int_type overflow(int_type character) override { return traits_type::not_eof(character); }
  };

  Nowhere _nowhere;
  std::streambuf* _former;
};

}  // namespace faults
