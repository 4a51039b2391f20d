#include "tests/support/posix/TerminalSession.h"

#include "tests/support/ChildRole.h"

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace support {

TerminalSession::TerminalSession(const std::string& role) {
    master_ = posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC);
    EXPECT_EQ(grantpt(master_), 0);
    EXPECT_EQ(unlockpt(master_), 0);
    const char* name = ptsname(master_);
    slave_ = open(name, O_RDWR | O_NOCTTY | O_CLOEXEC);
    EXPECT_EQ(tcgetattr(slave_, &before_), 0);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, name, O_RDWR, 0);
    posix_spawn_file_actions_adddup2(&actions, STDIN_FILENO, STDOUT_FILENO);
    posix_spawnattr_t attributes;
    posix_spawnattr_init(&attributes);
    posix_spawnattr_setflags(&attributes,
                             POSIX_SPAWN_SETSID | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
    sigset_t signals; // whatever the tests themselves were started with
    sigemptyset(&signals);
    posix_spawnattr_setsigmask(&attributes, &signals);
    sigfillset(&signals);
    posix_spawnattr_setsigdefault(&attributes, &signals);
    std::string arguments[] = {programPath(), "--child", role};
    char* pointers[] = {arguments[0].data(), arguments[1].data(), arguments[2].data(), nullptr};
    EXPECT_EQ(posix_spawn(&child_, "/proc/self/exe", &actions, &attributes, pointers, environ), 0);
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    EXPECT_EQ(readLine(), "ready");
}

TerminalSession::~TerminalSession() {
    if (!isOver_) {
        kill(child_, SIGKILL);
        await();
    }
    close(slave_);
    close(master_);
}

void TerminalSession::type(const std::string& keys) {
    EXPECT_EQ(::write(master_, keys.data(), keys.size()), static_cast<ssize_t>(keys.size()));
}

std::string TerminalSession::readLine() {
    std::string line;
    char byte = 0;
    while (read(master_, &byte, 1) == 1 && byte != '\n') {
        if (byte != '\r') {
            line += byte;
        }
    }
    return line;
}

bool TerminalSession::isRaw() const {
    termios now = {};
    tcgetattr(slave_, &now);
    return (now.c_lflag & (ICANON | ECHO | ISIG)) == 0;
}

void TerminalSession::awaitRaw(bool raw) const {
    while (isRaw() != raw) {
        std::this_thread::yield();
    }
}

bool TerminalSession::isRestored() const {
    termios now = {};
    tcgetattr(slave_, &now);
    return now.c_lflag == before_.c_lflag && now.c_iflag == before_.c_iflag &&
           now.c_cc[VMIN] == before_.c_cc[VMIN];
}

void TerminalSession::expectKey() {
    awaitRaw(true);
    type("a");
    EXPECT_EQ(readLine(), "97");
}

void TerminalSession::signal(int number) const { kill(child_, number); }

void TerminalSession::signal(int number, int word) const {
    sigqueue(child_, number, {.sival_int = word});
}

void TerminalSession::signalForeground(int number) const { killpg(tcgetpgrp(master_), number); }

void TerminalSession::hangUp() {
    close(master_);
    master_ = -1;
}

int TerminalSession::await() {
    int status = 0;
    EXPECT_EQ(waitpid(child_, &status, 0), child_);
    isOver_ = true;
    return status;
}

} // namespace support
