#pragma once

#include "core/hash_combine.h"
#include "core/kept_references.h"
#include "csp/shaped.h"
#include "process_compiler/argument_array.h"
#include "process_compiler/printing.h"

namespace Calder::ProcessCompiler::CSP {

/// What the process constructs with any number of arguments share: the arguments, their identity
/// and the form "P1 op .. op Pn". The arguments are never released (core/kept_references.h).
template <typename Construct> class NaryProcess : public ShapedProcess<Construct> {
  public:
    unsigned argument_count() const override { return static_cast<unsigned>(m_arguments.size()); }
    ProcessPointer const& argument(unsigned index) const override { return m_arguments[index]; }
    void set_arguments(ProcessArray const& arguments) override {
        replace_arguments(m_arguments, arguments);
    }

    std::uint64_t hash_code() const override {
        return this->m_hash.get([this] {
            return hash_combine(Construct::shape.hash_seed, hash_arguments(m_arguments));
        });
    }
    /// Order matters, although the constructs are commutative. Asks the arguments whether they
    /// differ, as operator!= does.
    bool operator==(Process const& other) const override {
        return other.kind() == this->kind() &&
               !arguments_differ(m_arguments, this->same_kind(other).m_arguments);
    }
    bool operator!=(Process const& other) const override {
        return other.kind() != this->kind() ||
               arguments_differ(m_arguments, this->same_kind(other).m_arguments);
    }
    ProcessPointer clone(bool deep) const override {
        if (!deep) {
            return new Construct(argument_count());
        }
        KeptReferences<Process> clones(m_arguments.size());
        clone_arguments(m_arguments, clones);
        return new Construct(clones);
    }

    void pretty_print(Printer& printer) const override {
        nary_operator(printer, Construct::shape.text_when_empty, *this);
    }

  protected:
    /// `count` arguments that are null until `set_arguments`.
    explicit NaryProcess(unsigned count) : m_arguments(count) {}
    /// The arguments in order; each is retained for good.
    explicit NaryProcess(ProcessArray const& arguments) : m_arguments(arguments) {}
    /// The same arguments with the one at `index` replaced.
    NaryProcess(ProcessArray const& arguments, unsigned index, ProcessPointer const& replacement)
        : m_arguments(arguments, index, replacement) {}

    /// What makes the successors of a term in which one argument moves. Who explores asks each of them
    /// for its code, much of which is known from the one before.
    class Successors {
      public:
        /// Of the term with these arguments, which must outlive it.
        explicit Successors(ProcessArray const& arguments)
            : m_arguments(arguments), m_hash(arguments) {}

        /// With the argument at `index` replaced; indices should ascend.
        [[nodiscard]] ProcessPointer with(unsigned index, ProcessPointer const& replacement) {
            auto* const made = new Construct(m_arguments, index, replacement);
            ProcessPointer held(made);
            if (auto const hash = m_hash.with(index, replacement)) {
                made->m_hash.keep(hash_combine(Construct::shape.hash_seed, *hash));
            }
            return held;
        }

      private:
        ProcessArray const& m_arguments;
        SuccessorHash m_hash;
    };

    /// As many as the term was built for.
    KeptReferences<Process> m_arguments;
};

} // namespace Calder::ProcessCompiler::CSP
