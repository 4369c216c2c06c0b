#include <sixdigits.hpp>

#include <benchmark/benchmark.h>

#include <array>
#include <charconv>

/// \file
/// The six digits of a weight in the text of a force, compared with the function of the standard library that writes
/// the same.

namespace
{

// Typical weights of forces: from 1 down to 0.01.
float next(float weight)
{
  return weight > 0.01f ? weight * 0.99f : 1.f;
}

void BM_WriteSixDigits(benchmark::State& state)
{
  std::array<char, KV::sixDigitsSize> text{};
  float weight = 1.f;
  for (auto _ : state)
  {
    weight = next(weight);
    benchmark::DoNotOptimize(KV::writeSixDigits(text.data(), weight));
    benchmark::ClobberMemory();
  }
}
BENCHMARK(BM_WriteSixDigits);

void BM_WriteSixDigitsByToChars(benchmark::State& state)
{
  std::array<char, KV::sixDigitsSize> text{};
  float weight = 1.f;
  for (auto _ : state)
  {
    weight = next(weight);
    benchmark::DoNotOptimize(
        std::to_chars(text.data(), text.data() + text.size(), weight, std::chars_format::general, 6).ptr);
    benchmark::ClobberMemory();
  }
}
BENCHMARK(BM_WriteSixDigitsByToChars);

}  // namespace
