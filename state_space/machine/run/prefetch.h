#pragma once

namespace Calder::StateSpace {

/// Asks for memory that will be written to, as a cache line of this processor's own: one that others may read has
/// to be asked for again at the write, which waits for the answer. The compiler's own prefetch for writing is one
/// for reading unless it may count on a newer processor; the instruction does nothing on those without it.
inline void prefetch_to_write(void const* address) noexcept {
#ifdef __x86_64__
    asm volatile("prefetchw %0" : : "m"(*static_cast<char const*>(address)));
#else
    __builtin_prefetch(address, 1);
#endif
}

} // namespace Calder::StateSpace
