#pragma once

#include <iostream>
#include <streambuf>

namespace faults
{

/// Drops the text for standard error while it lives, without allocating.
class SilencedStandardError
{
public:
  SilencedStandardError() : _former(std::cerr.rdbuf(&_nowhere)) {}
  ~SilencedStandardError() { std::cerr.rdbuf(_former); }
  SilencedStandardError(const SilencedStandardError&) = delete;
  SilencedStandardError& operator=(const SilencedStandardError&) = delete;

private:
  struct Nowhere : std::streambuf
  {
    int_type overflow(int_type character) override { return traits_type::not_eof(character); }
  };

  Nowhere _nowhere;
  std::streambuf* _former;
};

}  // namespace faults
