#pragma once

#include <cstdint>
#include <string>

namespace benchmarks
{

/// The parts of a program or shared library [bytes].
struct ElfSize
{
  std::uint64_t text = 0;      ///< code, constants and tables for the dynamic linker: shared by all processes
  std::uint64_t data = 0;      ///< what each process has a copy of
  std::uint64_t zeros = 0;     ///< zeroed data of each process
  std::uint64_t file = 0;      ///< the whole file
  std::uint64_t stripped = 0;  ///< the file without sections that are not needed to run
};

/// \throws std::runtime_error if there is no such file, or if it is not a 64-bit ELF file.
ElfSize elfSizeOf(const std::string& path);

}  // namespace benchmarks
