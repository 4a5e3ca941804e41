// Runs a test body in a child process that has not yet created the library's singletons.
//
// The logger reads its configuration once per process, so a case that depends on what it read
// runs its body here. The body may use every gtest assertion; the child's failures are printed by
// the child and fail the calling test. The calling process must never create the logger itself:
// inFreshProcess refuses to run once it has (the children would inherit it).
#pragma once

#include <functional>

namespace tivora::test {

void inFreshProcess(const std::function<void()>& body);

}  // namespace tivora::test
