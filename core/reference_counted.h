#pragma once

#include "core/export.h"
#include "core/small_blocks.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#if __has_include(<sys/single_threaded.h>)
#include <sys/single_threaded.h>
#endif

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

    /// In small blocks, as there are very many objects.
    static void* operator new(std::size_t bytes) { return SmallBlocks::allocate(bytes); }
    /// The size is that of the whole object, which the virtual destructor knows.
    static void operator delete(void* object, std::size_t bytes) noexcept {
        SmallBlocks::free(object, bytes);
    }

    /// One pointer more. No fence: who retains holds a pointer already.
    void retain() const noexcept { retain(is_alone()); }

    /// The same for who retains several objects and asks only once whether there is another thread,
    /// which without doing anything else stays so.
    void retain(bool alone) const noexcept {
        if (alone) {
            m_count.store(m_count.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
        } else {
            m_count.fetch_add(1, std::memory_order_relaxed);
        }
    }

    /// One pointer less; the last one destroys the object, or leaves that to the destructor that is
    /// running.
    void release() const noexcept {
        // Alone with the object there is nobody to race with, either, and a load is cheaper than a
        // read-modify-write.
        std::uintptr_t const count = m_count.load(std::memory_order_acquire);
        if (count != 1 && is_alone()) {
            m_count.store(count - 1, std::memory_order_relaxed);
        } else if (count == 1 || m_count.fetch_sub(1, std::memory_order_acq_rel) == 1) {
            dispose();
        }
    }

    /// Whether there is no other thread: then what is not atomic is as good, and far cheaper.
    static bool is_alone() noexcept {
#if __has_include(<sys/single_threaded.h>)
        return __libc_single_threaded != 0;
#else
        return false;
#endif
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

/// @{
/// How boost::intrusive_ptr counts.
inline void intrusive_ptr_add_ref(AtomicReferenceCounted const* object) noexcept {
    object->retain();
}

inline void intrusive_ptr_release(AtomicReferenceCounted const* object) noexcept {
    object->release();
}
/// @}

} // namespace Calder
