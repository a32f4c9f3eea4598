#pragma once

#include "core/hash_combine.h"
#include "csp/shaped.h"
#include "process_compiler/printing.h"
#include "process_compiler/shared_comparison.h"

namespace Calder::ProcessCompiler::CSP {

/// What the two prefixes share: what they offer (an event or a set of events), and the
/// continuation, which is off until one of these events happens and then is all that is left.
template <typename Construct, typename Offer> class PrefixedProcess
    : public ShapedProcess<Construct> {
  public:
    /// The continuation.
    ProcessPointer const& destination() const { return m_destination; }
    unsigned argument_count() const override { return 1; }
    /// The continuation, whatever the index.
    ProcessPointer const& argument(unsigned) const override { return m_destination; }
    void set_arguments(ProcessArray const& arguments) override { m_destination = arguments[0]; }

    /// False: asking costs nothing.
    bool needs_memoisation() const override { return false; }

    std::uint64_t hash_code() const override {
        return this->m_hash.get([this] {
            watch_recursion();
            std::uint64_t const hash = hash_combine(Construct::shape.hash_seed, hash_word(m_offer));
            return hash_combine(hash, hash_of(m_destination));
        });
    }
    bool operator==(Process const& other) const override {
        return equal_at_once(this, &other, [&] {
            return other.kind() == this->kind() && m_offer == this->same_kind(other).m_offer &&
                   *m_destination == *this->same_kind(other).m_destination;
        });
    }
    bool operator!=(Process const& other) const override {
        return differ_at_once(this, &other, [&] {
            return other.kind() != this->kind() || m_offer != this->same_kind(other).m_offer ||
                   *m_destination != *this->same_kind(other).m_destination;
        });
    }
    ProcessPointer clone(bool deep) const override {
        return new Construct(m_offer, deep ? m_destination->clone(true) : nullptr);
    }

  protected:
    /// The continuation may be null until `set_arguments`.
    PrefixedProcess(Offer const& offer, ProcessPointer const& destination)
        : m_offer(offer), m_destination(destination) {}

    /// Two formats: one without rules yet, and the continuation alone.
    static std::unique_ptr<Formats>
    formats_before_continuation(std::vector<BitSet> const& alphabets) {
        auto formats = std::make_unique<Formats>(2);
        make_identity_format(*formats, 1, alphabets[0], 0);
        return formats;
    }

    /// An event or a set of events, by number.
    Offer m_offer;
    /// Null until `set_arguments` in a term that was built without.
    ProcessPointer m_destination;

  private:
    static std::uint64_t hash_word(unsigned event) { return event; }
    static std::uint64_t hash_word(BitSet const& events) { return events.folded_words(); }
};

} // namespace Calder::ProcessCompiler::CSP
