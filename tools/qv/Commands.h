#pragma once

#include "Arguments.h"

#include <span>

namespace tool {

/// One command of the program.
struct Command {
    const char16_t* name;
    const char16_t* usage;   ///< the options behind the name
    const char16_t* summary; ///< one line for the list
    std::span<const OptionRule> options;
    int parameters; ///< how many may stand behind the name
    void (*run)(const Arguments& arguments);
};

/// All commands, in the order of the list that `help` prints.
std::span<const Command> commands();

/// Null for an unknown name.
const Command* findCommand(const qv::String& name);

// The work of each command: it prints on standard output, and throws what goes wrong.
void runHelp(const Arguments& arguments);
void runVersion(const Arguments& arguments);
void runEncodings(const Arguments& arguments);
void runConvert(const Arguments& arguments);
void runClasses(const Arguments& arguments);
void runDigest(const Arguments& arguments);
void runCipher(const Arguments& arguments);
void runAlphaNum(const Arguments& arguments);
void runGuid(const Arguments& arguments);
void runTokens(const Arguments& arguments);
void runPath(const Arguments& arguments);
void runNormalize(const Arguments& arguments);
void runLock(const Arguments& arguments);
void runBigInt(const Arguments& arguments);
void runDecimal(const Arguments& arguments);

} // namespace tool
