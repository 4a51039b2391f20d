#include "tests/support/TestProcess.h"

#include <windows.h>

namespace support {

struct TestProcess::State {
    PROCESS_INFORMATION process = {};
    HANDLE input = nullptr;
    HANDLE output = nullptr;
    bool runs = false;
};

namespace {

/// A pipe of which the child gets one end.
struct Pipe {
    HANDLE reading = nullptr;
    HANDLE writing = nullptr;

    explicit Pipe(HANDLE Pipe::*own) {
        SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
        CreatePipe(&reading, &writing, &inherited, 0);
        SetHandleInformation(this->*own, HANDLE_FLAG_INHERIT, 0);
    }
};

std::wstring quoted(const std::string& text) {
    return L" \"" + std::wstring(text.begin(), text.end()) + L"\"";
}

} // namespace

TestProcess::TestProcess(const std::string& role, const std::vector<std::string>& arguments)
    : state_(std::make_unique<State>()) {
    const Pipe input(&Pipe::writing);
    const Pipe output(&Pipe::reading);
    wchar_t program[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    std::wstring line = L"\"" + std::wstring(program) + L"\" --child" + quoted(role);
    for (const std::string& argument : arguments) {
        line += quoted(argument);
    }
    STARTUPINFOW start = {};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdInput = input.reading;
    start.hStdOutput = output.writing;
    start.hStdError = GetStdHandle(STD_ERROR_HANDLE);
    state_->runs = CreateProcessW(program, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                                  &start, &state_->process) != 0;
    CloseHandle(input.reading);
    CloseHandle(output.writing);
    state_->input = input.writing;
    state_->output = output.reading;
}

TestProcess::~TestProcess() {
    if (state_->runs) {
        kill();
    }
    closeInput();
    closeOutput();
    CloseHandle(state_->process.hThread);
    CloseHandle(state_->process.hProcess);
}

bool TestProcess::isStarted() const { return state_->runs; }

std::uint32_t TestProcess::id() const { return state_->process.dwProcessId; }

std::string TestProcess::readLine() {
    std::string line;
    char byte = 0;
    DWORD count = 0;
    while (ReadFile(state_->output, &byte, 1, &count, nullptr) && count == 1 && byte != '\n') {
        if (byte != '\r') {
            line += byte;
        }
    }
    return line;
}

void TestProcess::write(const std::string& bytes) {
    DWORD count = 0;
    WriteFile(state_->input, bytes.data(), static_cast<DWORD>(bytes.size()), &count, nullptr);
}

void TestProcess::closeInput() {
    if (state_->input != nullptr) {
        CloseHandle(state_->input);
        state_->input = nullptr;
    }
}

void TestProcess::closeOutput() {
    if (state_->output != nullptr) {
        CloseHandle(state_->output);
        state_->output = nullptr;
    }
}

void TestProcess::kill() {
    TerminateProcess(state_->process.hProcess, 137);
    wait();
}

int TestProcess::wait() {
    DWORD code = 0;
    WaitForSingleObject(state_->process.hProcess, INFINITE);
    GetExitCodeProcess(state_->process.hProcess, &code);
    state_->runs = false;
    return static_cast<int>(code);
}

} // namespace support
