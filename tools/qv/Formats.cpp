// The commands about bytes as text, identifiers and tokens.

#include "Commands.h"
#include "Files.h"
#include "Output.h"
#include "qv/io/AlphaNumInputStream.h"
#include "qv/io/AlphaNumOutputStream.h"
#include "qv/io/BufferedInputStream.h"
#include "qv/io/BufferedOutputStream.h"
#include "qv/util/Guid.h"
#include "qv/util/StringTokenizer.h"

#include <memory>
#include <new>

namespace tool {

using qv::String;
using namespace qv::io;

namespace {

/// The text of an option, or null where it is absent.
const char16_t* unitsOf(const std::optional<String>& text) {
    return text ? text->getData() : nullptr;
}

/// A buffer in front of a source, whose one-byte reading gives every byte as 0 to 255.
class BufferedBytes : public BufferedInputStream {
public:
    using BufferedInputStream::BufferedInputStream;
    using BufferedInputStream::read;

    int read() override {
        signed char byte = 0;
        return read(&byte, 1) > 0 ? static_cast<unsigned char>(byte) : -1;
    }
};

void copy(InputStream& in, OutputStream& out) {
    forEachPiece(in,
                 [&](const signed char* bytes, std::int32_t count) { out.write(bytes, count); });
    out.flush();
}

} // namespace

void runAlphaNum(const Arguments& arguments) {
    const bool encodes = arguments.has(u"encode");
    if (encodes == arguments.has(u"decode")) {
        throw UsageError();
    }
    const std::optional<String> alphabet = arguments.text(u"alphabet");
    // Nothing is emptied before it is sure that the alphabet is one.
    static_cast<void>(AlphaNumInputStream(nullptr, unitsOf(alphabet)));
    const std::optional<String> inPath = arguments.text(u"in");
    const std::optional<String> outPath = arguments.text(u"out");
    refuseSameFile(inPath, outPath);
    const auto in = openInput(inPath);
    const auto out = openOutput(outPath);
    if (encodes) {
        AlphaNumOutputStream letters(qv::make<BufferedOutputStream>(out.get()), unitsOf(alphabet));
        copy(*in, letters);
    } else {
        AlphaNumInputStream letters(qv::make<BufferedBytes>(in.get()), unitsOf(alphabet));
        copy(letters, *out);
    }
}

void runGuid(const Arguments& arguments) {
    const int count = arguments.count(u"count").value_or(1);
    Output output;
    for (int i = 0; i < count; ++i) {
        const std::unique_ptr<qv::util::Guid> guid(qv::util::Guid::Generate());
        if (guid == nullptr) {
            throw std::bad_alloc();
        }
        output.line(guid->toString());
    }
    output.finish();
}

void runTokens(const Arguments& arguments) {
    const String text = arguments.requiredText(u"text");
    const std::optional<String> delimiters = arguments.text(u"delims");
    qv::util::StringTokenizer tokens(text, unitsOf(delimiters), arguments.has(u"keep"));
    Output output;
    while (tokens.hasMoreTokens()) {
        output.line(tokens.nextToken());
    }
    output.finish();
}

} // namespace tool
