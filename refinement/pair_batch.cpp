#include "refinement/pair_batch.h"

namespace Calder::Refinement {

namespace {

constexpr std::size_t no_source = ~std::size_t{0};

} // namespace

void PairBatch::begin(StateNumber first, std::uint32_t state_width,
                      std::size_t most_steps) noexcept {
    m_first = first;
    m_steps.clear(state_width);
    m_steps.limit(most_steps);
    m_rows.clear();
    m_loop_heads.clear();
    m_followed_count = 0;
    m_most_node = 0;
    m_passed = 0;
    m_transitions = 0;
    m_row_source = no_source;
}

std::span<unsigned const> PairBatch::offer(std::size_t source) {
    m_offer.clear();
    for (std::size_t step = row_begin(source); step < row_end(source); ++step) {
        unsigned const event = m_steps.event(step);
        if (m_offer.empty() || m_offer.back() != event) {
            m_offer.push_back(event);
        }
    }
    if (!std::is_sorted(m_offer.begin(), m_offer.end())) { // as they come from terms
        std::sort(m_offer.begin(), m_offer.end());
        m_offer.erase(std::unique(m_offer.begin(), m_offer.end()), m_offer.end());
    }
    return m_offer;
}

void PairBatch::begin_following(VisitedPairs const& pairs) {
    m_width = pairs.width();
    if (m_followed.size() < m_steps.size()) {
        m_followed.resize(m_steps.size());
        m_hashes.resize(m_steps.size());
    }
    if (m_words.size() < m_followed.size() * m_width) {
        m_words.resize(m_followed.size() * m_width);
    }
}

void PairBatch::follow_silent_steps(std::size_t source, std::size_t step,
                                    VisitedPairs const& pairs) {
    for (; step < row_end(source); ++step) {
        if (m_steps.event(step) == ProcessCompiler::tau) {
            follow(step, m_rows[source].node, pairs);
        }
    }
}

void PairBatch::write_again(VisitedPairs const& pairs) {
    m_width = pairs.width();
    m_words.resize(m_followed.size() * m_width);
    for (std::size_t place = 0; place < m_followed_count; ++place) {
        write(place, pairs);
    }
}

/// Among the steps of its source.
bool PairBatch::is_first(std::size_t source, Followed const& followed, StateNumber target) {
    if (m_row_source != source) {
        m_row_source = source;
        m_row.clear();
    }
    return m_row.insert({m_steps.event(followed.step), target});
}

} // namespace Calder::Refinement
