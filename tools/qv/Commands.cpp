#include "Commands.h"

#include <algorithm>

namespace tool {

namespace {

constexpr OptionRule convertOptions[] = {
    {u"from", true}, {u"to", true}, {u"in", true}, {u"out", true}, {u"strict", false}};
constexpr OptionRule digestOptions[] = {{u"in", true}};
constexpr OptionRule cipherOptions[] = {
    {u"encrypt", false}, {u"decrypt", false}, {u"key", true}, {u"in", true}, {u"out", true}};
constexpr OptionRule alphaNumOptions[] = {
    {u"encode", false}, {u"decode", false}, {u"alphabet", true}, {u"in", true}, {u"out", true}};
constexpr OptionRule guidOptions[] = {{u"count", true}};
constexpr OptionRule tokensOptions[] = {{u"text", true}, {u"delims", true}, {u"keep", false}};
constexpr OptionRule pathOptions[] = {{u"text", true}};
constexpr OptionRule normalizeOptions[] = {{u"text", true}, {u"slash", true}};
constexpr OptionRule lockOptions[] = {{u"name", true}, {u"hold", true}};
constexpr OptionRule bigIntOptions[] = {
    {u"op", true}, {u"a", true}, {u"b", true}, {u"m", true}, {u"radix", true}};
constexpr OptionRule decimalOptions[] = {
    {u"op", true}, {u"a", true}, {u"b", true}, {u"scale", true}};

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
    {u"digest", u"[-in=FILE[,FILE...]]", u"prints the MD5 digest of each file", digestOptions, 0,
     &runDigest},
    {u"cipher", u"-encrypt|-decrypt -key=HEX [-in=FILE] [-out=FILE]",
     u"Blowfish, block by block of 8 bytes; of the key 0 to 60 bytes, of which 56 count",
     cipherOptions, 0, &runCipher},
    {u"alphanum", u"-encode|-decode [-alphabet=LETTERS] [-in=FILE] [-out=FILE]",
     u"bytes as text of 32 letters; a length that is no multiple of 5 comes back a byte longer",
     alphaNumOptions, 0, &runAlphaNum},
    {u"guid", u"[-count=N]", u"makes fresh identifiers, one a line", guidOptions, 0, &runGuid},
    {u"tokens", u"-text=TEXT [-delims=DELIMITERS] [-keep]",
     u"splits a text, one token a line; delimiters are tokens with -keep", tokensOptions, 0,
     &runTokens},
    {u"path", u"-text=PATH", u"takes a path apart", pathOptions, 0, &runPath},
    {u"normalize", u"-text=PATH [-slash=native|forward|back]", u"cleans a path", normalizeOptions,
     0, &runNormalize},
    {u"lock", u"-name=NAME [-hold=MILLISECONDS]",
     u"takes a semaphore that processes share, and gives it back", lockOptions, 0, &runLock},
    {u"bigint",
     u"-op=add|sub|mul|div|mod|pow|modpow|modinv|gcd|cmp|tostring -a=N [-b=N] [-m=N] [-radix=R]",
     u"calculates with integers of any size", bigIntOptions, 0, &runBigInt},
    {u"decimal", u"-op=add|sub|mul|div|cmp|setscale|tostring -a=N [-b=N] [-scale=S]",
     u"calculates with decimal numbers of any size", decimalOptions, 0, &runDecimal},
};

} // namespace

std::span<const Command> commands() { return table; }

const Command* findCommand(const qv::String& name) {
    const auto* const found =
        std::ranges::find_if(table, [&](const Command& command) { return name == command.name; });
    return found == std::end(table) ? nullptr : found;
}

} // namespace tool
