#pragma once

#include "state_space/labelled_transition_system.h"

#include <array>
#include <atomic>
#include <bit>
#include <cstdint>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace Calder::StateSpace {

/// One cache line of a table of states: up to 12 numbers, and of each a byte of its state's hash, its tag.
///
/// The tags and the count are two words. In the second one are the last four tags, and above them the
/// count and a bit that locks the bucket. Several threads read and append at once by the functions that are
/// called shared: who appends locks the bucket in the state in which he searched it, which fails when
/// something was appended meanwhile; who only reads waits for nobody.
class alignas(64) Bucket {
  public:
    static constexpr unsigned size = 12;

    /// The tags and the count at one moment.
    struct Head {
        [[nodiscard]] unsigned count() const noexcept {
            return static_cast<unsigned>(high >> count_shift) & 0xFF;
        }
        [[nodiscard]] bool is_full() const noexcept { return count() == size; }
        [[nodiscard]] bool is_locked() const noexcept { return (high & lock_bit) != 0; }

        /// Bit i for each number whose tag is the given one.
        [[nodiscard]] unsigned matches(std::uint8_t tag) const noexcept {
#ifdef __SSE2__
            __m128i const bytes =
                _mm_set_epi64x(static_cast<long long>(high), static_cast<long long>(low));
            return equal_bytes(bytes, tag) & ((1U << count()) - 1);
#else
            unsigned found = 0;
            for (unsigned i = 0; i < count(); ++i) {
                std::uint64_t const tags = i < 8 ? low >> 8 * i : high >> 8 * (i - 8);
                found |= ((tags & 0xFF) == tag ? 1U : 0U) << i;
            }
            return found;
#endif
        }

        std::uint64_t low;
        std::uint64_t high;
    };

    void clear() noexcept {
        m_head = {0, 0};
    }
    [[nodiscard]] bool is_full() const noexcept {
        return head().is_full();
    }
    [[nodiscard]] StateNumber number(unsigned place) const noexcept {
        return m_numbers[place];
    }

    [[nodiscard]] unsigned matches(std::uint8_t tag) const noexcept {
#ifdef __SSE2__
        auto const* const bytes = reinterpret_cast<__m128i const*>(&m_head);
        return equal_bytes(_mm_load_si128(bytes), tag) & ((1U << head().count()) - 1);
#else
        return head().matches(tag);
#endif
    }

    /// It must not be full.
    void append(StateNumber number, std::uint8_t tag) noexcept {
        m_numbers[m_head.count()] = number;
        m_head = with(m_head, tag);
    }

    /// Takes back the numbers from `first` on, which are the last ones.
    void take_back(StateNumber first) noexcept {
        while (m_head.count() > 0 && m_numbers[m_head.count() - 1] >= first) {
            m_head.high -= one;
        }
    }

    /// One number in the place of another; false where that is not there.
    bool replace(StateNumber from, StateNumber to) noexcept {
        for (unsigned place = 0; place < m_head.count(); ++place) {
            if (m_numbers[place] == from) {
                m_numbers[place] = to;
                return true;
            }
        }
        return false;
    }

    [[nodiscard]] Head shared_head() noexcept {
        std::uint64_t const high = std::atomic_ref(m_head.high).load(std::memory_order_acquire);
        return {std::atomic_ref(m_head.low).load(std::memory_order_relaxed), high};
    }
    /// One of those that a head counts.
    [[nodiscard]] StateNumber shared_number(unsigned place) noexcept {
        return std::atomic_ref(m_numbers[place]).load(std::memory_order_relaxed);
    }
    /// In the place of one of those.
    void replace_shared(unsigned place, StateNumber number) noexcept {
        std::atomic_ref(m_numbers[place]).store(number, std::memory_order_relaxed);
    }
    /// False when the bucket is not as `head` says any more; that must be neither full nor locked.
    [[nodiscard]] bool lock(Head head) noexcept {
        return std::atomic_ref(m_head.high)
            .compare_exchange_strong(head.high, head.high | lock_bit, std::memory_order_acquire,
                                     std::memory_order_relaxed);
    }
    /// For who locked it with this head.
    void unlock(Head head) noexcept {
        std::atomic_ref(m_head.high).store(head.high, std::memory_order_release);
    }
    /// The same, with one number more.
    void append_and_unlock(Head head, StateNumber number, std::uint8_t tag) noexcept {
        Head const longer = with(head, tag);
        std::atomic_ref(m_numbers[head.count()]).store(number, std::memory_order_relaxed);
        std::atomic_ref(m_head.low).store(longer.low, std::memory_order_relaxed);
        std::atomic_ref(m_head.high).store(longer.high, std::memory_order_release);
    }

  private:
    static constexpr unsigned count_shift = 32;
    static constexpr std::uint64_t one = std::uint64_t{1} << count_shift;
    static constexpr std::uint64_t lock_bit = std::uint64_t{1} << 63;

#ifdef __SSE2__
    static unsigned equal_bytes(__m128i bytes, std::uint8_t tag) noexcept {
        return static_cast<unsigned>(
            _mm_movemask_epi8(_mm_cmpeq_epi8(bytes, _mm_set1_epi8(static_cast<char>(tag)))));
    }
#endif

    [[nodiscard]] Head const& head() const noexcept {
        return m_head;
    }

    /// One number more.
    static Head with(Head head, std::uint8_t tag) noexcept {
        unsigned const count = head.count();
        std::uint64_t& word = count < 8 ? head.low : head.high;
        unsigned const shift = 8 * (count % 8);
        word = (word & ~(std::uint64_t{0xFF} << shift)) | std::uint64_t{tag} << shift;
        head.high += one;
        return head;
    }

    Head m_head;
    std::array<StateNumber, size> m_numbers;
};

static_assert(sizeof(Bucket) == 64);

} // namespace Calder::StateSpace
