// This program is linked against the middleware only; the library comes by dlopen().

#include "records.hpp"

#include <ko/cbor.hpp>
#include <ko/json.hpp>

#include <gtest/gtest.h>

#include <dlfcn.h>

namespace
{

std::vector<std::string> registeredNames()
{
  std::vector<std::string> names;
  for (const ko::StructTypeInterface* type : ko::registeredStructs())
    names.push_back(type->className());
  return names;
}

// One test, since the types that a library registers stay for the life of the process.
TEST(LoadedLibrary, BringsItsRecordsAndLeavesThemInUse)
{
  ASSERT_TRUE(registeredNames().empty());
  ASSERT_EQ(nullptr, ko::findStruct("KV::Person"));

  void* library = ::dlopen(SKEIGIOT_LIBRARY, RTLD_NOW | RTLD_LOCAL);
  ASSERT_NE(nullptr, library) << ::dlerror();
  EXPECT_EQ(records::classNames(), registeredNames());

  ASSERT_EQ(0, ::dlclose(library));
  for (const std::string& name : registeredNames())
  {
    std::mt19937 random(1);
    const ko::Value value = ko::Value::ofType(ko::findStruct(name));
    records::fillAtRandom(value, random);
    EXPECT_EQ(value, ko::cbor::decode(ko::cbor::encode(value), value.type())) << name;
  }
}

}  // namespace
