#include "FreshProcess.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>

#include "snpe_stub/SnpeControl.h"

namespace tivora::test {

void inFreshProcess(const std::function<void()>& body) {
  // Creating the logger always tells the NN runtime its log level, so the stand-in knows.
  ASSERT_EQ(snpe_stub::loggingCalls(), 0)
      << "this test process has created the logger; its children would not be fresh";

  std::fflush(nullptr);
  const pid_t child = fork();
  ASSERT_NE(child, -1) << std::strerror(errno);
  if (child == 0) {
    int code = 0;
    try {
      body();
      code = ::testing::Test::HasFailure() ? 1 : 0;
    } catch (const std::exception& e) {
      std::fprintf(stderr, "uncaught exception in child: %s\n", e.what());
      code = 2;
    } catch (...) {
      code = 2;
    }
    std::fflush(nullptr);
    _exit(code);
  }

  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child) << std::strerror(errno);
  if (WIFSIGNALED(status)) {
    ADD_FAILURE() << "child process died of signal " << WTERMSIG(status);
  } else {
    EXPECT_TRUE(WEXITSTATUS(status) == 0)
        << "the child process failed (exit status " << WEXITSTATUS(status) << "); its messages are above";
  }
}

}  // namespace tivora::test
