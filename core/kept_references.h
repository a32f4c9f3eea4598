#pragma once

#include "core/address_sanitizer.h"
#include "core/export.h"
#include "core/fixed_array.h"

#include <boost/intrusive_ptr.hpp>

namespace Calder {

/// Makes `object` count as reachable for the leak checker for the rest of the program.
CALDER_CORE_EXPORT void record_kept_reference(void const* object);

/// A FixedArray of references that stay held when it goes, by the rule of that type, and are meant
/// to. These are all of them: the arguments of the constructs with any number of arguments, the
/// clones from which a deep clone of such a construct is built, and the prefixes from which a step
/// of CHAOS builds its choice. Every other array of references is an OwningArray.
///
/// In builds that check for leaks it tells the checker that these objects are not lost by mistake;
/// every other leak is still found. Costs nothing in other builds.
template <typename T> class KeptReferences : public FixedArray<boost::intrusive_ptr<T>> {
  public:
    using FixedArray<boost::intrusive_ptr<T>>::FixedArray;
    /// Retains what the other array holds.
    explicit KeptReferences(FixedArray<boost::intrusive_ptr<T>> const& other)
        : FixedArray<boost::intrusive_ptr<T>>(other) {}

#ifdef CALDER_WATCHES_ADDRESSES
    ~KeptReferences() {
        for (boost::intrusive_ptr<T> const& element : *this) {
            if (element) {
                record_kept_reference(element.get());
            }
        }
    }
#endif
};

} // namespace Calder
