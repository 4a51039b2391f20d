#include "qv/io/StdioInputStream.h"

#include "qv/Exceptions.h"
#include "qvcore/File.h"

#include <cstring>

namespace qv::io {

namespace {

void checkError(std::FILE* file, const char16_t* description) {
    if (std::ferror(file) != 0) {
        throw IoException(description);
    }
}

} // namespace

StdioInputStream::StdioInputStream() : file_(stdin) {}

int StdioInputStream::read() {
    const int unit = std::fgetc(file_);
    checkError(file_, u"stream read error");
    return unit == EOF ? -1 : unit;
}

std::int32_t StdioInputStream::read(signed char* destination, std::int32_t length) {
    if (length < 1) {
        return 0;
    }
    char* const line = reinterpret_cast<char*>(destination);
    line[0] = 0;
    const bool any = std::fgets(line, length, file_) != nullptr;
    checkError(file_, u"stream read error");
    const auto count = any ? static_cast<std::int32_t>(std::strlen(line)) : 0;
    return count == 0 ? -1 : count;
}

std::int32_t StdioInputStream::skip(std::int32_t count) {
    constexpr std::int32_t currentPlace = 1;
    constexpr std::int64_t noPosition = -1;
    const std::int64_t before = QVStreamTell64(file_);
    if (before != noPosition) { // an attempt would throw away what the runtime stream has buffered
        QVStreamSeek64(file_, count, currentPlace);
    }
    const std::int64_t after = QVStreamTell64(file_);
    checkError(file_, u"stream seek error");
    return static_cast<std::int32_t>(after - before);
}

} // namespace qv::io
