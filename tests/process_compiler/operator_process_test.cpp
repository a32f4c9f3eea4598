#include "process_compiler/kinds.h"
#include "process_compiler/named_process_source.h"
#include "process_compiler/operator_process.h"
#include "process_compiler/printing.h"
#include "tests/support/fake_process.h"
#include "tests/support/printing.h"

#include <gtest/gtest.h>

namespace Calder::ProcessCompiler {
namespace {

using Testing::FakePointer;
using Testing::FakeProcess;

/// An operator with a letter for its parameter; answers differ by index so that a lost index shows.
class FakeOperator : public Operator {
  public:
    explicit FakeOperator(char letter) : m_letter(letter) {}

    bool operator==(Operator const& other) const override {
        return static_cast<FakeOperator const&>(other).m_letter == m_letter;
    }
    bool operator!=(Operator const& other) const override { return !(*this == other); }
    std::uint64_t hash_code() const override { return static_cast<std::uint64_t>(m_letter); }
    unsigned operator_kind() const override { return 50; }
    bool visit_transitions(NamedProcessSource const&, TransitionVisitor const& visitor,
                           ProcessArray const& arguments) const override {
        return visitor(7, new OperatorProcess(self(), arguments, 1, arguments[0]));
    }
    std::unique_ptr<Formats>
    high_level_formats(std::vector<BitSet> const& alphabets) const override {
        return std::make_unique<Formats>(alphabets.size());
    }
    RecursionType recursion_type() const override { return RecursionType::ends_others; }
    bool allows_recursion(unsigned index) const override { return index == 1; }
    ArgumentState process_state(unsigned index) const override {
        return index == 0 ? ArgumentState::on : ArgumentState::off;
    }
    bool discarded_by(unsigned index) const override { return index == 1; }
    TurnedOnBy turned_on_by(unsigned index) const override {
        return index == 1 ? TurnedOnBy::silent_step : TurnedOnBy::visible_event;
    }
    CompilationLevel preferred_compilation_level(bool wish) const override {
        return as_wished(wish);
    }
    bool is_commutative() const override { return true; }
    void pretty_print(Printer& printer) const override { printer << " " << word() << " "; }
    void pretty_print_description(Printer& printer) const override { printer << "is " << word(); }
    void pretty_print_operator_process(Printer& printer,
                                       OperatorProcess const& process) const override {
        nary_operator(printer, "NOTHING", process);
    }
    std::pair<unsigned, unsigned> pretty_print_information() const override { return {3, 0}; }
    bool pretty_print_is_same_operator(Operator const& other) const override {
        return *this == other;
    }

  private:
    std::string word() const { return std::string(1, m_letter); }

    char m_letter;
};

class OperatorProcessTest : public testing::Test {
  protected:
    Session const session;
    NamedProcessSource const source;
    FakePointer const p{new FakeProcess("P")};
    FakePointer const q{new FakeProcess("Q")};
    OperatorPointer const plus{new FakeOperator('+')};
    ProcessPointer const term{new OperatorProcess(plus, p, q)};
};

TEST_F(OperatorProcessTest, releases_its_arguments) {
    std::uintptr_t const before = p->reference_count();
    {
        OwningArray<ProcessPointer> const arguments{p, q, p};
        ProcessPointer const applied(new OperatorProcess(plus, arguments));
        ProcessPointer const changed(new OperatorProcess(plus, arguments, 2, q));
        EXPECT_EQ(p->reference_count(), before + 2 + 2 + 1);
        EXPECT_EQ(changed->argument(2), q);
        changed->set_arguments(arguments);
        EXPECT_EQ(changed->argument(2), p);
    }
    EXPECT_EQ(p->reference_count(), before);
}

TEST_F(OperatorProcessTest, passes_questions_to_its_operator) {
    EXPECT_EQ(term->kind(), operator_process_kind);
    EXPECT_EQ(term->argument_count(), 2U);
    EXPECT_EQ(term->recursion_type(), RecursionType::ends_others);
    EXPECT_TRUE(term->allows_recursion(1));
    EXPECT_FALSE(term->allows_recursion(0));
    EXPECT_EQ(term->process_state(0), ArgumentState::on);
    EXPECT_EQ(term->process_state(1), ArgumentState::off);
    EXPECT_TRUE(term->discarded_by(1));
    EXPECT_FALSE(term->discarded_by(0));
    EXPECT_EQ(term->turned_on_by(1), TurnedOnBy::silent_step);
    EXPECT_EQ(term->preferred_compilation_level(true), CompilationLevel::high);
    EXPECT_TRUE(term->is_commutative());
    EXPECT_EQ(term->high_level_formats({{}, {}, {}})->size(), 3U);
    EXPECT_EQ(term->pretty_print_information(), std::pair(3U, 0U));
    EXPECT_EQ(Testing::text_of(session, *term), "P + Q");
    EXPECT_EQ(Testing::description_of(session, *term), "is +");

    ProcessPointer successor;
    term->visit_transitions(source, [&](unsigned event, ProcessPointer const& next) {
        EXPECT_EQ(event, 7U);
        successor = next;
        return true;
    });
    EXPECT_EQ(Testing::text_of(session, *successor), "P + P");
}

TEST_F(OperatorProcessTest, is_its_operator_and_its_arguments) {
    OperatorPointer const another_plus(new FakeOperator('+'));
    OperatorPointer const minus(new FakeOperator('-'));
    struct {
        ProcessPointer other;
        bool equal;
        bool same_operator;
    } const rows[] = {
        {new OperatorProcess(another_plus, p, q), true, true},
        {term->clone(true), true, true},
        {new OperatorProcess(plus, q, p), false, true},
        {new OperatorProcess(plus, p), false, true},
        {new OperatorProcess(minus, p, q), false, false},
        {p, false, false},
    };
    for (auto const& row : rows) {
        EXPECT_EQ(*term == *row.other, row.equal);
        EXPECT_EQ(*term != *row.other, !row.equal);
        EXPECT_EQ(term->pretty_print_is_same_operator(*row.other), row.same_operator);
        if (row.equal) {
            EXPECT_EQ(term->hash_code(), row.other->hash_code());
        }
    }
}

TEST_F(OperatorProcessTest, a_shallow_clone_waits_for_its_arguments) {
    ProcessPointer const shallow = term->clone(false);
    EXPECT_EQ(shallow->argument_count(), 2U);
    EXPECT_EQ(shallow->argument(0), nullptr);
    shallow->set_arguments(OwningArray<ProcessPointer>{p, q});
    EXPECT_TRUE(*shallow == *term);
}

} // namespace
} // namespace Calder::ProcessCompiler
