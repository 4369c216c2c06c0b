#include "linkorder.hpp"
#include "records.hpp"

#include <skeigiot/person.hpp>

#include <algorithm>

namespace
{

const std::string missingAtInitialisation = missingRecords();

bool isComplete(const ko::StructTypeInterface* type)
{
  if (!type)
    return false;
  const std::vector<ko::TypeInterface*> types = type->memberTypes();
  return !types.empty() && std::count(types.begin(), types.end(), nullptr) == 0;
}

}  // namespace

std::string missingRecords()
{
  std::string missing;
  for (const std::string& name : records::classNames())
  {
    if (!isComplete(ko::findStruct(name)))
      missing += name + ' ';
  }
  if (ko::typeOf<KV::Person>() != ko::findStruct("KV::Person"))
    missing += "the C++ type of KV::Person";
  return missing;
}

const std::string& earlyMissingRecords()
{
  return missingAtInitialisation;
}
