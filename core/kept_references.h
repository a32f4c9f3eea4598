#pragma once

#include "core/export.h"
#include "core/fixed_array.h"

#include <boost/intrusive_ptr.hpp>

#if defined(__SANITIZE_ADDRESS__)
#define CALDER_LEAKS_ARE_CHECKED 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define CALDER_LEAKS_ARE_CHECKED 1
#endif
#endif

namespace Calder {

/// Makes `object` count as reachable for the leak checker for the rest of the program.
CALDER_CORE_EXPORT void record_kept_reference(void const* object);

/// For the destructors of the owners that keep their references by the rule of FixedArray: tells
/// the leak checker, in the builds that have one, that these objects are not lost by mistake. Every
/// other leak is still found. Costs nothing in other builds.
template <typename T>
void record_kept_references([[maybe_unused]] FixedArray<boost::intrusive_ptr<T>> const& elements) {
#ifdef CALDER_LEAKS_ARE_CHECKED
    for (boost::intrusive_ptr<T> const& element : elements) {
        if (element) {
            record_kept_reference(element.get());
        }
    }
#endif
}

} // namespace Calder
