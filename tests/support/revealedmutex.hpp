#pragma once

#include <boost/thread/mutex.hpp>

namespace support
{

/// Lets a test access the private mutex of a class. An explicit instantiation may name private members:
///
///     namespace support
///     {
///     boost::mutex& mutexOf(KV::AmbianceState& state);
///     template struct RevealedMutex<KV::AmbianceState, &KV::AmbianceState::_mutex>;
///     }
template <typename Class, boost::mutex Class::*mutex>
struct RevealedMutex
{
  friend boost::mutex& mutexOf(Class& object) { return object.*mutex; }
};

}  // namespace support
