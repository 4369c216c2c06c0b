// Uses only the name of a record of the library, and that only at run time.

#include <ko/type.hpp>

#include <iostream>

int main()
{
  const ko::StructTypeInterface* type = ko::findStruct("KV::Person");
  std::cout << (type ? type->className() : "not registered") << '\n';
}
