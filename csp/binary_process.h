#pragma once

#include "core/hash_combine.h"
#include "csp/shaped.h"
#include "process_compiler/printing.h"
#include "process_compiler/shared_comparison.h"

namespace Calder::ProcessCompiler::CSP {

/// What the process constructs with exactly two arguments share: the arguments, their identity and
/// the form `P op Q`.
template <typename Construct> class BinaryProcess : public ShapedProcess<Construct> {
  public:
    unsigned argument_count() const override { return 2; }
    /// The first argument for index 0, the second for any other.
    ProcessPointer const& argument(unsigned index) const override {
        return index == 0 ? m_first : m_second;
    }
    void set_arguments(ProcessArray const& arguments) override {
        m_first = arguments[0];
        m_second = arguments[1];
    }

    std::uint64_t hash_code() const override {
        return this->m_hash.get([this] {
            watch_recursion();
            std::uint64_t const hash = hash_combine(Construct::shape.hash_seed, hash_of(m_first));
            return hash_combine(hash, hash_of(m_second));
        });
    }
    bool operator==(Process const& other) const override {
        return equal_at_once(this, &other, [&] {
            return other.kind() == this->kind() && *m_first == *this->same_kind(other).m_first &&
                   *m_second == *this->same_kind(other).m_second;
        });
    }
    bool operator!=(Process const& other) const override {
        return differ_at_once(this, &other, [&] {
            return other.kind() != this->kind() || *m_first != *this->same_kind(other).m_first ||
                   *m_second != *this->same_kind(other).m_second;
        });
    }
    ProcessPointer clone(bool deep) const override {
        if (!deep) {
            return new Construct();
        }
        ProcessPointer const first = m_first->clone(true);
        return new Construct(first, m_second->clone(true));
    }

    void pretty_print(Printer& printer) const override { print_infix(printer, *this); }

  protected:
    /// Both arguments null until `set_arguments`.
    BinaryProcess() = default;
    /// Retains both; neither is asked anything.
    BinaryProcess(ProcessPointer const& first, ProcessPointer const& second)
        : m_first(first), m_second(second) {}

    /// @{
    /// Null in a term that was built without arguments, until `set_arguments`.
    ProcessPointer m_first;
    ProcessPointer m_second;
    /// @}
};

} // namespace Calder::ProcessCompiler::CSP
