#include "qv/String.h"
#include "qv/util/RWBuffer.h"
#include "tests/support/CountedObject.h"
#include "tests/support/Printing.h"

#include <atomic>
#include <gtest/gtest.h>
#include <thread>

using namespace qv;

namespace {

/// Runs `work` in four threads, each with a string of its own over the inner buffer of `text`.
template <class Work>
void inThreads(const String& text, Work work) {
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([own = text, work]() mutable { work(own); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

/// Everything that counts, reads or separates an inner buffer, many times.
void useString(const String& own) {
    for (int i = 0; i < 1000; ++i) {
        String copy(own);
        EXPECT_EQ(copy, u"shared text");
        String moved(std::move(copy));
        moved.append(u'!');
        copy = own;
        copy.append(u" of a thread").toUpper();
        EXPECT_EQ(copy, u"SHARED TEXT OF A THREAD");
        copy = String(own);
        EXPECT_EQ(copy.substring(7), u"text");
        EXPECT_EQ(moved, u"shared text!");
        EXPECT_EQ(own, u"shared text");
    }
}

TEST(StringThreadsTest, StringsOverOneBufferAreUsedByThreadsOfTheirOwn) {
    const Reference<util::RWCharBuffer> buffer(new util::RWCharBuffer(u"shared text", 12));
    {
        const String text(String::ACQUIRE_SHARE, buffer.get());
        ASSERT_EQ(text.getData(), buffer->getData());
        inThreads(text, [](const String& own) { useString(own); });
        EXPECT_EQ(text, u"shared text");
    }
    EXPECT_EQ(buffer->GetRefCount(), 1u) << "every reference that was taken is given back";
}

/// A buffer that tells its end.
class MortalBuffer : public util::RWCharBuffer {
public:
    MortalBuffer(const char16_t* data, int length, std::atomic<int>& ends)
        : RWBuffer(data, length), ends_(ends) {}
    ~MortalBuffer() noexcept override { ++ends_; }

private:
    std::atomic<int>& ends_;
};

TEST(StringThreadsTest, LastOfThemEndsTheBufferOnce) {
    for (int round = 0; round < 50; ++round) {
        std::atomic<int> ends{0};
        {
            String text(String::ACQUIRE_SHARE, new MortalBuffer(u"shared text", 12, ends));
            std::vector<std::thread> threads;
            for (int i = 0; i < 4; ++i) {
                threads.emplace_back([own = text]() mutable {
                    own.append(u'!'); // lets the shared buffer go, or writes to it as its last
                    EXPECT_EQ(own, u"shared text!");
                });
            }
            text = String();
            for (std::thread& thread : threads) {
                thread.join();
            }
        }
        EXPECT_EQ(ends, 1);
    }
}

TEST(StringThreadsTest, LastWriterMayKeepAnOwnBuffer) {
    for (int round = 0; round < 200; ++round) {
        String text(u"shared text");
        String other(text);
        std::thread thread([own = std::move(other)]() mutable {
            own.append(u" here");
            EXPECT_EQ(own, u"shared text here");
        });
        text.append(u" there");
        thread.join();
        EXPECT_EQ(text, u"shared text there");
    }
}

} // namespace
