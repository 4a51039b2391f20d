#include "qvcore/Ipc.h"
#include "qvcore/Locks.h"

#include "tests/qvcore/Results.h"
#include "tests/support/ChildRole.h"
#include "tests/support/TestProcess.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <gtest/gtest.h>
#include <memory>
#include <thread>

using namespace support;

namespace {

constexpr std::uint32_t readAccess = 0x80000000u;
constexpr std::uint32_t writeAccess = 0x40000000u;
constexpr std::uint32_t readWriteAccess = 0xC0000000u;

/// A name that no other run of the tests uses at the same time.
std::string uniqueName() {
    static std::atomic<int> number = 0;
    static const auto run = std::chrono::steady_clock::now().time_since_epoch().count();
    return "qvcore-test/" + std::to_string(run) + "/" + std::to_string(++number);
}

class Semaphore {
public:
    explicit Semaphore(const std::string& name, std::uint32_t value = 1) {
        EXPECT_EQ(QVNamedSemOpen(name.c_str(), value, &handle_), 0);
    }
    ~Semaphore() { close(); }
    Semaphore(const Semaphore&) = delete;
    Semaphore& operator=(const Semaphore&) = delete;

    void close() {
        if (handle_ != 0) {
            EXPECT_EQ(QVNamedSemClose(handle_), 0);
            handle_ = 0;
        }
    }
    std::int32_t wait() { return QVSemaphoreWait(handle_); }
    std::int32_t tryWait() { return QVSemaphoreTryWait(handle_); }
    std::int32_t post() { return QVSemaphorePost(handle_); }
    std::int32_t value() {
        std::int32_t value = -1;
        EXPECT_EQ(QVSemaphoreGetValue(handle_, &value), 0);
        return value;
    }
    std::uint64_t handle() const { return handle_; }

private:
    std::uint64_t handle_ = 0;
};

/// A handle of a shared block, mapped for reading and writing.
class Block {
public:
    Block(const std::string& name, std::uint32_t size) {
        EXPECT_EQ(QVSharedMemOpen(name.c_str(), 0, 0, size, &handle_), 0);
        EXPECT_EQ(QVSharedMemAttach(handle_, readWriteAccess, &address_), 0);
    }
    ~Block() {
        EXPECT_EQ(QVSharedMemDetach(address_), 0);
        EXPECT_EQ(QVSharedMemClose(handle_), 0);
    }
    Block(const Block&) = delete;
    Block& operator=(const Block&) = delete;

    std::uint64_t handle() const { return handle_; }
    unsigned char* bytes() const { return static_cast<unsigned char*>(address_); }
    bool isZero(std::size_t size) const {
        return std::all_of(bytes(), bytes() + size, [](unsigned char byte) { return byte == 0; });
    }

private:
    std::uint64_t handle_ = 0;
    void* address_ = nullptr;
};

/// Opens the semaphore and does what the parent says: w(ait), t(ry), p(ost), v(alue), c(lose).
int serveSemaphore(const std::vector<std::string>& arguments) {
    std::uint64_t handle = 0;
    const auto value = static_cast<std::uint32_t>(std::stoul(arguments.at(1)));
    if (QVNamedSemOpen(arguments.at(0).c_str(), value, &handle) != 0) {
        return 1;
    }
    tell("open");
    for (std::string order = hear(); !order.empty(); order = hear()) {
        std::int32_t number = 0;
        switch (order[0]) {
        case 'w':
            tell(std::to_string(QVSemaphoreWait(handle)));
            break;
        case 't':
            tell(std::to_string(QVSemaphoreTryWait(handle)));
            break;
        case 'p':
            tell(std::to_string(QVSemaphorePost(handle)));
            break;
        case 'v':
            QVSemaphoreGetValue(handle, &number);
            tell(std::to_string(number));
            break;
        default:
            tell(std::to_string(QVNamedSemClose(handle)));
            break;
        }
    }
    // The process ends without closing what it has open.
    std::_Exit(0);
}

/// Takes and posts the lock until the process is killed.
int takeAndPostForEver(const std::vector<std::string>& arguments) {
    std::uint64_t handle = 0;
    if (QVNamedSemOpen(arguments.at(0).c_str(), 1, &handle) != 0) {
        return 1;
    }
    tell("open");
    for (;;) {
        if (QVSemaphoreWait(handle) != 0 || QVSemaphorePost(handle) != 0) {
            return 2;
        }
    }
}

/// Adds to a number in a shared block, under the lock, in steps that others could see.
int addUnderLock(const std::vector<std::string>& arguments) {
    Semaphore lock(arguments.at(0));
    const Block block(arguments.at(1), 64);
    for (int round = std::stoi(arguments.at(2)); round > 0; --round) {
        if (lock.wait() != 0) {
            return 1;
        }
        volatile std::uint32_t* number = reinterpret_cast<std::uint32_t*>(block.bytes());
        const std::uint32_t before = *number;
        std::this_thread::yield();
        *number = before + 1;
        if (lock.post() != 0) {
            return 2;
        }
    }
    return 0;
}

/// Opens the block of the given size, writes a byte at the front when it hears of it, and waits.
int serveBlock(const std::vector<std::string>& arguments) {
    const Block block(arguments.at(0), static_cast<std::uint32_t>(std::stoul(arguments.at(1))));
    tell(std::to_string(block.bytes()[0]));
    for (std::string order = hear(); !order.empty(); order = hear()) {
        block.bytes()[0] = static_cast<unsigned char>(std::stoi(order));
        tell("written");
    }
    return 0;
}

const support::ChildRole semaphoreRole("semaphore", serveSemaphore);
const support::ChildRole loopRole("take-and-post", takeAndPostForEver);
const support::ChildRole addRole("add-under-lock", addUnderLock);
const support::ChildRole blockRole("block", serveBlock);

/// A child in the semaphore role.
class SemaphoreProcess {
public:
    explicit SemaphoreProcess(const std::string& name, std::uint32_t value = 1)
        : process("semaphore", {name, std::to_string(value)}) {
        EXPECT_EQ(process.readLine(), "open");
    }

    int say(char order) {
        send(order);
        return answer();
    }
    void send(char order) { process.write(std::string(1, order) + "\n"); }
    int answer() {
        const std::string line = process.readLine();
        return line.empty() ? -1 : std::stoi(line);
    }
    void end() {
        process.closeInput();
        EXPECT_EQ(process.wait(), 0);
    }

    TestProcess process;
};

} // namespace

TEST(NamedSemaphoreTest, CountsDownAndUp) {
    Semaphore semaphore(uniqueName(), 2);
    EXPECT_EQ(semaphore.value(), 2);
    EXPECT_EQ(semaphore.wait(), 0);
    EXPECT_EQ(semaphore.tryWait(), 0);
    EXPECT_EQ(semaphore.tryWait(), timedOut);
    EXPECT_EQ(semaphore.value(), 0);
    EXPECT_EQ(semaphore.post(), 0);
    EXPECT_EQ(semaphore.value(), 1);
}

TEST(NamedSemaphoreTest, RefusesBadArguments) {
    std::uint64_t handle = 77;
    EXPECT_EQ(QVNamedSemOpen(nullptr, 1, &handle), invalidArgument);
    EXPECT_EQ(QVNamedSemOpen("", 1, &handle), invalidArgument);
    EXPECT_EQ(QVNamedSemOpen(uniqueName().c_str(), 0x80000000u, &handle), invalidArgument);
    EXPECT_EQ(QVNamedSemOpen(uniqueName().c_str(), 1, nullptr), nullOutput);
    EXPECT_EQ(handle, 77u);
    EXPECT_EQ(QVNamedSemClose(0), invalidHandle);
}

TEST(NamedSemaphoreTest, IsEndedByItsOwnOperation) {
    const Semaphore named(uniqueName());
    EXPECT_EQ(QVSemaphoreDestroy(named.handle()), invalidHandle);
    std::uint64_t local = 0;
    ASSERT_EQ(QVSemaphoreCreate(1, nullptr, 0, &local), 0);
    EXPECT_EQ(QVNamedSemClose(local), invalidHandle);
    EXPECT_EQ(QVSemaphoreDestroy(local), 0);
}

TEST(NamedSemaphoreTest, IsOneUnderOneName) {
    const std::string name = uniqueName();
    Semaphore first(name, 3);
    Semaphore second(name, 7);
    EXPECT_EQ(second.value(), 3);
    EXPECT_EQ(first.wait(), 0);
    EXPECT_EQ(second.value(), 2);
    EXPECT_EQ(second.post(), 0);
    EXPECT_EQ(first.value(), 3);
}

TEST(NamedSemaphoreTest, TakesAnyName) {
    const std::string base = uniqueName();
    const std::string names[] = {base,
                                 base + "x",
                                 "/" + base,
                                 base + "\\a",
                                 base + "/a",
                                 base + "\xC3\xA4",
                                 base + "\xFF\x01",
                                 base + std::string(5000, 'x'),
                                 base + std::string(5000, 'x') + "y"};
    std::vector<std::unique_ptr<Semaphore>> semaphores;
    for (std::size_t index = 0; index < std::size(names); ++index) {
        semaphores.push_back(
            std::make_unique<Semaphore>(names[index], static_cast<std::uint32_t>(index + 2)));
    }
    for (std::size_t index = 0; index < std::size(names); ++index) {
        EXPECT_EQ(semaphores[index]->value(), static_cast<std::int32_t>(index + 2));
    }
}

TEST(NamedSemaphoreTest, IsGoneWithItsLastHandle) {
    const std::string name = uniqueName();
    {
        Semaphore first(name, 3);
        {
            Semaphore second(name, 5);
            EXPECT_EQ(second.wait(), 0);
        }
        EXPECT_EQ(first.value(), 2);
    }
    Semaphore third(name, 5);
    EXPECT_EQ(third.value(), 5);
}

TEST(NamedSemaphoreTest, RefusesAPostBeyondItsGreatestCount) {
    Semaphore semaphore(uniqueName(), 0x7FFFFFFF);
    EXPECT_EQ(semaphore.post(), tooManyPosts);
    EXPECT_EQ(semaphore.value(), 0x7FFFFFFF);
}

TEST(NamedSemaphoreTest, AddsThePostOfAProcessThatHoldsNothing) {
    Semaphore lock(uniqueName(), 1);
    EXPECT_EQ(lock.post(), 0);
    EXPECT_EQ(lock.value(), 2);
}

TEST(NamedSemaphoreTest, KeepsWhatAProcessHoldsUntilItsLastHandleIsClosed) {
    const std::string name = uniqueName();
    SemaphoreProcess other(name);
    Semaphore first(name);
    {
        Semaphore second(name);
        EXPECT_EQ(second.wait(), 0);
    }
    EXPECT_EQ(other.say('t'), timedOut);
    first.close();
    EXPECT_EQ(other.say('v'), 1);
    EXPECT_EQ(other.say('t'), 0);
    other.end();
}

TEST(NamedSemaphoreTest, GivesNothingBackWhereItIsNoLock) {
    const std::string name = uniqueName();
    SemaphoreProcess other(name, 2);
    {
        Semaphore semaphore(name, 2);
        EXPECT_EQ(semaphore.wait(), 0);
    }
    EXPECT_EQ(other.say('v'), 1);
    other.end();
}

TEST(NamedSemaphoreTest, IsSharedWithOtherProcesses) {
    const std::string name = uniqueName();
    Semaphore lock(name);
    SemaphoreProcess other(name);
    EXPECT_EQ(other.say('w'), 0);
    EXPECT_EQ(lock.tryWait(), timedOut);
    EXPECT_EQ(lock.value(), 0);
    EXPECT_EQ(other.say('p'), 0);
    EXPECT_EQ(lock.tryWait(), 0);
    EXPECT_EQ(other.say('t'), timedOut);
    other.send('w');
    EXPECT_EQ(lock.post(), 0);
    EXPECT_EQ(other.answer(), 0);
    EXPECT_EQ(other.say('c'), 0);
    EXPECT_EQ(lock.value(), 1);
    other.end();
}

TEST(NamedSemaphoreTest, PassesCountsFromProcessToProcess) {
    const std::string name = uniqueName();
    Semaphore queue(name, 0);
    SemaphoreProcess producer(name, 0);
    producer.send('p');
    EXPECT_EQ(queue.wait(), 0);
    EXPECT_EQ(producer.answer(), 0);
    for (int post = 0; post < 3; ++post) {
        EXPECT_EQ(producer.say('p'), 0);
    }
    producer.process.kill();
    EXPECT_EQ(queue.value(), 3);
}

TEST(NamedSemaphoreTest, ComesBackFromAHolderThatIsKilled) {
    const std::string name = uniqueName();
    Semaphore lock(name);
    SemaphoreProcess holder(name);
    EXPECT_EQ(holder.say('w'), 0);
    EXPECT_EQ(lock.tryWait(), timedOut);
    holder.process.kill();
    EXPECT_EQ(lock.tryWait(), 0);
    EXPECT_EQ(lock.post(), 0);
    EXPECT_EQ(lock.value(), 1);
}

TEST(NamedSemaphoreTest, WakesAWaiterWhoseHolderIsKilled) {
    const std::string name = uniqueName();
    SemaphoreProcess waiter(name);
    SemaphoreProcess holder(name);
    EXPECT_EQ(holder.say('w'), 0);
    waiter.send('w');
    holder.process.kill();
    EXPECT_EQ(waiter.answer(), 0);
    waiter.end();
}

TEST(NamedSemaphoreTest, ComesBackFromAHolderThatEndsByItself) {
    const std::string name = uniqueName();
    Semaphore lock(name);
    SemaphoreProcess holder(name);
    EXPECT_EQ(holder.say('w'), 0);
    holder.end();
    EXPECT_EQ(lock.wait(), 0);
    EXPECT_EQ(lock.post(), 0);
    EXPECT_EQ(lock.value(), 1);
}

TEST(NamedSemaphoreTest, SurvivesAKillAtAnyMoment) {
    const std::string name = uniqueName();
    Semaphore lock(name);
    for (int round = 0; round < 15; ++round) {
        TestProcess first("take-and-post", {name});
        TestProcess second("take-and-post", {name});
        ASSERT_EQ(first.readLine(), "open");
        ASSERT_EQ(second.readLine(), "open");
        for (int turn = 0; turn <= round; ++turn) {
            ASSERT_EQ(lock.wait(), 0);
            ASSERT_EQ(lock.post(), 0);
        }
        first.kill();
        ASSERT_EQ(lock.wait(), 0);
        second.kill();
        ASSERT_EQ(lock.post(), 0);
        ASSERT_EQ(lock.value(), 1) << round;
    }
}

TEST(NamedSemaphoreTest, DoesNotCountTheHandlesOfAKilledProcess) {
    const std::string name = uniqueName();
    SemaphoreProcess owner(name, 5);
    EXPECT_EQ(owner.say('w'), 0);
    owner.process.kill();
    Semaphore semaphore(name, 2);
    EXPECT_EQ(semaphore.value(), 2);
}

TEST(NamedSemaphoreTest, KeepsProcessesApart) {
    const std::string lock = uniqueName();
    const std::string memory = uniqueName();
    const Block block(memory, 64);
    std::vector<std::unique_ptr<TestProcess>> processes;
    for (int index = 0; index < 3; ++index) {
        processes.push_back(std::make_unique<TestProcess>(
            "add-under-lock", std::vector<std::string>{lock, memory, "500"}));
    }
    for (const auto& process : processes) {
        EXPECT_EQ(process->wait(), 0);
    }
    std::uint32_t number = 0;
    std::memcpy(&number, block.bytes(), sizeof number);
    EXPECT_EQ(number, 1500u);
}

TEST(NamedSemaphoreThreadsTest, WakesAWaitingThread) {
    const std::string name = uniqueName();
    Semaphore semaphore(name, 0);
    Semaphore other(name, 0);
    constexpr int posts = 300;
    std::atomic<int> taken = 0;
    std::vector<std::thread> waiters;
    for (int index = 0; index < 3; ++index) {
        waiters.emplace_back([&] {
            for (int turn = 0; turn < posts / 3; ++turn) {
                EXPECT_EQ(other.wait(), 0);
                ++taken;
            }
        });
    }
    for (int post = 0; post < posts; ++post) {
        EXPECT_EQ(semaphore.post(), 0);
    }
    for (std::thread& waiter : waiters) {
        waiter.join();
    }
    EXPECT_EQ(taken, posts);
    EXPECT_EQ(semaphore.value(), 0);
}

TEST(NamedSemaphoreThreadsTest, IsOpenedAndClosedByManyThreadsAtOnce) {
    const std::string name = uniqueName();
    std::vector<std::thread> threads;
    for (int index = 0; index < 4; ++index) {
        threads.emplace_back([&name] {
            for (int turn = 0; turn < 100; ++turn) {
                Semaphore lock(name);
                EXPECT_EQ(lock.wait(), 0);
                EXPECT_EQ(lock.post(), 0);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    Semaphore last(name, 9);
    EXPECT_EQ(last.value(), 9);
}

TEST(SharedMemoryTest, IsZeroedAndWritable) {
    const Block block(uniqueName(), 100000);
    EXPECT_TRUE(block.isZero(100000));
    block.bytes()[99999] = 7;
    EXPECT_EQ(block.bytes()[99999], 7);
}

TEST(SharedMemoryTest, IsOneUnderOneName) {
    const std::string name = uniqueName();
    const Block first(name, 100);
    const Block second(name, 100);
    EXPECT_NE(first.bytes(), second.bytes());
    first.bytes()[5] = 42;
    EXPECT_EQ(second.bytes()[5], 42);
}

TEST(SharedMemoryTest, KeepsItsSize) {
    const std::string name = uniqueName();
    const Block block(name, 100);
    block.bytes()[99] = 42;
    const Block smaller(name, 10);
    EXPECT_EQ(smaller.bytes()[99], 42);
    const Block whatever(name, 0);
    EXPECT_EQ(whatever.bytes()[99], 42);
    std::uint64_t handle = 77;
    EXPECT_EQ(QVSharedMemOpen(name.c_str(), 0, 0, 101, &handle), invalidArgument);
    EXPECT_EQ(handle, 77u);
}

TEST(SharedMemoryTest, RefusesBadArguments) {
    std::uint64_t handle = 77;
    const std::string name = uniqueName();
    EXPECT_EQ(QVSharedMemOpen(nullptr, 0, 0, 10, &handle), invalidArgument);
    EXPECT_EQ(QVSharedMemOpen("", 0, 0, 10, &handle), invalidArgument);
    EXPECT_EQ(QVSharedMemOpen(name.c_str(), 0, 0, 0, &handle), invalidArgument);
    EXPECT_EQ(QVSharedMemOpen(name.c_str(), 0, 0, 10, nullptr), nullOutput);
    EXPECT_EQ(handle, 77u);
    EXPECT_EQ(QVSharedMemClose(0), invalidHandle);
}

TEST(SharedMemoryTest, IsMappedForWhatItsAccessSays) {
    const std::string name = uniqueName();
    const Block block(name, 100);
    block.bytes()[0] = 42;
    void* address = nullptr;
    ASSERT_EQ(QVSharedMemAttach(block.handle(), readAccess, &address), 0);
    EXPECT_EQ(*static_cast<unsigned char*>(address), 42);
    EXPECT_EQ(QVSharedMemDetach(address), 0);
    EXPECT_EQ(QVSharedMemDetach(address), invalidArgument);
    address = &address;
    EXPECT_EQ(QVSharedMemAttach(block.handle(), 0, &address), invalidArgument);
    EXPECT_EQ(QVSharedMemAttach(block.handle(), readAccess | 1, &address), invalidArgument);
    EXPECT_EQ(QVSharedMemAttach(block.handle(), readAccess, nullptr), nullOutput);
    EXPECT_EQ(QVSharedMemAttach(0, readAccess, &address), invalidHandle);
    EXPECT_EQ(address, &address);
    EXPECT_EQ(QVSharedMemDetach(&address), invalidArgument);
    EXPECT_EQ(QVSharedMemDetach(nullptr), invalidArgument);
}

TEST(SharedMemoryTest, IsWrittenUnderWriteAccessAlone) {
    const Block block(uniqueName(), 100);
    void* address = nullptr;
    ASSERT_EQ(QVSharedMemAttach(block.handle(), writeAccess, &address), 0);
    std::memset(address, 42, 100);
    EXPECT_EQ(block.bytes()[99], 42);
    EXPECT_EQ(QVSharedMemDetach(address), 0);
}

TEST(SharedMemoryTest, IsGoneWithItsLastHandle) {
    const std::string name = uniqueName();
    {
        const Block first(name, 10);
        {
            const Block second(name, 10);
            second.bytes()[0] = 42;
        }
        EXPECT_EQ(first.bytes()[0], 42);
    }
    const Block third(name, 1000);
    EXPECT_TRUE(third.isZero(1000));
}

TEST(SharedMemoryTest, StaysMappedWhenItIsClosed) {
    const std::string name = uniqueName();
    std::uint64_t handle = 0;
    void* address = nullptr;
    ASSERT_EQ(QVSharedMemOpen(name.c_str(), 0, 0640, 100, &handle), 0);
    ASSERT_EQ(QVSharedMemAttach(handle, readWriteAccess, &address), 0);
    EXPECT_EQ(QVSharedMemClose(handle), 0);
    std::memset(address, 42, 100);
    EXPECT_EQ(static_cast<unsigned char*>(address)[99], 42);
    EXPECT_EQ(QVSharedMemDetach(address), 0);
}

TEST(SharedMemoryTest, IsSharedWithOtherProcesses) {
    const std::string name = uniqueName();
    const Block block(name, 10);
    block.bytes()[0] = 42;
    TestProcess other("block", {name, "10"});
    EXPECT_EQ(other.readLine(), "42");
    other.write("17\n");
    EXPECT_EQ(other.readLine(), "written");
    EXPECT_EQ(block.bytes()[0], 17);
    other.closeInput();
    EXPECT_EQ(other.wait(), 0);
}

TEST(SharedMemoryTest, LivesInOtherProcessesOnly) {
    const std::string name = uniqueName();
    TestProcess other("block", {name, "10"});
    EXPECT_EQ(other.readLine(), "0");
    { const Block block(name, 10); }
    other.write("17\n");
    EXPECT_EQ(other.readLine(), "written");
    const Block block(name, 10);
    EXPECT_EQ(block.bytes()[0], 17);
    other.closeInput();
    EXPECT_EQ(other.wait(), 0);
}

TEST(SharedMemoryTest, DoesNotCountTheHandlesOfAKilledProcess) {
    const std::string name = uniqueName();
    TestProcess other("block", {name, "10"});
    EXPECT_EQ(other.readLine(), "0");
    other.write("17\n");
    EXPECT_EQ(other.readLine(), "written");
    other.kill();
    const Block block(name, 2000);
    EXPECT_TRUE(block.isZero(2000));
}
