#include "qvcore/common/SharedSystem.h"

#include "qvcore/NativeResult.h"
#include "qvcore/common/NativeError.h"
#include "qvcore/posix/Descriptor.h"

#include <atomic>
#include <csignal>
#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <linux/futex.h>
#include <memory>
#include <new>
#include <pthread.h>
#include <string_view>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>

namespace qv::core {

namespace {

/// What the system tells of a process. Without a /proc nothing is known but that it exists.
struct ProcessStatus {
    bool isKnown = false;
    char state = 0;
    long threads = 0;
    /// Of the moment at which the process began and of the program that it runs, which is placed
    /// anew each time: what a process held ends when it runs another. 0 where either is not told.
    std::uint32_t start = 0;

    explicit ProcessStatus(std::uint32_t id) noexcept {
        char path[32];
        std::snprintf(path, sizeof path, "/proc/%u/stat", id);
        const Descriptor file(restarted([&] { return open(path, O_RDONLY | O_CLOEXEC); }));
        char text[1024];
        const ssize_t length =
            file.isOpen() ? restarted([&] { return read(file.get(), text, sizeof text - 1); }) : 0;
        if (length > 0) {
            text[length] = 0;
            parse(std::string_view(text, static_cast<std::size_t>(length)));
        }
    }

    /// A process whose main thread alone has left has the state of one that ended, and lives.
    bool hasEnded() const noexcept { return (state == 'Z' || state == 'X') && threads <= 1; }

private:
    /// The program's name stands in parentheses and may hold any character. Behind it stand the
    /// state, seventeen fields on the number of threads, two fields on the moment of the start, and
    /// six fields on the address at which the program found its stack.
    void parse(std::string_view text) noexcept {
        const std::size_t name = text.rfind(')');
        if (name == std::string_view::npos) {
            return;
        }
        unsigned long long moment = 0;
        unsigned long long stack = 0;
        isKnown = std::sscanf(text.data() + name + 1,
                              " %c %*s %*s %*s %*s %*s %*s %*s %*s %*s %*s %*s %*s %*s %*s %*s %*s"
                              " %ld %*s %llu %*s %*s %*s %*s %*s %llu",
                              &state, &threads, &moment, &stack) == 4;
        if (moment != 0 && stack != 0) {
            start = wordOf(moment, stack);
        }
    }

    static std::uint32_t wordOf(std::uint64_t moment, std::uint64_t stack) noexcept {
        constexpr std::uint64_t goldenRatio = 0x9E3779B97F4A7C15; // spreads what differs a little
        const std::uint64_t mixed = (moment * goldenRatio ^ stack) * goldenRatio;
        return static_cast<std::uint32_t>(mixed >> 32) | 1;
    }
};

/// What the names of all blocks of the user begin with.
std::string systemPrefix() { return "/qv-" + std::to_string(geteuid()) + "-"; }

std::string systemName(const std::string& name) { return systemPrefix() + name; }

int toDescriptor(std::uintptr_t file) noexcept {
    // 0 means none, so that descriptors are kept one higher.
    return static_cast<int>(file) - 1;
}

std::uintptr_t fromDescriptor(int descriptor) noexcept {
    return static_cast<std::uintptr_t>(descriptor) + 1;
}

std::int32_t mapFile(int descriptor, std::size_t size, bool isWritable, void** address) noexcept {
    const int protection = isWritable ? PROT_READ | PROT_WRITE : PROT_READ;
    void* mapped = mmap(nullptr, size, protection, MAP_SHARED, descriptor, 0);
    if (mapped == MAP_FAILED) {
        return lastNativeResult();
    }
    *address = mapped;
    return QV_S_OK;
}

/// Takes the memory of a new file now: what cannot be had later would end the process.
std::int32_t reserve(int descriptor, std::size_t size) noexcept {
    int error = EINTR;
    while (error == EINTR) {
        error = posix_fallocate(descriptor, 0, static_cast<off_t>(size));
    }
    return QVResultFromNative(static_cast<std::uint32_t>(error));
}

/// A file of shared memory while it is being opened; locked.
class LockedFile {
public:
    explicit LockedFile(int descriptor) noexcept : file_(descriptor) {}
    ~LockedFile() {
        if (file_.isOpen()) {
            flock(file_.get(), LOCK_UN);
        }
    }

    /// Fails where the file was not opened. `mode` may say LOCK_NB.
    std::int32_t lock(int mode = 0) noexcept {
        if (!file_.isOpen() ||
            restarted([=, this] { return flock(file_.get(), LOCK_EX | mode); }) == -1 ||
            fstat(file_.get(), &status_) == -1) {
            return lastNativeResult();
        }
        return status_.st_uid == geteuid() ? QV_S_OK : QV_E_ACCESSDENIED;
    }

    /// False if the name was taken from it before it could be locked.
    bool hasName() const noexcept { return status_.st_nlink != 0; }
    std::size_t size() const noexcept { return static_cast<std::size_t>(status_.st_size); }
    int get() const noexcept { return file_.get(); }
    /// The caller takes the lock over as well.
    int release() noexcept { return file_.release(); }

private:
    Descriptor file_;
    struct stat status_ = {};
};

/// What this process knows of itself, or what the process knew that it was forked from. One word,
/// so that its threads agree without a lock, which a fork could leave locked.
std::atomic<ProcessIdentity> ownIdentity;
static_assert(decltype(ownIdentity)::is_always_lock_free);

/// A child may be given the number of an ancestor that has ended.
[[maybe_unused]] const int forgetsAtFork =
    pthread_atfork(nullptr, nullptr, [] { ownIdentity.store({}); });

} // namespace

ProcessIdentity currentProcess() noexcept {
    const auto id = static_cast<std::uint32_t>(getpid());
    ProcessIdentity known = ownIdentity.load();
    if (known.id != id) {
        const ProcessIdentity learned = {id, ProcessStatus(id).start};
        if (ownIdentity.compare_exchange_strong(known, learned)) {
            known = learned;
        }
    }
    return known;
}

bool isRunning(const ProcessIdentity& process) noexcept {
    const ProcessIdentity self = currentProcess();
    if (process.id == self.id) {
        return process == self;
    }
    if (kill(static_cast<pid_t>(process.id), 0) == -1 && errno == ESRCH) {
        return false;
    }
    const ProcessStatus status(process.id);
    return !status.isKnown || (!status.hasEnded() && process.mayBe({process.id, status.start}));
}

namespace {

struct CloseFolder {
    void operator()(DIR* folder) const noexcept { closedir(folder); }
};

using IsInUse = bool (*)(const void* memory, std::size_t size);

/// An empty file has no user: its maker was killed before it had filled it, or still waits for the
/// lock and begins anew where the file has lost its name.
bool hasUser(const LockedFile& file, IsInUse isInUse) noexcept {
    if (file.size() == 0) {
        return false;
    }
    void* address = nullptr;
    if (mapFile(file.get(), file.size(), false, &address) < 0) {
        return true; // nobody knows
    }
    const bool result = isInUse(address, file.size());
    munmap(address, file.size());
    return result;
}

void discardIfUnused(const std::string& name, IsInUse isInUse) noexcept {
    LockedFile file(shm_open(name.c_str(), O_RDWR | O_CLOEXEC, 0));
    if (file.lock(LOCK_NB) >= 0 && file.hasName() && !hasUser(file, isInUse)) {
        shm_unlink(name.c_str());
    }
}

} // namespace

NamedBlock::~NamedBlock() { close(); }

std::int32_t NamedBlock::openLocked(const std::string& name, std::size_t size,
                                    std::uint32_t permissions) {
    name_ = systemName(name);
    currentProcess(); // learned while there is a descriptor for it
    for (;;) {
        LockedFile file(shm_open(name_.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, permissions));
        std::int32_t result = file.lock();
        if (result < 0) {
            return result;
        }
        if (!file.hasName()) {
            continue;
        }
        isNew_ = file.size() == 0;
        parts_.size = isNew_ ? size : file.size();
        result = isNew_ ? reserve(file.get(), size) : QV_S_OK;
        if (result >= 0) {
            result = mapFile(file.get(), parts_.size, true, &parts_.address);
        }
        if (result >= 0) {
            parts_.file = fromDescriptor(file.release());
        } else if (isNew_) {
            shm_unlink(name_.c_str());
        }
        return result;
    }
}

void NamedBlock::close() noexcept {
    if (parts_.file != 0) {
        unmap(parts_.address, parts_.size);
        ::close(toDescriptor(parts_.file));
        parts_ = {};
    }
}

std::int32_t NamedBlock::lock() noexcept {
    const int descriptor = toDescriptor(parts_.file);
    return restarted([=] { return flock(descriptor, LOCK_EX); }) == -1 ? lastNativeResult()
                                                                       : QV_S_OK;
}

void NamedBlock::unlock() noexcept {
    // Said aloud: a child that was forked meanwhile shares the file, and would keep its lock.
    flock(toDescriptor(parts_.file), LOCK_UN);
}

bool NamedBlock::isLockKept() noexcept {
    // To take what one has is no change.
    const int descriptor = toDescriptor(parts_.file);
    return restarted([=] { return flock(descriptor, LOCK_EX | LOCK_NB); }) == 0;
}

std::int32_t NamedBlock::map(bool isWritable, void** address) const noexcept {
    return mapFile(toDescriptor(parts_.file), parts_.size, isWritable, address);
}

void NamedBlock::unmap(void* address, std::size_t size) noexcept { munmap(address, size); }

void NamedBlock::discard() noexcept {
    // The name may belong to a newer block by now; then it is not this one's to take.
    struct stat own = {};
    if (fstat(toDescriptor(parts_.file), &own) == 0 && own.st_nlink != 0) {
        shm_unlink(name_.c_str());
    }
}

void NamedBlock::discardUnused(IsInUse isInUse) {
    // The blocks are files of this folder, though only their names are used. The language's own
    // iterator would end the process where memory runs out.
    const std::string prefix = systemPrefix();
    const std::unique_ptr<DIR, CloseFolder> folder(opendir("/dev/shm"));
    while (const dirent* file = folder == nullptr ? nullptr : readdir(folder.get())) {
        const std::string name = std::string("/").append(file->d_name);
        if (name.starts_with(prefix)) {
            discardIfUnused(name, isInUse);
        }
    }
}

namespace {

/// What a guard keeps in shared memory.
struct GuardState {
    pthread_mutex_t mutex;
    std::atomic<std::uint32_t> announcements;
    /// How many wait. One that is killed stays counted, which costs no more than a needless call.
    std::atomic<std::uint32_t> waiters;
};

static_assert(sizeof(GuardState) <= sizeof(SharedGuard::Storage));

GuardState& stateOf(SharedGuard::Storage& storage) noexcept {
    return *reinterpret_cast<GuardState*>(storage.bytes);
}

std::uint32_t* futexWord(GuardState& state) noexcept {
    return reinterpret_cast<std::uint32_t*>(&state.announcements);
}

int makeMutex(pthread_mutex_t& mutex) noexcept {
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_setpshared(&attributes, PTHREAD_PROCESS_SHARED);
    pthread_mutexattr_setrobust(&attributes, PTHREAD_MUTEX_ROBUST);
    const int error = pthread_mutex_init(&mutex, &attributes);
    pthread_mutexattr_destroy(&attributes);
    return error;
}

} // namespace

SharedGuard::~SharedGuard() = default;

std::int32_t SharedGuard::open(Storage& storage, const std::string&, bool isNew) {
    storage_ = &storage;
    if (!isNew) {
        return QV_S_OK;
    }
    auto* state = new (storage.bytes) GuardState{};
    return QVResultFromNative(static_cast<std::uint32_t>(makeMutex(state->mutex)));
}

std::int32_t SharedGuard::lock() noexcept {
    pthread_mutex_t& mutex = stateOf(*storage_).mutex;
    int error = pthread_mutex_lock(&mutex);
    if (error == EOWNERDEAD) {
        error = pthread_mutex_consistent(&mutex);
    }
    return QVResultFromNative(static_cast<std::uint32_t>(error));
}

void SharedGuard::unlock() noexcept { pthread_mutex_unlock(&stateOf(*storage_).mutex); }

std::uint32_t SharedGuard::mark() const noexcept { return stateOf(*storage_).announcements.load(); }

void SharedGuard::wait(std::uint32_t mark, std::uint32_t timeout) noexcept {
    GuardState& state = stateOf(*storage_);
    const timespec time = {timeout / 1000, static_cast<long>(timeout % 1000) * 1'000'000};
    ++state.waiters;
    syscall(SYS_futex, futexWord(state), FUTEX_WAIT, mark, &time, nullptr, 0);
    --state.waiters;
}

void SharedGuard::announce() noexcept {
    GuardState& state = stateOf(*storage_);
    ++state.announcements;
    if (state.waiters.load() != 0) {
        syscall(SYS_futex, futexWord(state), FUTEX_WAKE, 1, nullptr, nullptr, 0);
    }
}

} // namespace qv::core
