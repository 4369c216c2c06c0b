#pragma once

#include "allocationfault.hpp"

#include <gtest/gtest.h>

#include <cstddef>
#include <new>
#include <string>

namespace faults
{

/// The result of an operation in which an allocation was made to fail.
enum class Outcome
{
  Threw,    ///< std::bad_alloc passed to the caller
  Returned  ///< it continued without the memory
};

/// Makes the first, second, ... allocation of an operation fail, until a run has no such allocation left.
///
/// Each run makes a subject with `make()`, passes it to `operate(subject)`, and after a failure to `check(subject,
/// outcome)`, in which nothing fails any more. All memory of a run must be freed with its subject. Returns in how many
/// runs an allocation failed.
template <typename Make, typename Operate, typename Check>
std::size_t failEveryAllocation(Make make, Operate operate, Check check)
{
  {
    auto subject = make();
    operate(subject);  // objects that are made once in a process are made now
  }
  constexpr std::size_t tooMany = 100000;
  for (std::size_t which = 0; which < tooMany; ++which)
  {
    SCOPED_TRACE("allocation " + std::to_string(which) + " failed");
    const std::ptrdiff_t before = livingAllocations();
    bool happened = false;
    {
      auto subject = make();
      Outcome outcome = Outcome::Returned;
      {
        const AllocationFault fault(which);
        try
        {
          operate(subject);
        }
        catch (const std::bad_alloc&)
        {
          outcome = Outcome::Threw;
        }
        happened = fault.happened();
      }
      if (happened)
        check(subject, outcome);
      else
        EXPECT_EQ(Outcome::Returned, outcome);
    }
    EXPECT_EQ(before, livingAllocations()) << "leaked";
    if (!happened)
      return which;
    if (::testing::Test::HasFailure())
      break;
  }
  ADD_FAILURE() << "the allocations went on failing";
  return tooMany;
}

}  // namespace faults
