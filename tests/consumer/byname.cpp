// Names nothing of the library but a record, and that at run time only.

#include <ko/type.hpp>

#include <iostream>

int main()
{
  const ko::StructTypeInterface* type = ko::findStruct("KV::Person");
  std::cout << (type ? type->className() : "not registered") << '\n';
}
