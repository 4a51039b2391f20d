// The commands about the program and the library themselves.

#include "Commands.h"
#include "Output.h"
#include "qv/Class.h"
#include "qv/ClassManager.h"
#include "qv/text/charset/BTCCom.h"
#include "qv/text/charset/CodecManager.h"
#include "qv/text/charset/EncodingInfo.h"

#include <map>

namespace tool {

using qv::String;
using namespace qv::text::charset;

namespace {

void printUsage(Output& output, const Command& command) {
    output.line(u"usage: qv ", command.name, *command.usage != 0 ? u" " : u"", command.usage);
    output.line(command.summary);
}

void printList(Output& output) {
    output.line(u"usage: qv COMMAND [-option[=value]]...");
    for (const Command& command : commands()) {
        output.line(u"  ", command.name, String(u' ', 12 - String(command.name).getLength()),
                    command.summary);
    }
}

/// What the list of encodings says of one.
struct Encoding {
    std::uint32_t codePage = 0;
    String aliases;
    bool isBuiltIn = false;
};
using Encodings = std::map<String, Encoding>;

void collect(const EncodingName& name, void* context) {
    Encodings& encodings = *static_cast<Encodings*>(context);
    if (name.aliasOf == nullptr) {
        encodings[name.name].codePage = name.codePage;
        encodings[name.name].isBuiltIn = name.isBuiltIn;
    } else if (!(String(name.name) == name.aliasOf)) {
        String& aliases = encodings[name.aliasOf].aliases;
        aliases.append(aliases.isEmpty() ? u"" : u",").append(name.name);
    }
}

const char16_t* servedBy(const String& name, const Encoding& encoding) {
    if (encoding.isBuiltIn) {
        return u"builtin";
    }
    const qv::Reference<qv::Object> decoder(
        CodecManager::getInstance()->getDecoder(name.getData()));
    return decoder != nullptr ? u"component" : u"missing";
}

} // namespace

void runHelp(const Arguments& arguments) {
    const String name = arguments.parameter(1);
    const Command* const command = findCommand(name);
    if (!name.isEmpty() && command == nullptr) {
        throw UsageError();
    }
    Output output;
    if (command != nullptr) {
        printUsage(output, *command);
    } else {
        printList(output);
    }
    output.finish();
}

void runVersion(const Arguments&) {
    Output output;
    output.line(u"qv " QVCL_VERSION);
    output.finish();
}

void runEncodings(const Arguments&) {
    Encodings encodings;
    forEachEncodingName(&collect, &encodings);
    Output output;
    for (const auto& [name, encoding] : encodings) {
        output.line(name, u"\t", String::valueOf(encoding.codePage), u"\t", encoding.aliases, u"\t",
                    servedBy(name, encoding));
    }
    output.finish();
}

void runClasses(const Arguments&) {
    Output output;
    qv::ClassManager::getInstance()->forEach(
        [](const qv::Class& record, void* context) {
            static_cast<Output*>(context)->line(record.getName(), u"\t",
                                                record.hasFactory() ? u"+" : u"-");
        },
        &output);
    output.finish();
}

} // namespace tool
