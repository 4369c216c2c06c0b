#include <skeigiot/person.hpp>

#include <ko/cbor.hpp>
#include <ko/json.hpp>
#include <ko/type.hpp>
#include <ko/value.hpp>

#include <benchmark/benchmark.h>

#include <cstddef>
#include <string>

namespace
{

/// Returns a person with numbers of full length, as in an estimate.
KV::Person somebody()
{
  KV::Person person(1234);
  person.personState = KV::PersonState(-0.31830987f, 0.7853982f, 0.57721566f, 0.91596556f);
  return person;
}

void countBytes(benchmark::State& state, std::size_t bytes)
{
  state.counters["bytes"] = static_cast<double>(bytes);
}

void BM_TypesEncodePersonAsCbor(benchmark::State& state)
{
  const ko::Value person = ko::Value::from(somebody());
  for (auto _ : state)
    benchmark::DoNotOptimize(ko::cbor::encode(person));
  countBytes(state, ko::cbor::encode(person).size());
}
BENCHMARK(BM_TypesEncodePersonAsCbor);

void BM_TypesDecodePersonFromCbor(benchmark::State& state)
{
  const auto bytes = ko::cbor::encode(ko::Value::from(somebody()));
  for (auto _ : state)
    benchmark::DoNotOptimize(ko::cbor::decode(bytes, ko::typeOf<KV::Person>()));
  countBytes(state, bytes.size());
}
BENCHMARK(BM_TypesDecodePersonFromCbor);

void BM_TypesEncodePersonAsJson(benchmark::State& state)
{
  const ko::Value person = ko::Value::from(somebody());
  for (auto _ : state)
    benchmark::DoNotOptimize(ko::json::encode(person));
  countBytes(state, ko::json::encode(person).size());
}
BENCHMARK(BM_TypesEncodePersonAsJson);

void BM_TypesDecodePersonFromJson(benchmark::State& state)
{
  const std::string text = ko::json::encode(ko::Value::from(somebody()));
  for (auto _ : state)
    benchmark::DoNotOptimize(ko::json::decode(text, ko::typeOf<KV::Person>()));
  countBytes(state, text.size());
}
BENCHMARK(BM_TypesDecodePersonFromJson);

/// A member of the record behind a handle, by its index.
void BM_TypesGetByIndex(benchmark::State& state)
{
  const ko::StructTypeInterface* type = ko::findStruct("KV::PersonState");
  KV::PersonState person;
  for (auto _ : state)
    benchmark::DoNotOptimize(type->get(&person, 4));
}
BENCHMARK(BM_TypesGetByIndex);

void BM_TypesTypeOf(benchmark::State& state)
{
  for (auto _ : state)
    benchmark::DoNotOptimize(ko::typeOf<KV::Person>());
}
BENCHMARK(BM_TypesTypeOf);

void BM_TypesFindStruct(benchmark::State& state)
{
  for (auto _ : state)
    benchmark::DoNotOptimize(ko::findStruct("::KV::Person"));
}
BENCHMARK(BM_TypesFindStruct);

}  // namespace
