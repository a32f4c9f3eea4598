#include "process_compiler/shared_comparison.h"

#include "core/hash_combine.h"

#include <unordered_set>
#include <utility>

namespace Calder::ProcessCompiler {

constinit thread_local SharedComparison* shared_comparison = nullptr;

namespace {

using Pair = std::pair<void const*, void const*>;

struct PairHash {
    std::size_t operator()(Pair const& pair) const noexcept {
        return hash_combine(reinterpret_cast<std::uintptr_t>(pair.first),
                            reinterpret_cast<std::uintptr_t>(pair.second)) >>
               1;
    }
};

} // namespace

struct SharedComparison::Pairs {
    std::unordered_set<Pair, PairHash> set;
};

SharedComparison::SharedComparison() noexcept : m_outer(std::exchange(shared_comparison, this)) {}

SharedComparison::~SharedComparison() {
    shared_comparison = m_outer;
}

bool SharedComparison::knows(void const* left, void const* right) const {
    return m_equal && m_equal->set.contains({left, right});
}

void SharedComparison::note(void const* left, void const* right) {
    if (++m_steps < steps_before_notes) {
        return;
    }
    if (!m_equal) {
        m_equal = std::make_unique<Pairs>();
    }
    m_equal->set.emplace(left, right);
}

} // namespace Calder::ProcessCompiler
