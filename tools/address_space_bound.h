#pragma once

#include <cstdint>
#include <sys/resource.h>

namespace Calder::Tools {

/// While one lives, an allocation fails that would take the process beyond so many bytes of main
/// memory. For work that has nobody to ask how much it holds, such as reading a script.
///
/// The system counts the address space instead, of which what the process occupies already is
/// deducted; an allocation of untouched memory counts too.
class AddressSpaceBound {
  public:
    explicit AddressSpaceBound(std::uint64_t most_bytes);
    ~AddressSpaceBound();
    AddressSpaceBound(AddressSpaceBound const&) = delete;
    AddressSpaceBound& operator=(AddressSpaceBound const&) = delete;

  private:
    rlimit m_before{};
};

} // namespace Calder::Tools
