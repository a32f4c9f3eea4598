#include "core/panic.h"

#include <cstdlib>
#include <iostream>

namespace Calder {

void panic(std::string const& message) {
    std::cerr << message << std::endl;
    std::abort();
}

} // namespace Calder
