// Data, bit and AlphaNum streams and the byte buffer over memory, beside Qt's and POCO's streams of
// the same kind where they are at hand.

#include "qv/Reference.h"
#include "qv/io/AlphaNumInputStream.h"
#include "qv/io/AlphaNumOutputStream.h"
#include "qv/io/BitInputStream.h"
#include "qv/io/BitOutputStream.h"
#include "qv/io/BufferedInputStream.h"
#include "qv/io/BufferedOutputStream.h"
#include "qv/io/ByteArrayInputStream.h"
#include "qv/io/ByteArrayOutputStream.h"
#include "qv/io/ByteBufferInputStream.h"
#include "qv/io/ByteBufferOutputStream.h"
#include "qv/io/DataInputStream.h"
#include "qv/io/DataOutputStream.h"
#include "qv/io/NullOutputStream.h"

#include <benchmark/benchmark.h>
#include <string>
#include <vector>

#if __has_include(<QDataStream>)
#    define BENCH_QT 1
#    include <QBuffer>
#    include <QDataStream>
#endif
#if __has_include(<Poco/BinaryWriter.h>)
#    define BENCH_POCO 1
#    include <Poco/Base32Decoder.h>
#    include <Poco/Base32Encoder.h>
#    include <Poco/BinaryReader.h>
#    include <Poco/BinaryWriter.h>
#    include <Poco/MemoryStream.h>
#endif

namespace {

using namespace qv;
using benchmark::DoNotOptimize;

constexpr int numbers = 16384;
constexpr int size = numbers * 4; // bytes

using Bytes = std::vector<signed char>;

const Bytes& sample() {
    static const Bytes bytes = [] {
        Bytes made(size);
        for (std::size_t i = 0; i < made.size(); ++i) {
            made[i] = static_cast<signed char>(i * 7 % 251);
        }
        return made;
    }();
    return bytes;
}

void countBytes(benchmark::State& state, int bytes = size) {
    state.SetBytesProcessed(state.iterations() * bytes);
}

// --- Numbers of four bytes ---

void writeArray(benchmark::State& state) {
    const auto array = make<io::ByteArrayOutputStream>(size);
    io::DataOutputStream out(array);
    for (auto _ : state) {
        array->reset();
        for (int i = 0; i < numbers; ++i) {
            out.writeInt32(i);
        }
    }
    countBytes(state);
}
BENCHMARK(writeArray)->Name("write_int32/qv_ByteArray");

void writeByteBuffer(benchmark::State& state) {
    const auto buffer = make<io::ByteBuffer>(size, QV_ENDIAN_BIG, false);
    io::DataOutputStream out(make<io::ByteBufferOutputStream>(buffer));
    for (auto _ : state) {
        buffer->clear();
        for (int i = 0; i < numbers; ++i) {
            out.writeInt32(i);
        }
    }
    countBytes(state);
}
BENCHMARK(writeByteBuffer)->Name("write_int32/qv_ByteBuffer");

void writeBuffered(benchmark::State& state) {
    io::DataOutputStream out(make<io::BufferedOutputStream>(make<io::NullOutputStream>()));
    for (auto _ : state) {
        for (int i = 0; i < numbers; ++i) {
            out.writeInt32(i);
        }
    }
    countBytes(state);
}
BENCHMARK(writeBuffered)->Name("write_int32/qv_Buffered");

void readArray(benchmark::State& state) {
    for (auto _ : state) {
        io::DataInputStream in(make<io::ByteArrayInputStream>(sample().data(), size));
        for (int i = 0; i < numbers; ++i) {
            DoNotOptimize(in.readInt32());
        }
    }
    countBytes(state);
}
BENCHMARK(readArray)->Name("read_int32/qv_ByteArray");

void readByteBuffer(benchmark::State& state) {
    const auto buffer = make<io::ByteBuffer>(sample().data(), unsigned{size}, QV_ENDIAN_BIG);
    io::DataInputStream in(make<io::ByteBufferInputStream>(buffer));
    for (auto _ : state) {
        buffer->rewind();
        for (int i = 0; i < numbers; ++i) {
            DoNotOptimize(in.readInt32());
        }
    }
    countBytes(state);
}
BENCHMARK(readByteBuffer)->Name("read_int32/qv_ByteBuffer");

void writeDoubles(benchmark::State& state) {
    const auto array = make<io::ByteArrayOutputStream>(size);
    io::DataOutputStream out(array);
    for (auto _ : state) {
        array->reset();
        for (int i = 0; i < numbers / 2; ++i) {
            out.writeDouble(i);
        }
    }
    countBytes(state);
}
BENCHMARK(writeDoubles)->Name("write_double/qv_ByteArray");

#ifdef BENCH_QT

void writeQt(benchmark::State& state) {
    QByteArray array;
    array.reserve(size);
    QBuffer buffer(&array);
    buffer.open(QIODevice::WriteOnly);
    QDataStream out(&buffer);
    for (auto _ : state) {
        buffer.seek(0);
        for (int i = 0; i < numbers; ++i) {
            out << static_cast<qint32>(i);
        }
    }
    countBytes(state);
}
BENCHMARK(writeQt)->Name("write_int32/Qt");

void readQt(benchmark::State& state) {
    QBuffer buffer;
    buffer.setData(reinterpret_cast<const char*>(sample().data()), size);
    buffer.open(QIODevice::ReadOnly);
    QDataStream in(&buffer);
    for (auto _ : state) {
        buffer.seek(0);
        for (int i = 0; i < numbers; ++i) {
            qint32 number = 0;
            in >> number;
            DoNotOptimize(number);
        }
    }
    countBytes(state);
}
BENCHMARK(readQt)->Name("read_int32/Qt");

void writeDoublesQt(benchmark::State& state) {
    QByteArray array;
    array.reserve(size);
    QBuffer buffer(&array);
    buffer.open(QIODevice::WriteOnly);
    QDataStream out(&buffer);
    for (auto _ : state) {
        buffer.seek(0);
        for (int i = 0; i < numbers / 2; ++i) {
            out << static_cast<double>(i);
        }
    }
    countBytes(state);
}
BENCHMARK(writeDoublesQt)->Name("write_double/Qt");

#endif

#ifdef BENCH_POCO

using Poco::BinaryReader;
using Poco::BinaryWriter;

void writePoco(benchmark::State& state) {
    std::string memory(size, 0);
    for (auto _ : state) {
        Poco::MemoryOutputStream stream(memory.data(), size);
        BinaryWriter out(stream, BinaryWriter::NETWORK_BYTE_ORDER);
        for (int i = 0; i < numbers; ++i) {
            out << static_cast<Poco::Int32>(i);
        }
    }
    countBytes(state);
}
BENCHMARK(writePoco)->Name("write_int32/POCO");

void readPoco(benchmark::State& state) {
    for (auto _ : state) {
        Poco::MemoryInputStream stream(reinterpret_cast<const char*>(sample().data()), size);
        BinaryReader in(stream, BinaryReader::NETWORK_BYTE_ORDER);
        for (int i = 0; i < numbers; ++i) {
            Poco::Int32 number = 0;
            in >> number;
            DoNotOptimize(number);
        }
    }
    countBytes(state);
}
BENCHMARK(readPoco)->Name("read_int32/POCO");

void writeDoublesPoco(benchmark::State& state) {
    std::string memory(size, 0);
    for (auto _ : state) {
        Poco::MemoryOutputStream stream(memory.data(), size);
        BinaryWriter out(stream, BinaryWriter::NETWORK_BYTE_ORDER);
        for (int i = 0; i < numbers / 2; ++i) {
            out << static_cast<double>(i);
        }
    }
    countBytes(state);
}
BENCHMARK(writeDoublesPoco)->Name("write_double/POCO");

#endif

// --- Bit fields; no peer has them ---

void writeBits(benchmark::State& state) {
    const auto array = make<io::ByteArrayOutputStream>(size);
    io::BitOutputStream out(array);
    for (auto _ : state) {
        array->reset();
        for (unsigned i = 0; i < numbers; ++i) {
            out.write(i & 0x7FF, 11);
            out.write(i & 0x1FFFFF, 21);
        }
    }
    countBytes(state);
}
BENCHMARK(writeBits)->Name("write_bits/qv_ByteArray");

void readBits(benchmark::State& state) {
    for (auto _ : state) {
        io::BitInputStream in(make<io::ByteArrayInputStream>(sample().data(), size));
        for (int i = 0; i < numbers; ++i) {
            DoNotOptimize(in.read(11));
            DoNotOptimize(in.read(21));
        }
    }
    countBytes(state);
}
BENCHMARK(readBits)->Name("read_bits/qv_ByteArray");

// --- Bytes as text of 32 letters ---

Bytes lettersOfSample() {
    const auto array = make<io::ByteArrayOutputStream>();
    io::AlphaNumOutputStream out(array);
    out.write(sample().data(), size);
    out.flush();
    Bytes letters(size * 2);
    letters.resize(static_cast<std::size_t>(array->getBytes(letters.data(), size * 2)));
    return letters;
}

void encodeArray(benchmark::State& state) {
    const auto array = make<io::ByteArrayOutputStream>(size * 2);
    io::AlphaNumOutputStream out(array);
    for (auto _ : state) {
        array->reset();
        out.write(sample().data(), size);
        out.flush();
    }
    countBytes(state);
}
BENCHMARK(encodeArray)->Name("encode32/qv_ByteArray");

void encodeBuffered(benchmark::State& state) {
    io::AlphaNumOutputStream out(make<io::BufferedOutputStream>(make<io::NullOutputStream>()));
    for (auto _ : state) {
        out.write(sample().data(), size);
        out.flush();
    }
    countBytes(state);
}
BENCHMARK(encodeBuffered)->Name("encode32/qv_Buffered");

Reference<io::InputStream> arrayOver(const Bytes& bytes) {
    return make<io::ByteArrayInputStream>(bytes.data(), static_cast<std::int32_t>(bytes.size()));
}

Reference<io::InputStream> bufferedOver(const Bytes& bytes) {
    return make<io::BufferedInputStream>(arrayOver(bytes));
}

Reference<io::InputStream> byteBufferOver(const Bytes& bytes) {
    return make<io::ByteBufferInputStream>(
        make<io::ByteBuffer>(bytes.data(), static_cast<unsigned>(bytes.size()), QV_ENDIAN_BIG));
}

template <Reference<io::InputStream> (*over)(const Bytes&)>
void decode(benchmark::State& state) {
    const Bytes letters = lettersOfSample();
    Bytes bytes(size);
    for (auto _ : state) {
        io::AlphaNumInputStream in(over(letters));
        DoNotOptimize(in.read(bytes.data(), size));
    }
    countBytes(state);
}
BENCHMARK(decode<arrayOver>)->Name("decode32/qv_ByteArray");
BENCHMARK(decode<byteBufferOver>)->Name("decode32/qv_ByteBuffer");
BENCHMARK(decode<bufferedOver>)->Name("decode32/qv_Buffered");

#ifdef BENCH_POCO

void encodePoco(benchmark::State& state) {
    std::string memory(size * 2, 0);
    for (auto _ : state) {
        Poco::MemoryOutputStream stream(memory.data(), size * 2);
        Poco::Base32Encoder out(stream, false);
        out.write(reinterpret_cast<const char*>(sample().data()), size);
        out.close();
    }
    countBytes(state);
}
BENCHMARK(encodePoco)->Name("encode32/POCO");

void decodePoco(benchmark::State& state) {
    std::string letters(size * 2, 0);
    Poco::MemoryOutputStream stream(letters.data(), size * 2);
    Poco::Base32Encoder encoder(stream, true);
    encoder.write(reinterpret_cast<const char*>(sample().data()), size);
    encoder.close();
    Bytes bytes(size);
    for (auto _ : state) {
        Poco::MemoryInputStream text(letters.data(), stream.charsWritten());
        Poco::Base32Decoder in(text);
        in.read(reinterpret_cast<char*>(bytes.data()), size);
        DoNotOptimize(bytes.data());
    }
    countBytes(state);
}
BENCHMARK(decodePoco)->Name("decode32/POCO");

#endif

// --- The byte buffer, beside plain memory behind a pointer and a position ---

/// What is measured against: memcpy and a swap of bytes.
class Plain {
public:
    void rewind() { position_ = 0; }
    void put(unsigned at, std::int32_t number) {
        const std::uint32_t swapped = __builtin_bswap32(static_cast<std::uint32_t>(number));
        std::memcpy(data_ + at, &swapped, 4);
    }
    void put(std::int32_t number) {
        put(position_, number);
        position_ += 4;
    }
    std::int32_t get(unsigned at) {
        std::uint32_t number = 0;
        std::memcpy(&number, data_ + at, 4);
        return static_cast<std::int32_t>(__builtin_bswap32(number));
    }
    std::int32_t get() {
        position_ += 4;
        return get(position_ - 4);
    }

private:
    Bytes memory_ = Bytes(size);
    signed char* data_ = memory_.data();
    unsigned position_ = 0;
};

class Buffer {
public:
    void rewind() { bytes_.rewind(); }
    void put(unsigned at, std::int32_t number) { bytes_.putInt32(at, number); }
    void put(std::int32_t number) { bytes_.putInt32(number); }
    std::int32_t get(unsigned at) { return bytes_.getInt32(at); }
    std::int32_t get() { return bytes_.getInt32(); }

private:
    io::ByteBuffer bytes_{size, QV_ENDIAN_BIG, false};
};

/// Measures a pass over all numbers of a memory.
template <class Memory, class Pass>
void measurePass(benchmark::State& state, Pass pass) {
    Memory memory;
    DoNotOptimize(&memory);
    for (auto _ : state) {
        pass(memory);
        benchmark::ClobberMemory();
    }
    countBytes(state);
}

template <class Memory>
void putNext(benchmark::State& state) {
    measurePass<Memory>(state, [](Memory& memory) {
        memory.rewind();
        for (int i = 0; i < numbers; ++i) {
            memory.put(i);
        }
    });
}
BENCHMARK(putNext<Buffer>)->Name("put_int32/qv");
BENCHMARK(putNext<Plain>)->Name("put_int32/plain");

template <class Memory>
void putAt(benchmark::State& state) {
    measurePass<Memory>(state, [](Memory& memory) {
        for (int i = 0; i < numbers; ++i) {
            memory.put(static_cast<unsigned>(i) * 4, i);
        }
    });
}
BENCHMARK(putAt<Buffer>)->Name("put_int32_at/qv");
BENCHMARK(putAt<Plain>)->Name("put_int32_at/plain");

template <class Memory>
void getNext(benchmark::State& state) {
    measurePass<Memory>(state, [](Memory& memory) {
        std::int32_t all = 0;
        memory.rewind();
        for (int i = 0; i < numbers; ++i) {
            all ^= memory.get();
        }
        DoNotOptimize(all);
    });
}
BENCHMARK(getNext<Buffer>)->Name("get_int32/qv");
BENCHMARK(getNext<Plain>)->Name("get_int32/plain");

template <class Memory>
void getAt(benchmark::State& state) {
    measurePass<Memory>(state, [](Memory& memory) {
        std::int32_t all = 0;
        for (unsigned i = 0; i < size; i += 4) {
            all ^= memory.get(i);
        }
        DoNotOptimize(all);
    });
}
BENCHMARK(getAt<Buffer>)->Name("get_int32_at/qv");
BENCHMARK(getAt<Plain>)->Name("get_int32_at/plain");

} // namespace
