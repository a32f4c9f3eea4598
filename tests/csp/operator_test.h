#pragma once

#include "csp/interleave_process.h"
#include "process_compiler/operator_process.h"
#include "tests/csp/construct_test.h"

namespace Calder::ProcessCompiler::CSP {

/// What the tests of all operators share besides: applications, and P and Q as names for operands.
class OperatorTest : public ConstructTest {
  protected:
    ProcessPointer const skip{new InterleaveProcess(0U)};
    ProcessPointer const p = source.reference("P");
    ProcessPointer const q = source.reference("Q");

    static ProcessPointer apply(OperatorPointer const& op,
                                std::initializer_list<ProcessPointer> arguments) {
        return new OperatorProcess(op, OwningArray<ProcessPointer>(arguments));
    }

    /// Like ConstructTest::expect_equality, for operators; equal operators may hash differently
    /// where `same_hash` says so.
    static void expect_equality_of(Operator const& left, Operator const& right, bool equal,
                                   bool same_hash = true) {
        EXPECT_EQ(left == right, equal);
        EXPECT_EQ(right == left, equal);
        EXPECT_EQ(left != right, !equal);
        EXPECT_EQ(right != left, !equal);
        if (equal) {
            EXPECT_EQ(left.hash_code() == right.hash_code(), same_hash);
        }
    }

    std::string text_of_operator(Operator const& op, bool abbreviate = false) const {
        return Testing::text_of(session, op, abbreviate);
    }
    std::string description_of_operator(Operator const& op) const {
        return Testing::printed_by(session,
                                   [&](Printer& printer) { op.pretty_print_description(printer); });
    }
};

} // namespace Calder::ProcessCompiler::CSP
