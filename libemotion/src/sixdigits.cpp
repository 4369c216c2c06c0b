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

// The range of fixed notation: below it, and from the end that six digits round to a million, there is an exponent.
constexpr double smallestFixed = 1e-4;
constexpr double smallestMillion = 999999.5;

constexpr std::array<std::uint32_t, 10> powerOfTen{1,      10,      100,      1000,      10000,
                                                   100000, 1000000, 10000000, 100000000, 1000000000};

/// Returns how many decimal places show six digits of a magnitude: 0 from 100000 on, 9 below 0.001.
///
/// No float lies between a power of ten and the double used for it here.
std::size_t placesOf(double magnitude)
{
  if (magnitude >= 1.)
    return magnitude < 1e1 ? 5 : magnitude < 1e2 ? 4 : magnitude < 1e3 ? 3 : magnitude < 1e4 ? 2 : magnitude < 1e5;
  return magnitude >= 1e-1 ? 6 : magnitude >= 1e-2 ? 7 : magnitude >= 1e-3 ? 8 : 9;
}

/// Returns the magnitude of the number, times the power of ten for so many places, rounded to the nearest whole number,
/// halves to the even one. Whole numbers of 64 bits hold all of the product, so it is exact, and the rounding mode of
/// the processor does not matter. Without a branch, since the processor could not predict it.
///
/// \pre The magnitude is in [smallestFixed, smallestMillion), and the product is not above a million.
std::uint32_t shifted(float number, std::size_t places)
{
  constexpr unsigned fractionBits = 23;  // below 8 bits of an exponent and the sign
  constexpr std::uint32_t leadingBit = 1U << fractionBits;
  constexpr std::uint32_t wholeExponent = 127 + fractionBits;  // of floats whose last bit counts ones

  std::uint32_t bits = 0;
  static_assert(sizeof bits == sizeof number);
  std::memcpy(&bits, &number, sizeof bits);
  const std::uint32_t exponent = (bits >> fractionBits) & 0xffU;
  const std::uint32_t fraction = (bits & (leadingBit - 1)) | leadingBit;

  const std::uint64_t product = std::uint64_t{fraction} * powerOfTen[places];  // of 24 and 30 bits
  const std::uint32_t binaryPlaces = wholeExponent - exponent;                 // 4 to 37
  const std::uint64_t almostHalf = (std::uint64_t{1} << (binaryPlaces - 1)) - 1;
  const std::uint64_t isOdd = (product >> binaryPlaces) & 1U;
  return static_cast<std::uint32_t>((product + almostHalf + isOdd) >> binaryPlaces);
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

/// Returns the number of digits without the zeros at their end; at least one digit is not 0.
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

  std::size_t places = placesOf(magnitude);
  std::uint32_t sixDigits = shifted(number, places);
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
