#pragma once

#include "core/reference_counted.h"
#include "core/small_blocks.h"

#include <boost/intrusive_ptr.hpp>

#include <algorithm>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

namespace Calder {

template <typename T> class OwningArray;

/// Builds copies of `count` elements in storage; when that throws, those built are destroyed.
template <typename T> void build_copies(T const* from, std::size_t count, T* to) {
    std::uninitialized_copy_n(from, count, to);
}

/// With `replacement` in the place of the one at `index`.
template <typename T> void build_copies(T const* from, std::size_t count, T* to, std::size_t index,
                                        T const& replacement) {
    std::size_t const before = std::min(index, count);
    T* built = to;
    try {
        build_copies(from, before, to);
        built = to + before;
        if (before < count) {
            ::new (static_cast<void*>(built)) T(replacement);
            ++built;
            build_copies(from + before + 1, count - before - 1, built);
        }
    } catch (...) {
        std::destroy(to, built);
        throw;
    }
}

/// @{
/// Of counted pointers, any of which may be null: a successor copies all the arguments of its term
/// but one. Whether counting has to be atomic is asked once for all, and the one is replaced in the
/// end, as a loop of always the same length is foreseen by the processor.
template <typename Object>
requires std::derived_from<Object, AtomicReferenceCounted>
void build_copies(boost::intrusive_ptr<Object> const* from, std::size_t count,
                  boost::intrusive_ptr<Object>* to) noexcept {
    bool const alone = AtomicReferenceCounted::is_alone();
    for (std::size_t i = 0; i < count; ++i) {
        Object* const object = from[i].get();
        if (object != nullptr) {
            object->retain(alone);
        }
        ::new (static_cast<void*>(to + i)) boost::intrusive_ptr<Object>(object, false);
    }
}
template <typename Object>
requires std::derived_from<Object, AtomicReferenceCounted>
void build_copies(boost::intrusive_ptr<Object> const* from, std::size_t count,
                  boost::intrusive_ptr<Object>* to, std::size_t index,
                  boost::intrusive_ptr<Object> const& replacement) noexcept {
    build_copies(from, count, to);
    if (index < count) {
        to[index] = replacement;
    }
}
/// @}

/// An array whose length is fixed when it is made.
///
/// Its destructor frees the storage and does NOT run the destructors of the elements: a reference
/// that an element holds stays held for ever. The process constructs with any number of arguments
/// keep them in one of these and rely on nothing else. Everybody else whose elements hold something
/// wants OwningArray below.
///
/// A length whose storage could not be addressed throws std::bad_alloc before anything is
/// allocated; when building an element throws, the elements built so far are destroyed, the storage
/// is freed and the exception goes on.
template <typename T> class FixedArray {
    static_assert(alignof(T) <= __STDCPP_DEFAULT_NEW_ALIGNMENT__);

  public:
    /// What standard algorithms ask for.
    using value_type = T;

    FixedArray() noexcept = default;

    /// `length` value-initialised elements: null pointers, zeros, empty containers.
    explicit FixedArray(std::size_t length) : m_elements(allocate(length)) {
        build(length, [length](T* to) { std::uninitialized_value_construct_n(to, length); });
    }

    /// Copies of the elements, in order.
    FixedArray(std::initializer_list<T> elements)
        : FixedArray(Room{}, elements.begin(), elements.size()) {}

    /// Copies of its elements, in order.
    FixedArray(FixedArray const& other) : FixedArray(Room{}, other.m_elements, other.m_length) {}

    /// A copy of `other` with `replacement` in the place of the element at `index`.
    FixedArray(FixedArray const& other, std::size_t index, T const& replacement)
        : FixedArray(Room{}, other, index, replacement) {}

    /// Leaves `other` empty.
    FixedArray(FixedArray&& other) noexcept
        : m_length(std::exchange(other.m_length, 0)),
          m_elements(std::exchange(other.m_elements, nullptr)) {}

    /// What an owning array holds would never be released once it stood here.
    FixedArray(OwningArray<T> const&) = delete;
    FixedArray(OwningArray<T>&&) = delete;

    FixedArray& operator=(FixedArray const&) = delete;
    FixedArray& operator=(FixedArray&&) = delete;

    ~FixedArray() { deallocate(m_elements, m_length); }

    /// @{
    /// The length that it was made with; 0 after it was moved from.
    [[nodiscard]] std::size_t size() const noexcept { return m_length; }
    [[nodiscard]] bool empty() const noexcept { return m_length == 0; }
    /// @}

    /// @{
    /// The index is not checked.
    T& operator[](std::size_t index) noexcept { return m_elements[index]; }
    T const& operator[](std::size_t index) const noexcept { return m_elements[index]; }
    /// @}

    /// @{
    /// The elements stay where they are as long as the array does, also when it is moved.
    T* begin() noexcept { return m_elements; }
    T* end() noexcept { return m_elements + m_length; }
    [[nodiscard]] T const* begin() const noexcept { return m_elements; }
    [[nodiscard]] T const* end() const noexcept { return m_elements + m_length; }
    /// @}

  protected:
    /// The storage of a derived class that has some for short arrays: see ReferencesInPlace.
    struct Room {
        /// Not initialised.
        void* storage = nullptr;
        /// In elements; 0 where the array has its own storage.
        std::size_t length = 0;
    };

    /// @{
    /// As in public, in the room where that is long enough. Then copying may not throw.
    FixedArray(Room room, T const* elements, std::size_t length)
        : m_elements(allocate(room, length)) {
        build(length, [&](T* to) { build_copies(elements, length, to); });
    }
    FixedArray(Room room, FixedArray const& other, std::size_t index, T const& replacement)
        : m_elements(allocate(room, other.m_length)) {
        build(other.m_length, [&](T* to) {
            build_copies(other.m_elements, other.m_length, to, index, replacement);
        });
    }
    /// @}

    /// Before the destructor: what stands in the room is not freed.
    void leave(Room room) noexcept {
        if (m_elements == room.storage) {
            m_elements = nullptr;
            m_length = 0;
        }
    }

  private:
    [[nodiscard]] static T* allocate(std::size_t length) {
        if (length > SIZE_MAX / sizeof(T)) {
            throw std::bad_alloc();
        }
        return length == 0 ? nullptr : static_cast<T*>(SmallBlocks::allocate(length * sizeof(T)));
    }

    static void deallocate(T* elements, std::size_t length) noexcept {
        SmallBlocks::free(elements, length * sizeof(T));
    }

    [[nodiscard]] static T* allocate(Room room, std::size_t length) {
        return length <= room.length ? static_cast<T*>(room.storage) : allocate(length);
    }

    /// `build_in` has built nothing where it throws.
    template <typename Build> void build(std::size_t length, Build const& build_in) {
        try {
            build_in(m_elements);
        } catch (...) {
            deallocate(m_elements, length);
            throw;
        }
        m_length = length;
    }

    std::size_t m_length = 0;
    T* m_elements = nullptr;
};

/// The same length and, place by place, equal elements.
template <typename T>
[[nodiscard]] bool has_same_elements(FixedArray<T> const& left, FixedArray<T> const& right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end());
}

/// A FixedArray that does release what its elements hold, on every way out of its scope.
template <typename T> class OwningArray : public FixedArray<T> {
  public:
    using FixedArray<T>::FixedArray;

    OwningArray() noexcept = default;
    /// @{
    /// As of the base, but both arrays release what they hold.
    OwningArray(OwningArray const&) = default;
    OwningArray(OwningArray&&) noexcept = default;
    /// @}
    /// Copies what another array holds, which keeps its own.
    explicit OwningArray(FixedArray<T> const& other) : FixedArray<T>(other) {}
    OwningArray& operator=(OwningArray const&) = delete;
    OwningArray& operator=(OwningArray&&) = delete;

    ~OwningArray() { std::destroy(this->begin(), this->end()); }
};

/// A base class, so that it is there before the array that is built in it.
template <typename T, std::size_t length> struct ReferencesInPlaceRoom {
    /// For so many elements, none of which is there by itself.
    alignas(T) std::byte m_room[length * sizeof(T)];
};

/// An array of counted pointers that releases what they hold, like an OwningArray. Up to `room` of
/// them stand in the array itself, beside what else its owner has, and are not allocated. So it is
/// neither copied nor moved.
template <typename Pointer, std::size_t room>
class ReferencesInPlace : private ReferencesInPlaceRoom<Pointer, room>, public FixedArray<Pointer> {
    using Array = FixedArray<Pointer>;

  public:
    /// @{
    /// As of FixedArray.
    ReferencesInPlace(std::initializer_list<Pointer> elements)
        : Array(own_room(), elements.begin(), elements.size()) {}
    explicit ReferencesInPlace(Array const& other)
        : Array(own_room(), other.begin(), other.size()) {}
    ReferencesInPlace(Array const& other, std::size_t index, Pointer const& replacement)
        : Array(own_room(), other, index, replacement) {}
    /// @}
    ReferencesInPlace(ReferencesInPlace const&) = delete;
    ReferencesInPlace& operator=(ReferencesInPlace const&) = delete;
    ~ReferencesInPlace() {
        std::destroy(this->begin(), this->end());
        this->leave(own_room());
    }

  private:
    typename Array::Room own_room() noexcept { return {this->m_room, room}; }
};

} // namespace Calder
