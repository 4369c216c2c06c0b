#include "sixdigits.hpp"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace KV
{

namespace
{

constexpr std::size_t digitCount = 6;
constexpr std::uint32_t million = 1000000;

// What is written in fixed notation: below, and from where six digits round to a million, there is an exponent.
constexpr double smallestFixed = 1e-4;
constexpr double smallestMillion = 999999.5;

constexpr std::array<double, 10> powerOfTen{1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9};

/// Returns how many decimal places show six digits of a magnitude: 0 from 100000 on, 9 below 0.001.
///
/// No float lies between a power of ten and the double that stands for it here.
std::size_t placesOf(double magnitude)
{
  if (magnitude >= 1.)
    return magnitude < 1e1 ? 5 : magnitude < 1e2 ? 4 : magnitude < 1e3 ? 3 : magnitude < 1e4 ? 2 : magnitude < 1e5;
  return magnitude >= 1e-1 ? 6 : magnitude >= 1e-2 ? 7 : magnitude >= 1e-3 ? 8 : 9;
}

/// Rounds to the nearest whole number, halves to the even one, whatever rounding the processor is set to. Without a
/// branch, since none could be foreseen.
std::uint32_t rounded(double number)
{
  const auto whole = static_cast<std::uint32_t>(number);
  const double rest = number - whole;
  const auto isMore = static_cast<std::uint32_t>(rest > 0.5);
  const auto isHalf = static_cast<std::uint32_t>(rest == 0.5);
  return whole + (isMore | (isHalf & whole & 1U));
}

/// Up to eight characters, the first in the lowest byte: moved about in a register, and stored as they are.
using Characters = std::uint64_t;
static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__, "characters are stored with the first in the lowest byte");

constexpr unsigned bitsPerCharacter = 8;

/// The characters of the numbers from 00 to 99.
constexpr std::array<std::uint16_t, 100> makePairs()
{
  std::array<std::uint16_t, 100> result{};
  for (unsigned i = 0; i < result.size(); ++i)
    result[i] = static_cast<std::uint16_t>(('0' + i / 10) | (('0' + i % 10) << bitsPerCharacter));
  return result;
}

constexpr std::array<std::uint16_t, 100> pairs = makePairs();
constexpr Characters sixZeros = 0x303030303030;
constexpr Characters zeroPoint = 0x303030302e30;  // "0.0000"

Characters digitsOf(std::uint32_t number)
{
  constexpr unsigned pair = 2 * bitsPerCharacter;
  return Characters{pairs[number / 10000]} | (Characters{pairs[number / 100 % 100]} << pair) |
         (Characters{pairs[number % 100]} << (2 * pair));
}

/// Returns how many of the digits there are without the zeros at their end; one at least is not 0.
std::size_t countWithoutZeros(Characters digits)
{
  const auto unusedBits = static_cast<unsigned>(__builtin_clzll(digits ^ sixZeros));
  return sizeof(Characters) - unusedBits / bitsPerCharacter;
}

void put(char* place, Characters characters)
{
  std::memcpy(place, &characters, sizeof characters);
}

}  // namespace

char* writeSixDigits(char* first, float number)
{
  const auto magnitude = static_cast<double>(std::fabs(number));
  if (!(magnitude >= smallestFixed && magnitude < smallestMillion))
    return std::to_chars(first, first + sixDigitsSize, number, std::chars_format::general, digitCount).ptr;

  // The product is exact: a float has 24 bits, and the odd part of 10^9 has 21.
  std::size_t places = placesOf(magnitude);
  std::uint32_t sixDigits = rounded(magnitude * powerOfTen[places]);
  if (sixDigits == million)
  {
    sixDigits /= 10;
    --places;
  }

  const Characters digits = digitsOf(sixDigits);
  const std::size_t count = countWithoutZeros(digits);

  *first = '-';
  first += std::signbit(number) ? 1 : 0;
  if (places >= digitCount)  // below 1
  {
    const std::size_t zeros = places - digitCount;
    put(first, zeroPoint);
    put(first + 2 + zeros, digits);
    return first + 2 + zeros + count;
  }
  const std::size_t whole = digitCount - places;
  put(first, digits);
  if (count <= whole)
    return first + whole;
  first[whole] = '.';
  put(first + whole + 1, digits >> (whole * bitsPerCharacter));
  return first + 1 + count;
}

}  // namespace KV
