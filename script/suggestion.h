#pragma once

#include "script/wording.h"

#include <string_view>

namespace Calder::Script {

/// Looks for the known name that a wrong one was meant to be: the first of the nearest by the
/// number of characters to insert, delete, replace or exchange with the next one (Damerau 1964), in
/// any mixture of capitals, if it is near enough for the length of the name.
class Suggestion {
  public:
    /// `budget` is how many more characters may be compared; it is shared by all suggestions of a
    /// script, which keeps many errors among many names from costing the product.
    Suggestion(std::string_view wrong, unsigned& budget) : m_wrong(wrong), m_budget(budget) {}

    /// Whether it is still worth offering names.
    bool wants_more() const { return m_budget > 0; }
    /// The text of the name must stay until `wording` is called.
    void consider(std::string_view name);

    /// "; did you mean 'NAME'?", or nothing.
    Wording wording() const;

  private:
    std::string_view m_wrong;
    unsigned& m_budget;
    std::string_view m_nearest;
    std::size_t m_distance = 0;
};

/// For all suggestions of one script: less than a second.
constexpr unsigned suggestion_budget = 100'000'000;

} // namespace Calder::Script
