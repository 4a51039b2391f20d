#pragma once

#include "qv/util/CommandLineParser.h"

#include <optional>
#include <span>
#include <vector>

namespace tool {

/// A command line that does not fit its command. The message is not shown: the usage line is.
class UsageError {};

/// What a command may be asked: the options that it knows.
struct OptionRule {
    const char16_t* name;
    bool takesValue;
};

/// The arguments of one command, read by the library's own parser.
class Arguments {
public:
    /// Reads the arguments of the process; the program's name is left out.
    Arguments(int argc, char** argv);

    /// The parameter at an index, the command's name being the first; empty where there is none.
    qv::String parameter(int index) const;

    /// @throws UsageError for an option that no rule allows, one whose value is missing or not
    /// wanted, and
    ///     for more than `parameters` parameters.
    void check(std::span<const OptionRule> rules, int parameters) const;

    bool has(const char16_t* name) const;
    /// The value of an option. Commas, which separate values, are put back.
    std::optional<qv::String> text(const char16_t* name) const;
    /// The values of an option one by one; none where the option is absent.
    std::vector<qv::String> texts(const char16_t* name) const;
    /// @throws UsageError where the option is absent.
    qv::String requiredText(const char16_t* name) const;
    /// A decimal number. @throws UsageError for a value that is none.
    std::optional<int> number(const char16_t* name) const;
    /// The same. @throws UsageError also for a negative one.
    std::optional<int> count(const char16_t* name) const;

private:
    qv::util::CommandLineParser parser_;
    int programs_ = 0;
};

} // namespace tool
