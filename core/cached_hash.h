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
    template <typename Compute> [[nodiscard]] std::uint64_t get(Compute const& compute) const {
        std::uint64_t code = kept();
        if (code == 0) {
            code = compute();
            keep(code);
        }
        return code;
    }

    /// For who computes the code before it is asked for.
    void keep(std::uint64_t code) const noexcept { m_code.store(code, std::memory_order_relaxed); }
    /// 0 when none was kept.
    [[nodiscard]] std::uint64_t kept() const noexcept {
        return m_code.load(std::memory_order_relaxed);
    }

  private:
    mutable std::atomic<std::uint64_t> m_code{0};
};

} // namespace Calder
