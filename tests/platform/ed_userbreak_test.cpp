// The user-break test: a request is answered once, and Ctrl+C becomes a request only while the
// host's handler is installed.
#include "aced.h"

#include <gtest/gtest.h>

#include <csignal>
#include <sys/wait.h>
#include <unistd.h>

namespace {

class EdUserBreak : public ::testing::Test {
protected:
    // No request left over from another test, none left for the next.
    void SetUp() override { acedUsrBrk(); }
    void TearDown() override {
        qorRemoveBreakHandler();
        acedUsrBrk();
    }
};

TEST_F(EdUserBreak, ARequestIsAnsweredOnce) {
    EXPECT_EQ(acedUsrBrk(), 0);
    qorRequestUserBreak();
    EXPECT_EQ(acedUsrBrk(), 1);
    EXPECT_EQ(acedUsrBrk(), 0);
    // Requests made before one test are one break, not several.
    qorRequestUserBreak();
    qorRequestUserBreak();
    EXPECT_EQ(acedUsrBrk(), 1);
    EXPECT_EQ(acedUsrBrk(), 0);
}

sighandler_t currentInterruptHandler() {
    struct sigaction now {};
    sigaction(SIGINT, nullptr, &now);
    return now.sa_handler;
}

TEST_F(EdUserBreak, InterruptBecomesABreakWhileTheHandlerIsInstalled) {
    const sighandler_t before = currentInterruptHandler();
    ASSERT_TRUE(qorInstallBreakHandler());
    // A second install keeps the first one's record of what to put back.
    ASSERT_TRUE(qorInstallBreakHandler());
    EXPECT_NE(currentInterruptHandler(), before);

    ASSERT_EQ(std::raise(SIGINT), 0); // the process goes on
    EXPECT_EQ(acedUsrBrk(), 1);
    EXPECT_EQ(acedUsrBrk(), 0);

    qorRemoveBreakHandler();
    EXPECT_EQ(currentInterruptHandler(), before);
    // Removing again changes nothing.
    qorRemoveBreakHandler();
    EXPECT_EQ(currentInterruptHandler(), before);
}

TEST_F(EdUserBreak, ASecondInterruptNobodyAnsweredEndsTheProcess) {
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        if (!qorInstallBreakHandler()) _exit(2);
        std::raise(SIGINT);
        if (acedUsrBrk() != 1) _exit(3); // the first is a break
        std::raise(SIGINT);
        std::raise(SIGINT); // the second, unanswered, ends the process
        _exit(0);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFSIGNALED(status)) << "exit status " << WEXITSTATUS(status);
    EXPECT_EQ(WTERMSIG(status), SIGINT);
}

TEST_F(EdUserBreak, WithoutTheHandlerInterruptIsNotABreak) {
    // The test keeps its own handler in place of the default, which would end the process.
    struct sigaction ignore {
    }, previous{};
    ignore.sa_handler = SIG_IGN;
    sigemptyset(&ignore.sa_mask);
    ASSERT_EQ(sigaction(SIGINT, &ignore, &previous), 0);
    ASSERT_EQ(std::raise(SIGINT), 0);
    EXPECT_EQ(acedUsrBrk(), 0);
    sigaction(SIGINT, &previous, nullptr);
}

} // namespace
