#pragma once

#include "process_compiler/process_maker.h"
#include "tests/support/fake_process.h"

#include <utility>

namespace Calder::ProcessCompiler::Testing {

/// Makes what it is told to, and notes for which numbers it was asked.
class FakeMaker : public ProcessMaker {
  public:
    using Build = std::function<ProcessPointer(unsigned)>;

    explicit FakeMaker(Build how) : build(std::move(how)) {}

    ProcessPointer make(unsigned number) override {
        made.push_back(number);
        return build(number);
    }
    std::string name(unsigned number) const override { return "P(" + std::to_string(number) + ")"; }

    Build build;
    std::vector<unsigned> made;
};

} // namespace Calder::ProcessCompiler::Testing
