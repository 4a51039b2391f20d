#include "tests/support/TestProcess.h"

#include "qvcore/File.h"
#include "tests/support/ChildRole.h"

#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace support {

struct TestProcess::State {
    pid_t id = 0;
    int input = -1;
    int output = -1;
    bool runs = false;
};

TestProcess::TestProcess(const std::string& role, const std::vector<std::string>& arguments)
    : state_(std::make_unique<State>()) {
    int input[2];
    int output[2];
    if (pipe2(input, O_CLOEXEC) != 0 || pipe2(output, O_CLOEXEC) != 0) {
        return;
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input[0], STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output[1], STDOUT_FILENO);
    std::vector<std::string> texts = {support::programPath(), "--child", role};
    texts.insert(texts.end(), arguments.begin(), arguments.end());
    std::vector<char*> pointers;
    for (std::string& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    state_->runs = posix_spawn(&state_->id, "/proc/self/exe", &actions, nullptr, pointers.data(),
                               environ) == 0;
    posix_spawn_file_actions_destroy(&actions);
    close(input[0]);
    close(output[1]);
    state_->input = input[1];
    state_->output = output[0];
}

TestProcess::~TestProcess() {
    if (state_->runs) {
        kill();
    }
    closeInput();
    closeOutput();
}

bool TestProcess::isStarted() const { return state_->runs; }

std::uint32_t TestProcess::id() const { return static_cast<std::uint32_t>(state_->id); }

std::string TestProcess::readLine() {
    std::string line;
    char byte = 0;
    while (read(state_->output, &byte, 1) == 1 && byte != '\n') {
        line += byte;
    }
    return line;
}

void TestProcess::write(const std::string& bytes) {
    // A child may have ended without reading: no signal for this process.
    QVFileWrite(static_cast<std::uint64_t>(state_->input), bytes.data(),
                static_cast<std::uint32_t>(bytes.size()));
}

void TestProcess::closeInput() {
    if (state_->input != -1) {
        close(state_->input);
        state_->input = -1;
    }
}

void TestProcess::closeOutput() {
    if (state_->output != -1) {
        close(state_->output);
        state_->output = -1;
    }
}

void TestProcess::kill() {
    ::kill(state_->id, SIGKILL);
    wait();
}

int TestProcess::wait() {
    int status = 0;
    waitpid(state_->id, &status, 0);
    state_->runs = false;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

} // namespace support
