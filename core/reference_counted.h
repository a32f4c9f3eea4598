#pragma once

#include "core/export.h"

#include <atomic>
#include <cstdint>

namespace Calder {

/// Base of everything that is held by a counted pointer. A new object has count 0; each
/// boost::intrusive_ptr to it adds one, and the last one to go destroys it.
///
/// Counting is atomic, so a term may be shared between threads. Destruction never nests: what a
/// destructor releases is put on a list of the thread and destroyed after it, so the depth of a
/// term does not matter for the stack.
class CALDER_CORE_EXPORT AtomicReferenceCounted {
  public:
    virtual ~AtomicReferenceCounted();

    void retain() const noexcept { m_count.fetch_add(1, std::memory_order_relaxed); }

    void release() const noexcept {
        // Alone with the object there is nobody to race with, and a load is cheaper than a
        // read-modify-write.
        if (m_count.load(std::memory_order_acquire) == 1 ||
            m_count.fetch_sub(1, std::memory_order_acq_rel) == 1) {
            dispose();
        }
    }

    /// How many counted pointers hold this object now: for tests and measurements.
    [[nodiscard]] std::uintptr_t reference_count() const noexcept {
        return m_count.load(std::memory_order_relaxed);
    }

  protected:
    AtomicReferenceCounted() noexcept = default;
    /// A copy is an object of its own: nobody holds it yet.
    AtomicReferenceCounted(AtomicReferenceCounted const&) noexcept {}
    AtomicReferenceCounted& operator=(AtomicReferenceCounted const&) = delete;

  private:
    void dispose() const noexcept;

    // The count while the object lives. Once it has reached zero nobody counts any more, and the
    // word links the objects of a thread that wait for their destruction.
    mutable std::atomic<std::uintptr_t> m_count{0};
};

inline void intrusive_ptr_add_ref(AtomicReferenceCounted const* object) noexcept {
    object->retain();
}

inline void intrusive_ptr_release(AtomicReferenceCounted const* object) noexcept {
    object->release();
}

} // namespace Calder
