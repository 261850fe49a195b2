#include "platform/safe_file.h"

#include "support/sim_desktop.h"

#include <gmock/gmock.h>

#include <csignal>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/wait.h>
#include <unistd.h>

namespace ecu::platform {
namespace {

namespace fs = std::filesystem;

struct SafeFileTest : testing::Test {
    test::SimDesktop desktop;
    fs::path target = desktop.folder() / "engine.set";

    std::size_t files() const {
        return static_cast<std::size_t>(std::distance(fs::directory_iterator(desktop.folder()), {}));
    }
    // A program that is killed with its file half written.
    void leave_behind() const {
        const pid_t child = fork();
        if (child == 0) {
            SafeFile file(target);
            file.write("half");
            _exit(0);
        }
        waitpid(child, nullptr, 0);
    }
};

TEST_F(SafeFileTest, TakesTheNameAndThePermissionsOfTheOlderFileOnlyWhenCommitted) {
    desktop.write_file("engine.set", "older");
    fs::permissions(target, fs::perms::owner_read | fs::perms::owner_write);
    {
        SafeFile file(target);
        EXPECT_TRUE(file.write("newer"));
        EXPECT_EQ(desktop.read_file("engine.set"), "older");
        EXPECT_EQ(files(), 2U);
    }
    EXPECT_EQ(files(), 1U) << "one that was given up leaves nothing";
    SafeFile file(target);
    file.write("newer");
    EXPECT_TRUE(file.commit());
    EXPECT_EQ(desktop.read_file("engine.set"), "newer");
    EXPECT_EQ(fs::status(target).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(files(), 1U);
}

TEST_F(SafeFileTest, WritesBehindALinkAndLeavesItALink) {
    fs::create_directory(desktop.folder() / "real");
    fs::create_symlink("real/tune.set", target);
    EXPECT_EQ(replace_file(target, "text"), "");
    EXPECT_TRUE(fs::is_symlink(target));
    EXPECT_EQ(desktop.read_file("real/tune.set"), "text");
}

// All the ways in which it cannot be written, each with a reason and with the older file as it was.
TEST_F(SafeFileTest, SaysWhyNotAndChangesNothing) {
    EXPECT_EQ(replace_file(desktop.folder(), "text"), "it is a folder");
    EXPECT_EQ(replace_file("/dev/null", "text"), "it is not an ordinary file");
    EXPECT_THAT(replace_file(desktop.folder() / "gone" / "a", "text"), testing::HasSubstr("No such file"));
    fs::create_symlink("circle", desktop.folder() / "circle");
    EXPECT_NE(replace_file(desktop.folder() / "circle", "text"), "");
    fs::create_directory(desktop.folder() / "stick");
    SafeFile file(desktop.folder() / "stick" / "a");
    EXPECT_TRUE(file.write("text"));
    fs::remove_all(desktop.folder() / "stick");
    EXPECT_FALSE(file.commit());
    EXPECT_THAT(file.failure(), testing::HasSubstr("No such file"));
    EXPECT_FALSE(file.write("more"));
}

TEST_F(SafeFileTest, ClearsAwayWhatAKilledProgramLeftButNothingElse) {
    leave_behind();
    EXPECT_EQ(files(), 1U);
    for (const char* own : {"engine.set.new", "engine.set.new-2", "engine.set.new-1-x", "a.new-12-0123456"}) {
        desktop.write_file(own, "the tuner's own");
    }
    fs::create_directory(desktop.folder() / "b.new-999999-01234567");
    const SafeFile growing(desktop.folder() / "other.set"); // of this program, alive
    EXPECT_EQ(files(), 6U) << "the left one has gone, the growing one has come";
    EXPECT_EQ(replace_file(target, "text"), "");
    EXPECT_EQ(files(), 7U);
}

TEST_F(SafeFileTest, LeavesWhatSomebodyHoldsThoughItsMakerIsGone) {
    const fs::path held = desktop.folder() / "engine.set.new-999999999-01234567"; // no process has this number
    desktop.write_file(held.filename().string(), "half");
    const pid_t holder = fork();
    if (holder == 0) {
        const int file = ::open(held.c_str(), O_RDONLY);
        ::flock(file, LOCK_EX);
        desktop.write_file("ready", "");
        pause();
    }
    while (!fs::exists(desktop.folder() / "ready")) {
        sched_yield();
    }
    EXPECT_EQ(replace_file(target, "text"), "");
    EXPECT_TRUE(fs::exists(held));
    ::kill(holder, SIGKILL);
    waitpid(holder, nullptr, 0);
    EXPECT_EQ(replace_file(target, "text"), "");
    EXPECT_FALSE(fs::exists(held));
}

} // namespace
} // namespace ecu::platform
