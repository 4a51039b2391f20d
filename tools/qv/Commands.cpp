#include "Commands.h"

#include <algorithm>

namespace tool {

namespace {

constexpr OptionRule convertOptions[] = {
    {u"from", true}, {u"to", true}, {u"in", true}, {u"out", true}, {u"strict", false}};
constexpr OptionRule pathOptions[] = {{u"text", true}};
constexpr OptionRule normalizeOptions[] = {{u"text", true}, {u"slash", true}};
constexpr OptionRule lockOptions[] = {{u"name", true}, {u"hold", true}};

constexpr Command table[] = {
    {u"help", u"[COMMAND]", u"lists the commands, or tells about one", {}, 1, &runHelp},
    {u"version", u"", u"prints the version", {}, 0, &runVersion},
    {u"encodings",
     u"",
     u"lists the encodings: name, code page, aliases, what serves it",
     {},
     0,
     &runEncodings},
    {u"convert", u"-from=ENCODING -to=ENCODING [-in=FILE] [-out=FILE] [-strict]",
     u"decodes and encodes a text", convertOptions, 0, &runConvert},
    {u"classes",
     u"",
     u"lists the registered classes, + for those with a factory",
     {},
     0,
     &runClasses},
    {u"path", u"-text=PATH", u"takes a path apart", pathOptions, 0, &runPath},
    {u"normalize", u"-text=PATH [-slash=native|forward|back]", u"cleans a path", normalizeOptions,
     0, &runNormalize},
    {u"lock", u"-name=NAME [-hold=MILLISECONDS]",
     u"takes a semaphore that processes share, and gives it back", lockOptions, 0, &runLock},
};

} // namespace

std::span<const Command> commands() { return table; }

const Command* findCommand(const qv::String& name) {
    const auto* const found =
        std::ranges::find_if(table, [&](const Command& command) { return name == command.name; });
    return found == std::end(table) ? nullptr : found;
}

} // namespace tool
