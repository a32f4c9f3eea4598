#include "script/suggestion.h"

#include "script/diagnostics.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <numeric>

namespace Calder::Script {

namespace {

constexpr std::size_t longest_name = 60;

/// Of ASCII, which is all that names are made of.
char lower(char letter) {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

bool alike(char one, char other) {
    return lower(one) == lower(other);
}

std::size_t edit_distance(std::string_view from, std::string_view to) {
    using Row = std::array<std::size_t, longest_name + 1>;
    Row before_last{};
    Row last{};
    Row row{};
    std::iota(row.begin(), row.end(), 0U);
    for (std::size_t i = 0; i < from.size(); ++i) {
        before_last = last;
        last = row;
        row[0] = i + 1;
        for (std::size_t j = 0; j < to.size(); ++j) {
            std::size_t const replaced = last[j] + (alike(from[i], to[j]) ? 0 : 1);
            row[j + 1] = std::min({replaced, row[j] + 1, last[j + 1] + 1});
            if (i > 0 && j > 0 && alike(from[i], to[j - 1]) && alike(from[i - 1], to[j])) {
                row[j + 1] = std::min(row[j + 1], before_last[j - 1] + 1);
            }
        }
    }
    return row[to.size()];
}

} // namespace

void Suggestion::consider(std::string_view name) {
    std::size_t const shorter = std::min(m_wrong.size(), name.size());
    std::size_t const longer = std::max(m_wrong.size(), name.size());
    std::size_t const allowed = (longer + 1) / 3;
    bool const may_be_near = longer <= longest_name && longer - shorter <= allowed;
    m_budget -= std::min(m_budget, may_be_near ? static_cast<unsigned>(1 + shorter * longer) : 1U);
    if (!may_be_near) {
        return;
    }
    std::size_t const distance = edit_distance(m_wrong, name);
    if (distance <= allowed && (m_nearest.empty() || distance < m_distance)) {
        m_nearest = name;
        m_distance = distance;
    }
}

Wording Suggestion::wording() const {
    if (m_nearest.empty()) {
        return "";
    }
    return {"; did you mean " + in_quotes(m_nearest) + "?", std::string(m_nearest)};
}

} // namespace Calder::Script
