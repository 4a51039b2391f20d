// The commands that digest and encipher files.

#include "Commands.h"
#include "Files.h"
#include "Output.h"
#include "qv/crypto/BlowFish.h"
#include "qv/crypto/MD5Digest.h"

#include <algorithm>
#include <vector>

namespace tool {

using qv::String;
using namespace qv::io;

namespace {

constexpr std::size_t greatestKeyLength = 60; // bytes
constexpr std::int32_t blockLength = 8;       // bytes

String digestOf(InputStream& in) {
    qv::crypto::MD5Digest digest;
    forEachPiece(
        in, [&](const signed char* bytes, std::int32_t count) { digest.update(bytes, count); });
    std::vector<signed char> out(static_cast<std::size_t>(digest.getLength()));
    digest.getDigest(out.data(), digest.getLength());
    String text;
    for (const signed char byte : out) {
        const auto value = static_cast<unsigned char>(byte);
        text.append(u"0123456789abcdef"[value >> 4]).append(u"0123456789abcdef"[value & 15]);
    }
    return text;
}

int digitValue(char16_t unit) {
    const String digits(u"0123456789abcdef");
    const int value = digits.indexOf(unit, 0, true);
    if (value < 0) {
        throw UsageError();
    }
    return value;
}

std::vector<signed char> keyOf(const String& text) {
    std::vector<signed char> key;
    if (text.getLength() % 2 != 0) {
        throw UsageError();
    }
    for (int i = 0; i < text.getLength(); i += 2) {
        key.push_back(static_cast<signed char>(digitValue(text[i]) * 16 + digitValue(text[i + 1])));
    }
    if (key.size() > greatestKeyLength) {
        throw UsageError();
    }
    return key;
}

/// Takes a stream through the cipher. Bytes that make no block wait for the next piece; what is
/// left at the end is for the cipher to refuse.
template <class Work>
void pass(InputStream& in, OutputStream& out, Work work) {
    signed char bytes[pieceSize + blockLength];
    std::int32_t held = 0;
    forEachPiece(in, [&](const signed char* piece, std::int32_t count) {
        std::copy_n(piece, count, bytes + held);
        held += count;
        const std::int32_t whole = held - held % blockLength;
        work(bytes, whole);
        out.write(bytes, whole);
        std::copy(bytes + whole, bytes + held, bytes);
        held -= whole;
    });
    work(bytes, held);
    out.flush();
}

} // namespace

void runDigest(const Arguments& arguments) {
    std::vector<String> files = arguments.texts(u"in");
    if (files.empty()) {
        files.emplace_back(u"-");
    }
    Output output;
    for (const String& file : files) {
        const auto in = openInput(file == u"-" ? std::nullopt : std::optional(file));
        output.line(digestOf(*in), u"  ", file);
        output.finish(); // a file that is not there takes nothing from those before it
    }
}

void runCipher(const Arguments& arguments) {
    const bool encrypts = arguments.has(u"encrypt");
    if (encrypts == arguments.has(u"decrypt")) {
        throw UsageError();
    }
    const std::vector<signed char> key = keyOf(arguments.requiredText(u"key"));
    const qv::crypto::BlowFish cipher(key.data(), static_cast<int>(key.size()));
    const std::optional<String> inPath = arguments.text(u"in");
    const std::optional<String> outPath = arguments.text(u"out");
    refuseSameFile(inPath, outPath);
    const auto in = openInput(inPath);
    const auto out = openOutput(outPath);
    pass(*in, *out, [&](signed char* bytes, std::int32_t length) {
        if (encrypts) {
            cipher.encrypt(bytes, bytes, length);
        } else {
            cipher.decrypt(bytes, bytes, length);
        }
    });
}

} // namespace tool
