#pragma once

#include <ko/log.hpp>

#include <boost/function.hpp>

namespace faults
{

/// A log handler that is added while the object lives.
class ScopedHandler
{
public:
  explicit ScopedHandler(const boost::function<void(const ko::log::Record&)>& handler)
    : _id(ko::log::addHandler(handler))
  {}
  ~ScopedHandler() { ko::log::removeHandler(_id); }
  ScopedHandler(const ScopedHandler&) = delete;
  ScopedHandler& operator=(const ScopedHandler&) = delete;

private:
  ko::log::HandlerId _id;
};

/// Keeps records away from standard error.
inline void ignoreRecord(const ko::log::Record&) {}

}  // namespace faults
