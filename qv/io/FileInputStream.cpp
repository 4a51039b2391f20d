#include "qv/io/FileInputStream.h"

#include "qv/ErrorRule.h"
#include "qv/io/detail/OpenFile.h"
#include "qvcore/File.h"

#include <algorithm>

namespace qv::io {

FileInputStream::FileInputStream(const util::FilePath& path) : FileInputStream(path.getPath()) {}

FileInputStream::FileInputStream(const String& path)
    : handle_(detail::openFile(path, QV_FILE_READ)), ownsHandle_(true) {}

FileInputStream::FileInputStream(std::uint64_t handle, bool owns)
    : handle_(handle), ownsHandle_(owns) {}

FileInputStream::~FileInputStream() noexcept {
    if (ownsHandle_) {
        detail::dropFile(handle_);
    }
}

std::int32_t FileInputStream::read(signed char* destination, std::int32_t length) {
    std::uint32_t count = 0;
    const std::int32_t result =
        QVFileRead(handle_, destination, static_cast<std::uint32_t>(std::max(length, 0)), &count);
    if (result == QV_E_ENDOFFILE) {
        return -1;
    }
    throwIfFailed(result);
    return count == 0 ? -1 : static_cast<std::int32_t>(count);
}

void FileInputStream::close() {
    if (ownsHandle_ && handle_ != QV_FILE_NONE) {
        throwIfFailed(QVFileClose(handle_));
        handle_ = QV_FILE_NONE;
    }
}

Reference<FileInputStream> FileInputStream::standardInput() {
    return make<FileInputStream>(QVFileGetStandard(0), false);
}

} // namespace qv::io
