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

bool SharedComparison::is_noted(void const* left, void const* right) const {
    return m_equal->set.contains({left, right});
}

void SharedComparison::add_note(void const* left, void const* right) {
    if (m_equal == nullptr) {
        m_equal = new Pairs();
    }
    m_equal->set.emplace(left, right);
}

void SharedComparison::forget() noexcept {
    delete m_equal;
}

} // namespace Calder::ProcessCompiler
