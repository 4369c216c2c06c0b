#include "cost.hpp"

#include "target.hpp"

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <string>

#include <malloc.h>

// The hooks of the sanitizers, where the program has them.
// NOLINTBEGIN(readability-identifier-naming,bugprone-reserved-identifier): the names are those of the sanitizers
extern "C" __attribute__((weak)) int __sanitizer_install_malloc_and_free_hooks(void (*allocated)(const volatile void*,
                                                                                                 std::size_t),
                                                                               void (*freed)(const volatile void*));
extern "C" __attribute__((weak)) std::size_t __sanitizer_get_allocated_size(const volatile void*);
// NOLINTEND(readability-identifier-naming,bugprone-reserved-identifier)

namespace fuzz
{

namespace
{

// The budget of a target: for any input, and for each of its bytes. Small inputs need the most for each byte: a line
// that names a person creates the memory of that person, and a report keeps each update.
constexpr std::int64_t memoryOfAny = std::int64_t{128} << 20U;  // [bytes]
constexpr std::int64_t memoryPerByte = 4096;
constexpr std::int64_t writtenOfAny = std::int64_t{1} << 20U;  // [bytes]
constexpr std::int64_t writtenPerByte = 128;
constexpr double secondsOfAny = 5.;
constexpr double secondsPerByte = 0.001;

std::atomic<std::int64_t> held = 0;  // [bytes] of memory
std::atomic<std::int64_t> mostHeld = 0;

void noteAllocated(const volatile void*, std::size_t size)
{
  const std::int64_t now = held += static_cast<std::int64_t>(size);
  if (now > mostHeld)
    mostHeld = now;
}

void noteFreed(const volatile void* memory)
{
  held -= static_cast<std::int64_t>(__sanitizer_get_allocated_size(memory));
}

/// Returns whether the sanitizer counts the memory; else the kernel's figures are used.
bool countsMemory()
{
  static const bool counts = __sanitizer_install_malloc_and_free_hooks != nullptr &&
                             __sanitizer_get_allocated_size != nullptr &&
                             __sanitizer_install_malloc_and_free_hooks(noteAllocated, noteFreed) > 0;
  return counts;
}

/// Returns a number from a file of the kernel, "name: number"; 0 if the name is missing.
std::int64_t numberIn(const char* path, const std::string& name)
{
  std::ifstream file(path);
  for (std::string line; std::getline(file, line);)
    if (line.compare(0, name.size(), name) == 0)
      return std::strtoll(line.c_str() + name.size(), nullptr, 10);
  return 0;
}

constexpr std::int64_t kibibyte = 1024;

std::int64_t residentMemory()
{
  return kibibyte * numberIn("/proc/self/status", "VmRSS:");
}

std::int64_t mostResidentMemory()
{
  return kibibyte * numberIn("/proc/self/status", "VmHWM:");
}

std::int64_t writtenBytes()
{
  return numberIn("/proc/self/io", "wchar:");
}

double secondsOfProcessor()
{
  timespec time{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

/// The resources used since the object was made.
class Cost
{
public:
  Cost() : _countsMemory(countsMemory()), _written(writtenBytes()), _seconds(secondsOfProcessor())
  {
    if (_countsMemory)
    {
      mostHeld = held.load();
      _memory = held;
      return;
    }
    malloc_trim(0);
    std::ofstream("/proc/self/clear_refs") << "5";  // resets VmHWM
    _memory = residentMemory();
  }

  std::int64_t memory() const { return (_countsMemory ? mostHeld.load() : mostResidentMemory()) - _memory; }
  std::int64_t written() const { return writtenBytes() - _written; }
  double seconds() const { return secondsOfProcessor() - _seconds; }

private:
  bool _countsMemory;
  std::int64_t _memory = 0;
  std::int64_t _written;
  double _seconds;
};

}  // namespace

void runWithinBudget(const Target& target, std::string_view input)
{
  const auto size = static_cast<std::int64_t>(input.size());
  const Cost cost;
  target.run(input);
  expect(cost.memory() <= memoryOfAny + memoryPerByte * size, "memory is in proportion to the input");
  expect(cost.written() <= writtenOfAny + writtenPerByte * size, "bytes written are in proportion to the input");
  expect(cost.seconds() <= secondsOfAny + secondsPerByte * static_cast<double>(size),
         "time is in proportion to the input");
}

}  // namespace fuzz
