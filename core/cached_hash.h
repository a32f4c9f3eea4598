#pragma once

#include <atomic>
#include <cstdint>

namespace Calder {

/// The word in which a term or an operator keeps its hash code; 0 means not computed, so a code
/// that happens to be 0 is computed again on every call.
///
/// Two threads may fill it at the same time: they write the same value, and a relaxed atomic word
/// costs what a plain one does.
class CachedHash {
  public:
    /// The kept code, or the answer of `compute`, which is kept.
    template <typename Compute> std::uint64_t get(Compute const& compute) const {
        std::uint64_t const kept = m_code.load(std::memory_order_relaxed);
        if (kept != 0) {
            return kept;
        }
        std::uint64_t const code = compute();
        m_code.store(code, std::memory_order_relaxed);
        return code;
    }

  private:
    mutable std::atomic<std::uint64_t> m_code{0};
};

} // namespace Calder
