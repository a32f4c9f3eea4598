#include "process_compiler/process_maker.h"

namespace Calder::ProcessCompiler {

ProcessMaker::ProcessMaker() = default;

ProcessMaker::~ProcessMaker() = default;

} // namespace Calder::ProcessCompiler
