#pragma once

#include "core/large_array.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

namespace Calder {

/// A vector that may come to millions of elements, and to one. From 2 MiB on it is never copied when it grows:
/// its pages get another address. What was not written to takes no memory, and elements may be appended without a
/// value, so that the threads that write them get their pages from the system, each its own.
template <typename T> class GrowingArray {
    static_assert(std::is_trivially_copyable_v<T> && std::is_trivially_default_constructible_v<T>);

  public:
    GrowingArray() = default;
    /// @{
    /// A copy has no more room than it needs; who was moved from is empty.
    GrowingArray(GrowingArray const& other) {
        std::copy_n(other.data(), other.size(), append(other.size()));
    }
    GrowingArray(GrowingArray&& other) noexcept { swap(other); }
    GrowingArray& operator=(GrowingArray other) noexcept {
        swap(other);
        return *this;
    }
    /// @}
    ~GrowingArray() { free_large(m_elements, m_capacity * sizeof(T)); }

    /// @{
    /// As of a vector; what points to elements is good until there are more.
    [[nodiscard]] std::size_t size() const noexcept { return m_size; }
    [[nodiscard]] T* data() noexcept { return m_elements; }
    [[nodiscard]] T const* data() const noexcept { return m_elements; }
    [[nodiscard]] T& operator[](std::size_t place) noexcept { return m_elements[place]; }
    [[nodiscard]] T const& operator[](std::size_t place) const noexcept {
        return m_elements[place];
    }
    [[nodiscard]] T const* begin() const noexcept { return m_elements; }
    [[nodiscard]] T const* end() const noexcept { return m_elements + m_size; }
    /// @}

    /// Throws std::bad_alloc, and is then as before.
    void push_back(T element) {
        if (m_size == m_capacity) {
            grow(1);
        }
        m_elements[m_size++] = element;
    }
    /// Elements that are still to be written, and where they begin. Throws as `push_back` does.
    T* append(std::size_t count) {
        if (m_capacity - m_size < count) {
            grow(count);
        }
        m_size += count;
        return m_elements + (m_size - count);
    }
    /// Takes the last ones away, and keeps the storage.
    void shrink(std::size_t size) noexcept { m_size = size; }

    /// What the elements occupy.
    [[nodiscard]] std::uint64_t memory_bytes() const noexcept {
        return std::uint64_t{is_mapped() ? m_size : m_capacity} * sizeof(T);
    }
    /// What more will be occupied at some moment while `additions` are appended, together: one by one they may
    /// take up to 2 MiB besides, twice at a time.
    [[nodiscard]] std::uint64_t growth_bytes(std::uint64_t additions) const noexcept {
        if (is_mapped()) {
            return additions * sizeof(T);
        }
        return m_capacity - m_size < additions ? capacity_for(additions) * sizeof(T) : 0;
    }

    /// No element moves.
    void swap(GrowingArray& other) noexcept {
        std::swap(m_elements, other.m_elements);
        std::swap(m_size, other.m_size);
        std::swap(m_capacity, other.m_capacity);
    }

  private:
    static constexpr std::size_t first_capacity = std::max<std::size_t>(64 / sizeof(T), 1);

    [[nodiscard]] bool is_mapped() const noexcept { return m_capacity * sizeof(T) >= large_page; }

    /// For so many more than there are. What is mapped grows by less: it costs little, and address space may be
    /// bounded, too.
    [[nodiscard]] std::uint64_t capacity_for(std::uint64_t additions) const noexcept {
        return std::max<std::uint64_t>(
            {first_capacity, m_size + additions, m_capacity + m_capacity / (is_mapped() ? 4 : 1)});
    }

    void grow(std::size_t count) {
        if (count > PTRDIFF_MAX / sizeof(T) - m_size) {
            throw std::bad_alloc();
        }
        std::size_t const capacity = capacity_for(count);
        m_elements =
            static_cast<T*>(grow_large(m_elements, m_capacity * sizeof(T), capacity * sizeof(T)));
        m_capacity = capacity;
    }

    T* m_elements = nullptr;
    std::size_t m_size = 0;
    std::size_t m_capacity = 0;
};

} // namespace Calder
