#include "typehash.hpp"

#include "typedescriptions.hpp"

#include <openssl/evp.h>

#include <array>
#include <map>
#include <stdexcept>

namespace KV::ros2
{
namespace
{

const std::string prefix = "RIHS01_";
const std::string member = "typehash=";

std::string jsonOf(const FieldDescription& field)
{
  return R"({"name": ")" + field.name + R"(", "type": {"type_id": )" + std::to_string(field.typeId) +
         R"(, "capacity": )" + std::to_string(field.capacity) + R"(, "string_capacity": 0, "nested_type_name": ")" +
         field.nestedType + R"("}})";
}

std::string jsonOf(const TypeDescription& type)
{
  std::string fields;
  for (const FieldDescription& field : type.fields)
    fields += (fields.empty() ? "" : ", ") + jsonOf(field);
  return R"({"type_name": ")" + type.name + R"(", "fields": [)" + fields + "]}";
}

// The types of members, and of their members, by name.
void collect(const TypeDescription& type, std::map<std::string, TypeDescription>& referenced)
{
  for (const FieldDescription& field : type.fields)
  {
    if (field.nestedType.empty() || referenced.count(field.nestedType) > 0)
      continue;
    const TypeDescription nested = descriptionsOf(field.nestedType).at(0);
    referenced.emplace(field.nestedType, nested);
    collect(nested, referenced);
  }
}

std::string jsonWithReferenced(const TypeDescription& type)
{
  std::map<std::string, TypeDescription> referenced;
  collect(type, referenced);
  std::string others;
  for (const auto& [name, other] : referenced)
    others += (others.empty() ? "" : ", ") + jsonOf(other);
  return R"({"type_description": )" + jsonOf(type) + R"(, "referenced_type_descriptions": [)" + others + "]}";
}

std::string sha256(const std::string& text)
{
  std::array<unsigned char, EVP_MAX_MD_SIZE> bytes{};
  unsigned int size = 0;
  if (EVP_Digest(text.data(), text.size(), bytes.data(), &size, EVP_sha256(), nullptr) != 1)
    throw std::runtime_error("the hash of a type cannot be computed: OpenSSL has no SHA-256");
  const std::string digits = "0123456789abcdef";
  std::string hex;
  for (unsigned int i = 0; i < size; ++i)
  {
    hex += digits[bytes.at(i) >> 4U];
    hex += digits[bytes.at(i) & 0xfU];
  }
  return hex;
}

}  // namespace

std::vector<std::string> typeHashesOf(const std::string& type)
{
  std::vector<std::string> hashes;
  for (const TypeDescription& description : descriptionsOf(type))
    hashes.push_back(prefix + sha256(jsonWithReferenced(description)));
  return hashes;
}

std::string userDataOf(const std::string& type)
{
  const std::vector<std::string> hashes = typeHashesOf(type);
  return hashes.empty() ? std::string() : member + hashes.front() + ";";
}

std::string hashIn(const std::string& userData)
{
  const std::size_t begin = userData.find(member);
  if (begin == std::string::npos)
    return {};
  const std::size_t from = begin + member.size();
  const std::size_t end = userData.find(';', from);
  return userData.substr(from, end == std::string::npos ? end : end - from);
}

}  // namespace KV::ros2
