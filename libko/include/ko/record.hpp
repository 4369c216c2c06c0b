#pragma once

#include <ko/type.hpp>

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

/// \file
/// Registers classes as structs: a record by its members, a handle by the record that it points to.
///
///     ko::registerRecord<Gaze>("::KV::Gaze", {{"yaw", &Gaze::yaw}, {"pitch", &Gaze::pitch}});

namespace ko
{

namespace detail
{

/// One member of a `Record`: its name, its type and how to reach it.
template <typename Record>
class Member
{
public:
  template <typename T>
  Member(std::string name, T Record::*pointer)
    : _name(std::move(name)),
      _type(&typeOf<T>),
      _get([pointer](Record& record) -> void* { return &(record.*pointer); }),
      _set([pointer](Record& record, void* value) { record.*pointer = *static_cast<const T*>(value); })
  {}

  const std::string& name() const { return _name; }

  /// Looked up when asked for, so that records may be registered in any order.
  TypeInterface* type() const { return _type(); }

  /// Returns null if the member's type is not registered.
  void* get(Record& record) const
  {
    const TypeInterface* memberType = type();
    return memberType ? memberType->initializeStorage(_get(record)) : nullptr;
  }

  bool set(Record& record, void* value) const
  {
    const TypeInterface* memberType = type();
    if (!memberType)
      return false;
    _set(record, memberType->ptrFromStorage(value));
    return true;
  }

private:
  std::string _name;
  TypeInterface* (*_type)();
  std::function<void*(Record&)> _get;
  std::function<void(Record&, void*)> _set;
};

/// The struct interface of a class with members.
template <typename Record>
class RecordType : public TypeBase<Record, StructTypeInterface>
{
public:
  RecordType(const std::string& className, std::vector<Member<Record>> members)
    : _className(normalizeClassName(className)), _members(std::move(members))
  {}

  std::string className() const override { return _className; }

  std::vector<std::string> elementsName() const override
  {
    std::vector<std::string> names;
    names.reserve(_members.size());
    for (const Member<Record>& member : _members)
      names.push_back(member.name());
    return names;
  }

  std::vector<TypeInterface*> memberTypes() const override
  {
    std::vector<TypeInterface*> types;
    types.reserve(_members.size());
    for (const Member<Record>& member : _members)
      types.push_back(member.type());
    return types;
  }

  void* get(void* storage, std::size_t index) const override
  {
    return index < _members.size() ? _members[index].get(this->object(storage)) : nullptr;
  }

  bool set(void* storage, std::size_t index, void* value) const override
  {
    return index < _members.size() && _members[index].set(this->object(storage), value);
  }

private:
  std::string _className;
  std::vector<Member<Record>> _members;
};

/// The struct interface of a handle: the members are those of the record that it points to, under a name of its own.
///
/// Everything else is the handle's: a clone shares the record, as every copy of a handle does.
template <typename Handle, typename Pointer>
class HandleType : public TypeBase<Handle, StructTypeInterface>
{
  using Record = typename Pointer::element_type;

public:
  HandleType(const std::string& className, Pointer Handle::*pointer, const StructTypeInterface& recordType)
    : _className(normalizeClassName(className)), _pointer(pointer), _recordType(recordType)
  {}

  std::string className() const override { return _className; }
  std::vector<std::string> elementsName() const override { return _recordType.elementsName(); }
  std::vector<TypeInterface*> memberTypes() const override { return _recordType.memberTypes(); }

  void* get(void* storage, std::size_t index) const override
  {
    Record* record = this->record(storage);
    return record ? _recordType.get(_recordType.initializeStorage(record), index) : nullptr;
  }

  bool set(void* storage, std::size_t index, void* value) const override
  {
    Record* record = this->record(storage);
    return record && _recordType.set(_recordType.initializeStorage(record), index, value);
  }

  bool convertFrom(const MemberDifference& difference) const override { return _recordType.convertFrom(difference); }
  bool convertTo(const MemberDifference& difference) const override { return _recordType.convertTo(difference); }

private:
  Record* record(void* storage) const { return (this->object(storage).*_pointer).get(); }

  std::string _className;
  Pointer Handle::*_pointer;
  const StructTypeInterface& _recordType;
};

/// Registers the interface of the class `T`, which the registry owns from then on; it is dropped if it is refused.
template <typename T>
bool registerForGood(std::unique_ptr<TypeInterface> type)
{
  if (!registerType(typeid(T), type.get()))
    return false;
  static_cast<void>(type.release());
  return true;
}

}  // namespace detail

/// Registers `Record` as a struct of this class name, with these members in this order.
///
/// The class needs a default constructor and a copy constructor, the types of the members assignment; they need not be
/// registered yet.
///
/// \return false if the class, or another one of this name, is registered already: that registration stays.
template <typename Record>
bool registerRecord(const std::string& className, std::vector<detail::Member<Record>> members)
{
  return detail::registerForGood<Record>(std::make_unique<detail::RecordType<Record>>(className, std::move(members)));
}

/// Registers `Handle` as a struct of this class name, with the members of the record that `pointer` points to.
///
/// \return false if the record is not registered, or the handle or another class of this name is already.
template <typename Handle, typename Pointer>
bool registerHandle(const std::string& className, Pointer Handle::*pointer)
{
  const TypeInterface* recordType = typeOf<typename Pointer::element_type>();
  if (!recordType || recordType->kind() != TypeKind::Struct)
    return false;
  return detail::registerForGood<Handle>(std::make_unique<detail::HandleType<Handle, Pointer>>(
      className, pointer, *static_cast<const StructTypeInterface*>(recordType)));
}

}  // namespace ko
