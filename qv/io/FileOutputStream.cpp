#include "qv/io/FileOutputStream.h"

#include "qv/Exceptions.h"
#include "qv/io/detail/OpenFile.h"
#include "qv/sync/ScopedLock.h"
#include "qvcore/Encoding.h"

#include <optional>
#include <vector>

namespace qv::io {

namespace {

constexpr std::int32_t endOfFile = 2; // the origin of a seek
constexpr unsigned int lockingModes = FileOutputStream::APPEND | FileOutputStream::LOCK;

/// Holds the mutex of a stream for a scope, where there is one.
using MutexScope = std::optional<sync::ScopedLock<sync::Mutex>>;

MutexScope lockIf(bool wanted, const Reference<sync::Mutex>& mutex) {
    return wanted && mutex != nullptr ? MutexScope(std::in_place, *mutex) : std::nullopt;
}

/// The name under which all processes that write a path share its lock. There is room for every
/// unit's longest form: two paths whose names were cut would share one lock.
std::vector<char> lockName(String canonicalPath) {
    constexpr std::size_t longestForm = 4;
    constexpr std::size_t spare = 10;
    canonicalPath.translate(u'\\', u'/');
    std::vector<char> name(longestForm * static_cast<std::size_t>(canonicalPath.getLength()) +
                           spare);
    const std::int32_t written = QVUnicodeToAnsi(name.data(), canonicalPath.getData(),
                                                 static_cast<std::int32_t>(name.size()));
    if (written < 1) {
        throw ResultException();
    }
    return name;
}

} // namespace

/// One operation's turn among threads and processes: the mutex, then the lock; given back in
/// reverse.
///
/// The mutex is taken in every mode that has one. The semaphore holds its guard, which is this
/// mutex, while it blocks: a second thread that waited there would keep the first from ever giving
/// it back.
class FileOutputStream::Turn {
public:
    explicit Turn(FileOutputStream& stream)
        : mutex_(lockIf(true, stream.mutex_)),
          semaphore_(stream.semaphore_ != nullptr
                         ? std::optional<sync::ScopedLock<ipc::SemaphoreR>>(std::in_place,
                                                                            *stream.semaphore_)
                         : std::nullopt) {}

private:
    MutexScope mutex_;
    std::optional<sync::ScopedLock<ipc::SemaphoreR>> semaphore_;
};

const unsigned int FileOutputStream::ATEND;
const unsigned int FileOutputStream::APPEND;
const unsigned int FileOutputStream::TRUNC;
const unsigned int FileOutputStream::KEEPCLOSED;
const unsigned int FileOutputStream::LOCK;

FileOutputStream::FileOutputStream(const util::FilePath& path, unsigned int mode)
    : path_(path.getPath()), handle_(QV_FILE_NONE), mode_(mode) {
    init(path);
}

FileOutputStream::FileOutputStream(const String& path, unsigned int mode)
    : path_(path), handle_(QV_FILE_NONE), mode_(mode) {
    init(util::FilePath(path));
}

FileOutputStream::FileOutputStream(const util::FilePath& path, bool append)
    : FileOutputStream(path, append ? ATEND : TRUNC) {}

FileOutputStream::FileOutputStream(const String& path, bool append)
    : FileOutputStream(path, append ? ATEND : TRUNC) {}

FileOutputStream::FileOutputStream(std::uint64_t handle, bool owns)
    : handle_(handle), ownsHandle_(owns), mode_(0) {}

FileOutputStream::~FileOutputStream() noexcept {
    if (ownsHandle_) {
        detail::dropFile(handle_);
    }
    giveBackAll();
}

std::uint64_t FileOutputStream::openFile(const String& path, unsigned int mode) {
    std::uint32_t access = QV_FILE_WRITE | QV_FILE_CREATE;
    access |= (mode & ATEND) != 0 ? QV_FILE_ATEND : 0;
    access |= (mode & TRUNC) != 0 ? QV_FILE_TRUNCATE : 0;
    return detail::openFile(path, access);
}

void FileOutputStream::init(const util::FilePath& path) {
    const String canonicalPath = path.getCanonicalPath();
    if (canonicalPath.isEmpty()) {
        throw InvalidPathException();
    }
    if ((mode_ & (lockingModes | KEEPCLOSED)) != 0) {
        mutex_ = new sync::Mutex;
    }
    if ((mode_ & lockingModes) != 0) {
        semaphore_ = new ipc::SemaphoreR(lockName(canonicalPath).data(), 1, mutex_);
    }
    handle_ = openFile(path_, mode_);
    if (keepsClosed()) {
        FileOutputStream::close(); // the open served to make or empty the file
    }
}

void FileOutputStream::reopen() {
    if (handle_ == QV_FILE_NONE) {
        // A stream that was emptied at first and is kept closed adds to the file by reopening it.
        const bool adds = keepsClosed() && (mode_ & TRUNC) != 0;
        handle_ = openFile(path_, (mode_ & ~TRUNC) | (adds ? ATEND : 0));
    }
}

void FileOutputStream::write(const signed char* bytes, std::int32_t length) {
    const Turn turn(*this);
    if (keepsClosed()) {
        reopen();
    }
    std::int32_t result = QV_S_OK;
    if ((mode_ & APPEND) != 0) {
        std::int64_t position = 0;
        result = QVFileSeek64(handle_, 0, endOfFile, &position);
    }
    if (result >= 0 && length > 0) {
        result = QVFileWrite(handle_, bytes, static_cast<std::uint32_t>(length));
    }
    if (result >= 0 && keepsClosed()) {
        flush();
    } else if (keepsClosed()) {
        close();
    }
    throwIfFailed(result);
}

void FileOutputStream::flush() {
    const MutexScope scope = lockIf(keepsClosed(), mutex_);
    if (handle_ == QV_FILE_NONE) {
        return;
    }
    const std::int32_t result = QVFileFlush(handle_);
    if (keepsClosed()) {
        close();
    }
    throwIfFailed(result);
}

void FileOutputStream::close() {
    const MutexScope scope = lockIf(keepsClosed(), mutex_);
    if (ownsHandle_ && handle_ != QV_FILE_NONE && QVFileClose(handle_) == QV_S_OK) {
        handle_ = QV_FILE_NONE;
    }
}

short FileOutputStream::is_open() const { return handle_ != QV_FILE_NONE ? 1 : 0; }

void FileOutputStream::open() {
    if (path_.isEmpty()) {
        throw InvalidPathException();
    }
    const MutexScope scope = lockIf(keepsClosed(), mutex_);
    reopen();
}

std::int64_t FileOutputStream::getSize() {
    const MutexScope scope = lockIf(keepsClosed(), mutex_);
    if (keepsClosed()) {
        reopen();
    }
    std::int64_t size = 0;
    const std::int32_t result = QVFileGetSize(handle_, &size);
    if (keepsClosed()) {
        close();
    }
    throwIfFailed(result);
    return size;
}

void FileOutputStream::wait() {
    if (semaphore_ == nullptr) {
        return;
    }
    mutex_->wait();
    try {
        semaphore_->wait();
    } catch (...) {
        mutex_->signal();
        throw;
    }
}

void FileOutputStream::signal() {
    // The mutex is the semaphore's guard: a thread that can take it without waiting holds the lock,
    // or nobody does.
    if (semaphore_ == nullptr || !mutex_->tryWait()) {
        return;
    }
    const std::int32_t result = toResult([this] { semaphore_->signal(); });
    mutex_->signal();
    throwIfFailed(result); // the lock is still held, and the mutex as `wait` took it
    static_cast<void>(toResult([this] { mutex_->signal(); })); // refused, if `wait` was not called
}

/// Gives the lock back as often as the calling thread holds it.
void FileOutputStream::giveBackAll() noexcept {
    bool held = semaphore_ != nullptr;
    while (held && mutex_->tryWait()) {
        static_cast<void>(toResult([this] { semaphore_->signal(); }));
        mutex_->signal();
        held = toResult([this] { mutex_->signal(); }) >= 0;
    }
}

Reference<FileOutputStream> FileOutputStream::standardOutput() {
    return make<FileOutputStream>(QVFileGetStandard(1), false);
}

} // namespace qv::io
