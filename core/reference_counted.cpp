#include "core/reference_counted.h"

namespace Calder {

namespace {

/// The objects of this thread whose count has reached zero while another is being destroyed.
struct Disposal {
    bool running = false;
    AtomicReferenceCounted const* waiting = nullptr;
};

/// Found without a call, as each object that goes asks for it.
#if defined(__GNUC__)
[[gnu::tls_model("initial-exec")]]
#endif
thread_local constinit Disposal disposal{};

} // namespace

AtomicReferenceCounted::~AtomicReferenceCounted() = default;

void AtomicReferenceCounted::dispose() const noexcept {
    Disposal& mine = disposal;
    if (mine.running) {
        m_count.store(reinterpret_cast<std::uintptr_t>(mine.waiting), std::memory_order_relaxed);
        mine.waiting = this;
        return;
    }
    mine.running = true;
    delete this;
    while (AtomicReferenceCounted const* const next = mine.waiting) {
        // NOLINTNEXTLINE(performance-no-int-to-ptr): the count's word is a link by now
        mine.waiting = reinterpret_cast<AtomicReferenceCounted const*>(
            next->m_count.load(std::memory_order_relaxed));
        delete next;
    }
    mine.running = false;
}

} // namespace Calder
