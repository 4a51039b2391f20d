#include "Failure.h"

#include "qv/Exceptions.h"
#include "qv/io/FileOutputStream.h"
#include "qvcore/File.h"
#include "qvcore/NumberText.h"

#include <algorithm>
#include <iterator>

namespace tool {

using qv::String;

namespace {

/// What to say of a result that comes without a description.
struct Meaning {
    std::int32_t result;
    const char16_t* text;
};
constexpr Meaning meanings[] = {
    {qv::QV_E_FILENOTFOUND, u"file not found"},
    {qv::QV_E_PATHNOTFOUND, u"path not found"},
    {qv::QV_E_TOOMANYFILES, u"too many open files"},
    {qv::QV_E_ACCESSDENIED, u"access denied"},
    {qv::QV_E_INVALIDHANDLE, u"not open"},
    {qv::QV_E_OUTOFMEMORY, u"out of memory"},
    {qv::QV_E_INVALIDARG, u"bad argument"},
    {qv::QV_E_BROKENPIPE, u"the reader has gone"},
    {qv::QV_E_DISKFULL, u"disk full"},
    {qv::QV_E_PATHTOOLONG, u"path too long"},
    {qv::QV_E_INVALIDNAME, u"no such name is possible"},
    {qv::QV_E_BUSY, u"in use"},
    {qv::QV_E_ALREADYEXISTS, u"already exists"},
    {qv::QV_E_UNMAPPABLECHARACTER, u"a character or byte that the encoding does not have"},
    {qv::QV_E_INVALIDCHARACTER, u"bad character"},
};

String meaningOf(std::int32_t result) {
    const auto* const found = std::ranges::find(meanings, result, &Meaning::result);
    return found == std::end(meanings) ? u"failed" : found->text;
}

/// What a user gave may hold line ends and other controls, which a message repeats as blanks.
String asOneLine(String text) {
    for (int i = 0; i < text.getLength(); ++i) {
        if (text[i] < u' ' || text[i] == u'\x7F') {
            text.setCharAt(i, u' ');
        }
    }
    return text;
}

String inBrackets(std::int32_t result) {
    char16_t digits[34];
    String text(QVLToStrW(result, digits, 16));
    text.toUpper();
    return String(u" [0x").append(text).append(u"]");
}

String told(const qv::Exception& exception) {
    const std::int32_t result = exception.getResult();
    String text = exception.getDescription();
    if (result == qv::QV_E_UNKNOWNENCODING) {
        text.prepend(u"unknown encoding ");
    }
    if (text.isEmpty()) {
        text = meaningOf(result);
    }
    // The default of every exception says nothing.
    return result == qv::QV_E_FAIL ? text : text.append(inBrackets(result));
}

} // namespace

void complain(const String& line) noexcept {
    try {
        const String text = asOneLine(line).append(u'\n');
        const std::string bytes(text.getBytes());
        qv::io::FileOutputStream error(QVFileGetStandard(2), false);
        error.write(bytes.data(), static_cast<std::int32_t>(bytes.size()));
    } catch (...) {
        // Nobody is left to be told.
    }
}

void complainOfException() noexcept {
    try {
        throw;
    } catch (const qv::Exception& exception) {
        complain(String(u"qv: ") + told(exception));
    } catch (const std::bad_alloc&) {
        complain(String(u"qv: ") + told(qv::OutOfMemoryException()));
    } catch (...) {
        complain(u"qv: failed");
    }
}

} // namespace tool
