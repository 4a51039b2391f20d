#include "qv/io/FilterInputStream.h"
#include "qv/io/FilterOutputStream.h"
#include "qv/io/FilterReader.h"
#include "qv/io/FilterWriter.h"

#include "qv/String.h"
#include "tests/support/Streams.h"

#include <gtest/gtest.h>

namespace {

using namespace qv;

using Calls = std::vector<std::string>;

/// Writes down every call, and answers it with a value of its own.
class CalledInput : public io::InputStream {
public:
    using InputStream::read;
    std::int32_t read(signed char*, std::int32_t length) override {
        calls.push_back("block " + std::to_string(length));
        return 11;
    }
    int read() override { return called("byte", 12); }
    std::int32_t skip(std::int32_t count) override {
        return called("skip " + std::to_string(count), 13);
    }
    std::int32_t available() override { return called("available", 14); }
    void close() override { called("close", 0); }
    bool markSupported() override { return called("markSupported", 1) != 0; }
    void mark(std::int32_t limit) override { called("mark " + std::to_string(limit), 0); }
    void reset() override { called("reset", 0); }

    Calls calls;

private:
    int called(const std::string& name, int answer) {
        calls.push_back(name);
        return answer;
    }
};

TEST(FilterInputStreamTest, HandsEveryOperationOn) {
    const Reference<CalledInput> in = make<CalledInput>();
    io::FilterInputStream filter(in);
    signed char bytes[5];
    EXPECT_EQ(filter.read(bytes, 5), 11);
    EXPECT_EQ(filter.read(), 12);
    EXPECT_EQ(filter.skip(3), 13);
    EXPECT_EQ(filter.available(), 14);
    EXPECT_TRUE(filter.markSupported());
    filter.mark(7);
    filter.reset();
    filter.close();
    EXPECT_EQ(in->calls, (Calls{"block 5", "byte", "skip 3", "available", "markSupported", "mark 7",
                                "reset", "close"}));
}

TEST(FilterInputStreamTest, LeavesTheOtherKindsOfBytesToTheBase) {
    const Reference<CalledInput> in = make<CalledInput>();
    io::FilterInputStream filter(in);
    char plain[2];
    unsigned char natural[3];
    EXPECT_EQ(filter.read(plain, 2), 11);
    EXPECT_EQ(filter.read(natural, 3), 11);
    EXPECT_EQ(in->calls, (Calls{"block 2", "block 3"}));
}

TEST(FilterInputStreamTest, HoldsWhatItWrapsFromItsStartToItsEnd) {
    const Reference<CalledInput> in = make<CalledInput>();
    {
        io::FilterInputStream filter(in);
        EXPECT_EQ(in->GetRefCount(), 2U);
        filter.close();
        EXPECT_EQ(in->GetRefCount(), 2U);
    }
    EXPECT_EQ(in->GetRefCount(), 1U);
}

TEST(FilterInputStreamTest, FailsOnFirstUseWithNothingToWrap) {
    io::FilterInputStream filter(nullptr);
    signed char byte;
    EXPECT_THROW(filter.read(&byte, 1), IllegalStateException);
    EXPECT_THROW(filter.read(), IllegalStateException);
    EXPECT_THROW(filter.skip(1), IllegalStateException);
    EXPECT_THROW(filter.available(), IllegalStateException);
    EXPECT_THROW(filter.markSupported(), IllegalStateException);
    EXPECT_THROW(filter.mark(1), IllegalStateException);
    EXPECT_THROW(filter.reset(), IllegalStateException);
    EXPECT_THROW(filter.close(), IllegalStateException);
}

class CalledOutput : public io::OutputStream {
public:
    using OutputStream::write;
    void write(const signed char*, std::int32_t length) override {
        calls.push_back("block " + std::to_string(length));
    }
    void write(signed char byte) override { calls.push_back("byte " + std::to_string(byte)); }
    void flush() override { calls.push_back("flush"); }
    void close() override { calls.push_back("close"); }

    Calls calls;
};

TEST(FilterOutputStreamTest, HandsEveryOperationOn) {
    const Reference<CalledOutput> out = make<CalledOutput>();
    io::FilterOutputStream filter(out);
    const signed char bytes[] = {1, 2, 3};
    filter.write(bytes, 3);
    filter.write(static_cast<signed char>(-7));
    filter.write("ab", 2);
    filter.flush();
    filter.close();
    EXPECT_EQ(out->calls, (Calls{"block 3", "byte -7", "block 2", "flush", "close"}));
    EXPECT_EQ(out->GetRefCount(), 2U);
}

TEST(FilterOutputStreamTest, FailsOnFirstUseWithNothingToWrap) {
    io::FilterOutputStream filter(nullptr);
    EXPECT_THROW(filter.write("a", 1), IllegalStateException);
    EXPECT_THROW(filter.write(static_cast<signed char>(1)), IllegalStateException);
    EXPECT_THROW(filter.flush(), IllegalStateException);
    EXPECT_THROW(filter.close(), IllegalStateException);
}

class CalledReader : public io::Reader {
public:
    std::int32_t read(char16_t*, std::int32_t length) override {
        return called("block " + std::to_string(length), 11);
    }
    int read() override { return called("unit", 12); }
    std::int32_t skip(std::int32_t count) override {
        return called("skip " + std::to_string(count), 13);
    }
    std::int32_t available() override { return called("available", 14); }
    void close() override { called("close", 0); }
    bool markSupported() override { return called("markSupported", 1) != 0; }
    void mark(std::int32_t limit) override { called("mark " + std::to_string(limit), 0); }
    void reset() override { called("reset", 0); }

    Calls calls;

private:
    int called(const std::string& name, int answer) {
        calls.push_back(name);
        return answer;
    }
};

TEST(FilterReaderTest, HandsEveryOperationOn) {
    const Reference<CalledReader> in = make<CalledReader>();
    io::FilterReader filter(in);
    char16_t units[5];
    EXPECT_EQ(filter.read(units, 5), 11);
    EXPECT_EQ(filter.read(), 12);
    EXPECT_EQ(filter.skip(3), 13);
    EXPECT_EQ(filter.available(), 14);
    EXPECT_TRUE(filter.markSupported());
    filter.mark(7);
    filter.reset();
    filter.close();
    EXPECT_EQ(in->calls, (Calls{"block 5", "unit", "skip 3", "available", "markSupported", "mark 7",
                                "reset", "close"}));
    EXPECT_EQ(in->GetRefCount(), 2U);
}

TEST(FilterReaderTest, FailsOnFirstUseWithNothingToWrap) {
    io::FilterReader filter(nullptr);
    char16_t unit;
    EXPECT_THROW(filter.read(&unit, 1), IllegalStateException);
    EXPECT_THROW(filter.read(), IllegalStateException);
    EXPECT_THROW(filter.skip(1), IllegalStateException);
    EXPECT_THROW(filter.available(), IllegalStateException);
    EXPECT_THROW(filter.markSupported(), IllegalStateException);
    EXPECT_THROW(filter.mark(1), IllegalStateException);
    EXPECT_THROW(filter.reset(), IllegalStateException);
    EXPECT_THROW(filter.close(), IllegalStateException);
}

class CalledWriter : public io::Writer {
public:
    void write(const String& text) override {
        calls.push_back("string " + std::to_string(text.getLength()));
    }
    void write(const char16_t*) override { calls.push_back("text"); }
    void write(const char16_t*, std::int32_t length) override {
        calls.push_back("block " + std::to_string(length));
    }
    void write(char16_t unit) override { calls.push_back("unit " + std::to_string(unit)); }
    void flush() override { calls.push_back("flush"); }
    void close() override { calls.push_back("close"); }

    Calls calls;
};

TEST(FilterWriterTest, HandsEveryOperationOn) {
    const Reference<CalledWriter> out = make<CalledWriter>();
    io::FilterWriter filter(out);
    filter.write(String(u"abcd"));
    filter.write(u"abc");
    filter.write(u"abc", 2);
    filter.write(u'A');
    filter.flush();
    filter.close();
    EXPECT_EQ(out->calls, (Calls{"string 4", "text", "block 2", "unit 65", "flush", "close"}));
    EXPECT_EQ(out->GetRefCount(), 2U);
}

TEST(FilterWriterTest, FailsOnFirstUseWithNothingToWrap) {
    io::FilterWriter filter(nullptr);
    EXPECT_THROW(filter.write(String(u"a")), IllegalStateException);
    EXPECT_THROW(filter.write(u"a"), IllegalStateException);
    EXPECT_THROW(filter.write(u"a", 1), IllegalStateException);
    EXPECT_THROW(filter.write(u'a'), IllegalStateException);
    EXPECT_THROW(filter.flush(), IllegalStateException);
    EXPECT_THROW(filter.close(), IllegalStateException);
}

} // namespace
