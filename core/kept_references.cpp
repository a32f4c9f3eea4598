#include "core/kept_references.h"

#include <mutex>
#include <vector>

namespace Calder {

void record_kept_reference(void const* object) {
    // Never destroyed: the leak checker reads it after the last destructor of the program has run.
    static std::mutex& guard = *new std::mutex;
    static std::vector<void const*>& kept = *new std::vector<void const*>;
    std::lock_guard const lock(guard);
    kept.push_back(object);
}

} // namespace Calder
