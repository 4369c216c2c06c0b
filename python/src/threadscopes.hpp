#pragma once

#include <pybind11/pybind11.h>

#include <memory>
#include <stdexcept>
#include <utility>
#include <vector>

namespace binding
{

/// The scopes of one kind that `with` statements have opened on this thread.
///
/// A C++ scope must end on the thread that made it, in reverse order of making. A context manager may be left at any
/// time and place, so this is checked here. While a scope is open, its Python object is kept: the library refers to it.
template <typename Scope>
class ThreadScopes
{
public:
  template <typename... Argument>
  static void enter(const pybind11::object& owner, Argument&&... argument)
  {
    auto scope = std::make_unique<Scope>(std::forward<Argument>(argument)...);
    _open.push_back({owner.ptr(), std::move(scope)});
    owner.inc_ref();
  }

  /// \throws std::runtime_error if the innermost scope of this thread is not that of `owner`.
  static void leave(const pybind11::object& owner)
  {
    if (_open.empty() || _open.back().owner != owner.ptr())
      throw std::runtime_error("a scope ends on the thread that began it, before those around it");
    _open.pop_back();
    owner.dec_ref();
  }

private:
  struct Open
  {
    PyObject* owner;  // counted by hand: a thread may end without the interpreter lock
    std::unique_ptr<Scope> scope;
  };

  inline static thread_local std::vector<Open> _open;
};

}  // namespace binding
