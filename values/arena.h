#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <new>
#include <span>
#include <type_traits>
#include <vector>

namespace Calder::Values {

/// Memory that is only ever handed out and freed all at once; what lies in it stays where it is.
class Arena {
  public:
    /// Room for so many objects, not yet built.
    template <typename T> T* allocate(std::size_t count) {
        static_assert(alignof(T) <= alignment && std::is_trivially_destructible_v<T>);
        std::size_t const size = (count * sizeof(T) + alignment - 1) / alignment * alignment;
        if (size > m_left) {
            add_page(size);
        }
        std::byte* const start = m_next;
        m_next += size;
        m_left -= size;
        return reinterpret_cast<T*>(start);
    }

    template <typename T> T const* copy(std::span<T const> elements) {
        T* const start = allocate<T>(elements.size());
        std::uninitialized_copy(elements.begin(), elements.end(), start);
        return start;
    }

  private:
    static constexpr std::size_t alignment = 8;
    static constexpr std::size_t page_size = std::size_t{1} << 16;

    /// Throws std::bad_alloc, and what is left is then as before.
    void add_page(std::size_t size) {
        std::size_t const bytes = std::max(size, page_size);
        m_pages.push_back(std::make_unique_for_overwrite<std::byte[]>(bytes));
        m_next = m_pages.back().get();
        m_left = bytes;
    }

    std::vector<std::unique_ptr<std::byte[]>> m_pages;
    std::byte* m_next = nullptr;
    std::size_t m_left = 0;
};

} // namespace Calder::Values
