#include "FreshProcess.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>

#include "snpe_stub/SnpeControl.h"

namespace tivora::test {

void inFreshProcess(const std::function<void()>& body) {
  // Creating the logger always tells the NN runtime its log level, so the stand-in knows.
  ASSERT_EQ(snpe_stub::loggingCalls(), 0) << "this process has made the logger; its children would not be fresh";
  std::fflush(nullptr);
  const pid_t child = fork();
  ASSERT_NE(child, -1);
  if (child == 0) {
    body();  // an exception escaping it ends the child with a signal
    std::fflush(nullptr);
    _exit(::testing::Test::HasFailure() ? 1 : 0);
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0)
      << "the child process failed (status " << status << "); its messages are above";
}

}  // namespace tivora::test
