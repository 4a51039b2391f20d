// The commands about paths.

#include "Commands.h"
#include "Output.h"
#include "qv/util/FilePath.h"
#include "qv/util/PathNormalizer.h"

namespace tool {

using qv::String;
using qv::util::FilePath;
using qv::util::PathNormalizer;

void runPath(const Arguments& arguments) {
    const FilePath path(arguments.requiredText(u"text"));
    Output output;
    output.value(u"root", path.getPath().substring(0, path.getRootLength()));
    output.value(u"absolute", String::valueOf(path.isAbsolutePath()));
    output.value(u"unc", String::valueOf(path.isUNCPath()));
    output.value(u"drive", path.getDrive());
    output.value(u"directory", path.getDirectory());
    output.value(u"name", path.getName());
    output.value(u"basename", path.getBaseName());
    output.value(u"extension", path.getExtension());
    output.value(u"parent", path.getParentPath());
    output.value(u"text", path.getPath());
    output.finish();
}

namespace {

PathNormalizer::SLASH_TYPE slashType(const String& name) {
    if (name == u"native") {
        return PathNormalizer::SLASH_NATIVE;
    }
    if (name == u"forward") {
        return PathNormalizer::SLASH_FORWARD;
    }
    if (name == u"back") {
        return PathNormalizer::SLASH_BACK;
    }
    throw UsageError();
}

} // namespace

void runNormalize(const Arguments& arguments) {
    const String text = arguments.requiredText(u"text");
    PathNormalizer normalizer(slashType(arguments.text(u"slash").value_or(u"native")));
    Output output;
    output.line(normalizer.normalize(text));
    output.finish();
}

} // namespace tool
