#pragma once

#include "qv/Exceptions.h"
#include "tests/support/Hex.h"
#include "tests/support/Streams.h"

#include <string>

/// A source and a sink that write down how they are called: "r" and "w" for one byte, "R" and "W"
/// for a block, "s" for a skip and "f" for a flush.
namespace support {

class CallsSource : public qv::io::InputStream {
public:
    explicit CallsSource(Bytes bytes) : bytes_(std::move(bytes)) {}

    using InputStream::read;
    std::int32_t read(signed char* destination, std::int32_t length) override {
        calls += 'R';
        std::int32_t count = 0;
        for (int byte = next(); count < length && byte >= 0; byte = next()) {
            destination[count++] = static_cast<signed char>(byte);
            ++at;
        }
        return count > 0 ? count : -1;
    }
    int read() override {
        calls += 'r';
        if (at == failsAt) {
            failsAt = -1;
            throw qv::io::IoException(u"the source failed");
        }
        const int byte = next();
        at += byte >= 0 ? 1 : 0;
        return byte;
    }
    std::int32_t skip(std::int32_t count) override {
        calls += 's';
        return InputStream::skip(count);
    }
    std::int32_t available() override { return availableBytes; }

    std::string calls;
    int at = 0;
    /// The place before which one byte cannot be read, once.
    int failsAt = -1;
    std::int32_t availableBytes = 0;

private:
    int next() const {
        const auto place = static_cast<std::size_t>(at);
        return place < bytes_.size() ? static_cast<unsigned char>(bytes_[place]) : -1;
    }

    Bytes bytes_;
};

class CallsSink : public qv::io::OutputStream {
public:
    using OutputStream::write;
    void write(const signed char* block, std::int32_t length) override {
        calls += 'W';
        bytes.insert(bytes.end(), block, block + length);
    }
    void write(signed char byte) override {
        calls += 'w';
        if (static_cast<int>(bytes.size()) == failsAt) {
            failsAt = -1;
            throw qv::io::IoException(u"the sink failed");
        }
        bytes.push_back(byte);
    }
    void flush() override {
        calls += 'f';
        if (failsToFlush) {
            failsToFlush = false;
            throw qv::io::IoException(u"the sink failed");
        }
    }
    void close() override { ++closes; }

    std::string calls;
    Bytes bytes;
    int closes = 0;
    /// The place at which one byte cannot be written, once.
    int failsAt = -1;
    bool failsToFlush = false;
};

} // namespace support
