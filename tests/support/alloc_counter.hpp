// Counts heap allocations made by the process while a scope is active, so a
// test can prove that a call never touches the heap.
#pragma once

#include <cstddef>

namespace smsutil::test {

// Number of malloc/calloc/realloc/aligned allocations (operator new
// included) seen since the process started.
std::size_t allocation_count();

// Usage: AllocationScope scope; call(); EXPECT_EQ(scope.allocations(), 0u);
class AllocationScope {
public:
    AllocationScope() : start_(allocation_count()) {}
    std::size_t allocations() const { return allocation_count() - start_; }

private:
    std::size_t start_;
};

}  // namespace smsutil::test
