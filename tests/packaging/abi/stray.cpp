// A library that exports a symbol which our libraries must not export.

#ifdef NameOfAnother

namespace another
{

[[gnu::visibility("default")]] void stray() {}

}  // namespace another

#endif

#ifdef ParameterOfAnother

namespace nlohmann
{

struct Tree
{};

}  // namespace nlohmann

namespace KV
{

[[gnu::visibility("default")]] void stray(const nlohmann::Tree&) {}

}  // namespace KV

#endif
