#pragma once

#include <cstddef>

namespace Calder::StateSpace::Testing {

/// How often this program has allocated with new.
std::size_t allocation_count();

/// How many blocks of new are not deleted.
std::ptrdiff_t blocks_in_use();

/// False where the operators are the sanitizer's, and where not every block of a term is an
/// allocation.
bool allocations_can_fail();
constexpr char const* why_not_counted =
    "the operators are the sanitizer's, or CALDER_SMALL_BLOCKS=malloc is not in the environment";

/// While it lives, one allocation of this program fails: the one of this number, counted from 1.
class FailingAllocation {
  public:
    explicit FailingAllocation(std::size_t number);
    ~FailingAllocation();
    FailingAllocation(FailingAllocation const&) = delete;
    FailingAllocation& operator=(FailingAllocation const&) = delete;

    bool has_failed() const;
};

} // namespace Calder::StateSpace::Testing
