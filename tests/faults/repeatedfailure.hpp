#pragma once

#include "allocationfault.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <new>
#include <string>

namespace faults
{

/// Returns the next allocation to fail: each of the first 1000, then one in 20 of those so far. A file has thousands,
/// and the later ones are made by the same code for one step after the other.
inline std::size_t nextToFail(std::size_t allocation)
{
  constexpr std::size_t eachUntil = 1000;
  return allocation < eachUntil ? allocation + 1 : allocation + allocation / 20;
}

/// Makes allocations of an operation fail, see nextToFail(), until a run has no such allocation left; then again, with
/// all later allocations of a run failing as well.
///
/// Each run makes a result with `make()`, passes it to `operate(result)`, and after it to `check(result, threw)`, in
/// which nothing fails: `threw` says whether std::bad_alloc reached the caller. All memory of a run must be freed with
/// its result. Returns how often it reached the caller.
template <typename Make, typename Operate, typename Check>
std::size_t failRepeatedly(Make make, Operate operate, Check check)
{
  {
    auto result = make();
    operate(result);  // objects that are made once in a process are made now
  }
  constexpr std::size_t tooMany = 1000000;
  std::size_t thrown = 0;
  for (const Shortage shortage : {Shortage::OneAllocation, Shortage::AllFromThere})
    for (std::size_t which = 0; which < tooMany && !::testing::Test::HasFailure(); which = nextToFail(which))
    {
      SCOPED_TRACE("allocation " + std::to_string(which) + " failed" +
                   (shortage == Shortage::AllFromThere ? ", and all later ones" : ""));
      const std::ptrdiff_t before = livingAllocations();
      bool happened = false;
      {
        auto result = make();
        bool threw = false;
        {
          const AllocationFault fault(which, shortage);
          try
          {
            operate(result);
          }
          catch (const std::bad_alloc&)
          {
            threw = true;
          }
          happened = fault.happened();
        }
        EXPECT_TRUE(happened || !threw);
        thrown += threw ? 1 : 0;
        check(result, threw);
      }
      EXPECT_EQ(before, livingAllocations()) << "leaked";
      if (!happened)
        break;
    }
  return thrown;
}

}  // namespace faults
