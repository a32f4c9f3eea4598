#pragma once

#include "process_compiler/export.h"
#include "process_compiler/recursion_watch.h"

#include <memory>

namespace Calder::ProcessCompiler {

/// Made around one comparison of terms by a host that compares many: while it lives, the terms that
/// this thread compares are equal to themselves, and to what they were found equal to before,
/// without their arguments being asked again. Terms share arguments, so that a term of forty levels
/// may have 2^40 places, which a comparison would all visit.
///
/// Pairs are noted only in a comparison that has taken many steps; before that it costs nothing.
class CALDER_PROCESS_COMPILER_EXPORT SharedComparison {
  public:
    SharedComparison() noexcept;
    ~SharedComparison();
    SharedComparison(SharedComparison const&) = delete;
    SharedComparison& operator=(SharedComparison const&) = delete;

    [[nodiscard]] bool knows(void const* left, void const* right) const;
    void note(void const* left, void const* right);

  private:
    struct Pairs;

    static constexpr unsigned steps_before_notes = 4096;

    SharedComparison* m_outer;
    unsigned m_steps = 0;
    std::unique_ptr<Pairs> m_equal; // null before there are notes
};

/// Of this thread; null where each comparison asks all arguments, as the contract says.
extern CALDER_PROCESS_COMPILER_EXPORT constinit thread_local SharedComparison* shared_comparison
    __attribute__((tls_model("initial-exec")));

/// The answer of `compare`, or of an earlier comparison of the same two. They are named by
/// addresses that are theirs as long as the comparison lasts.
template <typename Compare>
bool equal_at_once(void const* left, void const* right, Compare const& compare) {
    watch_recursion();
    SharedComparison* const shared = shared_comparison;
    if (shared == nullptr) {
        return compare();
    }
    if (left == right || shared->knows(left, right)) {
        return true;
    }
    if (!compare()) {
        return false;
    }
    shared->note(left, right);
    return true;
}

} // namespace Calder::ProcessCompiler
