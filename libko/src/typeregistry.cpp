#include <ko/type.hpp>
#include <ko/value.hpp>

#include <boost/thread/lock_guard.hpp>
#include <boost/thread/mutex.hpp>

#include <typeindex>
#include <unordered_map>

namespace ko
{

namespace
{

class DynamicType : public detail::TypeBase<Value, DynamicTypeInterface>
{
public:
  Value& value(void* storage) const override { return object(storage); }
};

/// Undoes a step at the end of the scope, if a later step failed.
template <typename Action>
class Undo
{
public:
  explicit Undo(Action action) : _action(action) {}
  Undo(const Undo&) = delete;
  Undo& operator=(const Undo&) = delete;
  ~Undo()
  {
    if (!_done)
      _action();
  }

  /// Keeps the step: all later ones succeeded.
  void keepDone() { _done = true; }

private:
  Action _action;
  bool _done = false;
};

/// The types of the process, by C++ type and by class name.
///
/// It holds the interfaces that every program shares, so that they belong to this library and not to one that may be
/// unloaded.
class Registry
{
public:
  Registry();

  bool addStruct(TypeInterface* type);
  bool addType(const std::type_info& info, TypeInterface* type);
  TypeInterface* type(const std::type_info& info) const;
  StructTypeInterface* structOf(std::string_view className) const;
  std::vector<StructTypeInterface*> structs() const;

private:
  template <typename T>
  void _addNative()
  {
    _types.emplace(typeid(T), detail::NativeType<T>::make().release());
  }

  bool _addStruct(const std::string& name, StructTypeInterface* type);

  mutable boost::mutex _mutex;

  // Guarded by _mutex
  std::unordered_map<std::type_index, TypeInterface*> _types;           // never null
  std::unordered_map<std::string, StructTypeInterface*> _structByName;  // by key(), never null
  std::vector<StructTypeInterface*> _structs;                           // in the order of registration
};

Registry::Registry()
{
  _types.emplace(typeid(Value), new DynamicType);
  _addNative<std::vector<Value>>();
  _addNative<std::map<std::string, Value>>();
  _addNative<bool>();
  _addNative<std::int8_t>();
  _addNative<std::uint8_t>();
  _addNative<std::int16_t>();
  _addNative<std::uint16_t>();
  _addNative<std::int32_t>();
  _addNative<std::uint32_t>();
  _addNative<std::int64_t>();
  _addNative<std::uint64_t>();
  _addNative<float>();
  _addNative<double>();
  _addNative<std::string>();
}

/// Built on first use, so that static initialisers of any unit may register; never destroyed, so that types may be used
/// at exit as well.
Registry& registry()
{
  static auto& instance = *new Registry;
  return instance;
}

/// The name by which a struct is found: its class name, normalised and without a leading "::".
std::string key(std::string_view className)
{
  std::string name = detail::normalizeClassName(className);
  return name.compare(0, 2, "::") == 0 ? name.substr(2) : name;
}

StructTypeInterface* asStruct(TypeInterface* type)
{
  return type && type->kind() == TypeKind::Struct ? static_cast<StructTypeInterface*>(type) : nullptr;
}

bool Registry::addStruct(TypeInterface* type)
{
  StructTypeInterface* structType = asStruct(type);
  if (!structType)
    return false;
  const std::string name = key(structType->className());  // before the lock: it is the registrant's code
  const boost::lock_guard<boost::mutex> lock(_mutex);
  return _addStruct(name, structType);
}

bool Registry::_addStruct(const std::string& name, StructTypeInterface* type)
{
  const auto [known, isNew] = _structByName.emplace(name, type);
  if (!isNew)
    return known->second == type;
  Undo forgetName([this, &name] { _structByName.erase(name); });
  _structs.push_back(type);
  forgetName.keepDone();
  return true;
}

bool Registry::addType(const std::type_info& info, TypeInterface* type)
{
  if (!type)
    return false;
  StructTypeInterface* structType = asStruct(type);
  const std::string name = structType ? key(structType->className()) : std::string();
  const boost::lock_guard<boost::mutex> lock(_mutex);
  if (!_types.emplace(info, type).second)
    return false;
  Undo unbind([this, &info] { _types.erase(info); });
  if (structType && !_addStruct(name, structType))
    return false;
  unbind.keepDone();
  return true;
}

TypeInterface* Registry::type(const std::type_info& info) const
{
  const boost::lock_guard<boost::mutex> lock(_mutex);
  const auto found = _types.find(info);
  return found == _types.end() ? nullptr : found->second;
}

StructTypeInterface* Registry::structOf(std::string_view className) const
{
  const std::string wanted = key(className);
  const boost::lock_guard<boost::mutex> lock(_mutex);
  const auto found = _structByName.find(wanted);
  return found == _structByName.end() ? nullptr : found->second;
}

std::vector<StructTypeInterface*> Registry::structs() const
{
  const boost::lock_guard<boost::mutex> lock(_mutex);
  return _structs;
}

}  // namespace

bool registerStruct(TypeInterface* type)
{
  return registry().addStruct(type);
}

bool registerType(const std::type_info& info, TypeInterface* type)
{
  return registry().addType(info, type);
}

TypeInterface* getType(const std::type_info& info)
{
  return registry().type(info);
}

StructTypeInterface* findStruct(std::string_view className)
{
  return registry().structOf(className);
}

std::vector<StructTypeInterface*> registeredStructs()
{
  return registry().structs();
}

}  // namespace ko
