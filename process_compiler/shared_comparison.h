#pragma once

#include "process_compiler/export.h"
#include "process_compiler/recursion_watch.h"

#include <utility>

namespace Calder::ProcessCompiler {

/// Made around one comparison of terms by a host that compares many: while it lives, the terms that
/// this thread compares are equal to themselves, and to what they were found equal to before,
/// without their arguments being asked again. Terms share arguments, so that a term of forty levels
/// may have 2^40 places, which a comparison would all visit.
///
/// Pairs are noted only in a comparison that has taken many steps; before that it costs nothing.
class CALDER_PROCESS_COMPILER_EXPORT SharedComparison {
  public:
    inline SharedComparison() noexcept;
    inline ~SharedComparison();
    SharedComparison(SharedComparison const&) = delete;
    SharedComparison& operator=(SharedComparison const&) = delete;

    /// Whether the two were found equal before, in this comparison.
    [[nodiscard]] bool knows(void const* left, void const* right) const {
        return m_equal != nullptr && is_noted(left, right);
    }
    /// Says that two were found equal.
    void note(void const* left, void const* right) {
        if (++m_steps >= steps_before_notes) {
            add_note(left, right);
        }
    }

  private:
    struct Pairs;

    [[nodiscard]] bool is_noted(void const* left, void const* right) const;
    void add_note(void const* left, void const* right);
    void forget() noexcept;

    static constexpr unsigned steps_before_notes = 4096;

    SharedComparison* m_outer;
    unsigned m_steps = 0;
    Pairs* m_equal = nullptr; // owned; null before there are notes
};

/// Of this thread; null where each comparison asks all arguments, as the contract says.
extern CALDER_PROCESS_COMPILER_EXPORT constinit thread_local SharedComparison* shared_comparison
    __attribute__((tls_model("initial-exec")));

inline SharedComparison::SharedComparison() noexcept
    : m_outer(std::exchange(shared_comparison, this)) {}

inline SharedComparison::~SharedComparison() {
    shared_comparison = m_outer;
    if (m_equal != nullptr) {
        forget();
    }
}

/// The answer of `compare`, or of an earlier comparison of the same two. They are named by
/// addresses that are theirs as long as the comparison lasts.
template <typename Compare>
bool equal_at_once(void const* left, void const* right, Compare const& compare) {
    watch_recursion();
    SharedComparison* const shared = shared_comparison;
    if (shared != nullptr && (left == right || shared->knows(left, right))) {
        return true;
    }
    bool const are_equal = compare();
    if (are_equal && shared != nullptr) {
        shared->note(left, right);
    }
    return are_equal;
}

/// The same for an operator!=: `compare` says whether the two differ.
template <typename Compare>
bool differ_at_once(void const* left, void const* right, Compare const& compare) {
    return !equal_at_once(left, right, [&compare] { return !compare(); });
}

} // namespace Calder::ProcessCompiler
