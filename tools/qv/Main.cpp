// The command-line program: the library in a shell user's hands.

#include "Arguments.h"
#include "Commands.h"
#include "Failure.h"

namespace {

using namespace tool;

ExitCode usage(const Command* command) {
    qv::String line(u"usage: qv ");
    if (command != nullptr) {
        line.append(command->name).append(*command->usage != 0 ? u" " : u"").append(command->usage);
    } else {
        line.append(u"COMMAND [-option[=value]]... (qv help lists the commands)");
    }
    complain(line);
    return WrongUsage;
}

ExitCode run(int argc, char** argv) {
    const Arguments arguments(argc, argv);
    const Command* const command = findCommand(arguments.parameter(0));
    if (command == nullptr) {
        return usage(nullptr);
    }
    try {
        arguments.check(command->options, 1 + command->parameters);
        command->run(arguments);
        return Done;
    } catch (const UsageError&) {
        return usage(command);
    }
}

} // namespace

int main(int argc, char** argv) {
    try {
        return run(argc, argv);
    } catch (...) {
        complainOfException();
        return Failed;
    }
}
