// Reads one record as CBOR from standard input, by its class name alone, and prints its members.

#include <ko/cbor.hpp>
#include <ko/typeerror.hpp>

#include <iostream>
#include <iterator>

namespace
{

void print(const ko::Value& value, const std::string& path)
{
  const std::vector<std::string> names = value.names();
  if (names.empty())
    std::cout << path << ' ' << value << '\n';
  for (const std::string& name : names)
    print(value.at(name), path.empty() ? name : path + '.' + name);
}

}  // namespace

int main(int argc, char** argv)
{
  ko::StructTypeInterface* type = argc == 2 ? ko::findStruct(argv[1]) : nullptr;
  if (!type)
  {
    std::cerr << "usage: recordreader CLASSNAME\n";
    return 2;
  }
  try
  {
    print(ko::cbor::decode({std::istreambuf_iterator<char>(std::cin), {}}, type), "");
  }
  catch (const ko::TypeError& error)
  {
    std::cerr << error.what() << '\n';
    return 1;
  }
}
