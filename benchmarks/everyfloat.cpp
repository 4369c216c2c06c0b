/// Compares three shortcuts of the library with the functions that they replace, for every float:
///
/// - digits: the six digits in diagnostic texts with those of std::to_chars;
/// - erf: the error function with that of Boost by its defaults, which evaluates in extended precision;
/// - step: the soft step, which is not evaluated where it is at its floor, with its formula, for a reference of 2.
///
/// usage: everyfloat [digits|erf|step] [--every N]    only one of them; only every Nth float, for a quick look
///
/// Prints how many floats were compared and the first that differ. Exits with 1 if any does.

#include <sixdigits.hpp>
#include <softstep.hpp>

#include <boost/math/special_functions/erf.hpp>

#include <algorithm>
#include <array>
#include <atomic>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <exception>
#include <iostream>
#include <mutex>
#include <stdexcept>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace
{

constexpr std::uint64_t floatCount = std::uint64_t{1} << 32;

std::uint32_t bitsOf(float number)
{
  std::uint32_t bits = 0;
  static_assert(sizeof bits == sizeof number);
  std::memcpy(&bits, &number, sizeof bits);
  return bits;
}

float floatOf(std::uint64_t bits)
{
  const auto narrow = static_cast<std::uint32_t>(bits);
  float number = 0.f;
  std::memcpy(&number, &narrow, sizeof number);
  return number;
}

using Text = std::array<char, KV::sixDigitsSize>;

std::string_view view(const Text& text, const char* end)
{
  return {text.data(), static_cast<std::size_t>(end - text.data())};
}

bool haveSameDigits(float number)
{
  constexpr int digits = 6;
  Text ours;
  Text standard;
  char* const ourEnd = KV::writeSixDigits(ours.data(), number);
  char* const standardEnd =
      std::to_chars(standard.data(), standard.data() + standard.size(), number, std::chars_format::general, digits).ptr;
  return view(ours, ourEnd) == view(standard, standardEnd);
}

bool areSame(float a, float b)
{
  return bitsOf(a) == bitsOf(b) || (std::isnan(a) && std::isnan(b));
}

float promotedErf(float number)
{
  return static_cast<float>(boost::math::erf(static_cast<double>(number)));
}

bool haveSameErf(float number)
{
  return areSame(KV::errorFunction(number), promotedErf(number));
}

bool haveSameStep(float number)
{
  constexpr float reference = 2.f;  // the steepness is then 1
  constexpr float floor = 0.01f;
  const float step = (promotedErf(reference - number) + 1.f) * 0.5f;
  return areSame(KV::softStep(number, reference), step > floor ? step : floor);
}

/// The comparisons.
struct Comparison
{
  std::string_view name;
  bool (*areSame)(float number);
};

constexpr std::array<Comparison, 3> comparisons{
    {{"digits", haveSameDigits}, {"erf", haveSameErf}, {"step", haveSameStep}}};

/// The result, from all threads.
class Findings
{
public:
  void add(std::uint64_t compared, const std::vector<float>& different)
  {
    const std::lock_guard<std::mutex> lock(_mutex);
    _compared += compared;
    _different += different.size();
    const std::size_t room = std::min(shown - _firstDifferent.size(), different.size());
    _firstDifferent.insert(_firstDifferent.end(), different.begin(),
                           different.begin() + static_cast<std::ptrdiff_t>(room));
    std::cerr << '\r' << _compared / 1000000 << " million floats" << std::flush;
  }

  /// \pre All threads have ended.
  void print(std::string_view name) const
  {
    std::cerr << '\n';
    std::cout << name << ": " << _compared << " floats compared, " << _different << " differ\n";
    for (const float number : _firstDifferent)
      std::cout << "  " << std::hexfloat << number << std::defaultfloat << " (" << number << ")\n";
  }

  bool areEmpty() const { return _different == 0; }

private:
  static constexpr std::size_t shown = 10;

  std::mutex _mutex;
  std::uint64_t _compared = 0;
  std::uint64_t _different = 0;
  std::vector<float> _firstDifferent;
};

/// Compares one range of floats after another until all are done.
void compareStretches(const Comparison& comparison, std::uint64_t every, std::atomic<std::uint64_t>& nextStretch,
                      Findings& findings)
{
  const std::uint64_t length = every << 22;
  for (std::uint64_t begin = nextStretch.fetch_add(length); begin < floatCount; begin = nextStretch.fetch_add(length))
  {
    std::uint64_t compared = 0;
    std::vector<float> different;
    for (std::uint64_t bits = begin; bits < std::min(begin + length, floatCount); bits += every)
    {
      ++compared;
      if (!comparison.areSame(floatOf(bits)))
        different.push_back(floatOf(bits));
    }
    findings.add(compared, different);
  }
}

/// Returns whether all floats compared are the same.
bool compare(const Comparison& comparison, std::uint64_t every)
{
  std::atomic<std::uint64_t> nextStretch(0);
  Findings findings;
  std::vector<std::thread> threads;
  for (unsigned i = 0; i < std::max(1U, std::thread::hardware_concurrency()); ++i)
    threads.emplace_back([&] { compareStretches(comparison, every, nextStretch, findings); });
  for (std::thread& thread : threads)
    thread.join();
  findings.print(comparison.name);
  return findings.areEmpty();
}

struct Arguments
{
  std::string only;  ///< empty is all
  std::uint64_t every = 1;
};

/// \throws std::invalid_argument for any other arguments.
Arguments parse(const std::vector<std::string>& words)
{
  constexpr unsigned long greatestEvery = 1000000;
  Arguments arguments;
  for (auto word = words.begin(); word != words.end(); ++word)
    if (*word == "--every" && word + 1 != words.end())
      arguments.every = std::stoul(*++word);
    else if (std::any_of(comparisons.begin(), comparisons.end(), [&](const auto& c) { return c.name == *word; }))
      arguments.only = *word;
    else
      throw std::invalid_argument(*word);
  if (arguments.every < 1 || arguments.every > greatestEvery)
    throw std::invalid_argument("--every");
  return arguments;
}

int run(const Arguments& arguments)
{
  bool allSame = true;
  for (const Comparison& comparison : comparisons)
    if (arguments.only.empty() || arguments.only == comparison.name)
      allSame = compare(comparison, arguments.every) && allSame;
  return allSame ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv)
{
  try
  {
    return run(parse({argv + 1, argv + argc}));
  }
  catch (const std::exception& error)
  {
    std::cerr << "everyfloat: " << error.what() << "\nusage: everyfloat [digits|erf|step] [--every N]\n";
    return 2;
  }
}
