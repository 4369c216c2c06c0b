// A library that exports what none of ours may.

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
