// Text and bytes through streams: the library's chains, and those of Qt where it is at hand.

#include "qv/Reference.h"
#include "qv/String.h"
#include "qv/io/BufferedInputStream.h"
#include "qv/io/BufferedOutputStream.h"
#include "qv/io/BufferedReader.h"
#include "qv/io/BufferedWriter.h"
#include "qv/io/ByteArrayInputStream.h"
#include "qv/io/ByteArrayOutputStream.h"
#include "qv/io/FileInputStream.h"
#include "qv/io/FileOutputStream.h"
#include "qv/io/InputStreamReader.h"
#include "qv/io/OutputStreamWriter.h"
#include "qv/io/PrintWriter.h"

#include <benchmark/benchmark.h>
#include <filesystem>
#include <fstream>
#include <string>

#if __has_include(<QTextStream>)
#    define BENCH_QT 1
#    include <QBuffer>
#    include <QFile>
#    include <QTextStream>
#endif

namespace {

using namespace qv;

constexpr int lineCount = 100000;

/// A text that a benchmark reads: its bytes, and a file that holds them for the length of the
/// program.
class Sample {
public:
    Sample(const char* name, const std::string& line)
        : path_(std::filesystem::temp_directory_path() / name), line_(line) {
        for (int i = 0; i < lineCount; ++i) {
            bytes_ += line.substr(0, line.size() - static_cast<std::size_t>(i) % 8 * 2) + '\n';
        }
        std::ofstream(path_, std::ios::binary) << bytes_;
    }
    Sample(const Sample&) = delete;
    Sample& operator=(const Sample&) = delete;
    ~Sample() {
        std::error_code ignored;
        std::filesystem::remove(path_, ignored);
    }

    const std::string& bytes() const { return bytes_; }
    const std::string& line() const { return line_; }
    std::u16string path() const { return path_.u16string(); }
    /// The path of a file that a benchmark writes.
    std::u16string outputPath() const { return path_.u16string() + u".out"; }

private:
    std::filesystem::path path_;
    std::string line_;
    std::string bytes_;
};

const Sample& ascii() {
    static const Sample sample(
        "qvcl-bench-ascii.txt",
        "2024-02-29 12:00:00 INFO the quick brown fox jumps over the lazy dog");
    return sample;
}

const Sample& mixed() {
    // Two-byte characters, so that the cut lines stay whole.
    static const Sample sample("qvcl-bench-mixed.txt",
                               "2024-02-29 ab "
                               "\xC3\xA4\xC3\xB6\xC3\xBC\xC3\x9F\xC3\xA4\xC3\xB6\xC3\xBC\xC3\x9F"
                               "\xC3\xA4\xC3\xB6\xC3\xBC\xC3\x9F\xC3\xA4\xC3\xB6\xC3\xBC\xC3\x9F");
    return sample;
}

void countBytes(benchmark::State& state, const Sample& sample) {
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(sample.bytes().size()));
}

const signed char* bytesOf(const Sample& sample) {
    return reinterpret_cast<const signed char*>(sample.bytes().data());
}

std::int32_t sizeOf(const Sample& sample) {
    return static_cast<std::int32_t>(sample.bytes().size());
}

template <const Sample& (*sample)()>
void readLinesQv(benchmark::State& state) {
    const String path(sample().path().c_str());
    for (auto _ : state) {
        io::BufferedReader in(
            make<io::InputStreamReader>(make<io::FileInputStream>(path), u"UTF-8"));
        String line;
        std::int64_t units = 0;
        for (std::int32_t length = in.readLine(line); length >= 0; length = in.readLine(line)) {
            units += length;
        }
        benchmark::DoNotOptimize(units);
    }
    countBytes(state, sample());
}
BENCHMARK(readLinesQv<ascii>);
BENCHMARK(readLinesQv<mixed>);

template <const Sample& (*sample)()>
void writeLinesQv(benchmark::State& state) {
    const String path(sample().outputPath().c_str());
    const std::string& bytes = sample().line();
    const String line(reinterpret_cast<const signed char*>(bytes.data()),
                      static_cast<int>(bytes.size()), u"UTF-8");
    for (auto _ : state) {
        const auto file = make<io::FileOutputStream>(path, false);
        io::PrintWriter out(make<io::BufferedWriter>(make<io::OutputStreamWriter>(file, u"UTF-8")));
        for (int i = 0; i < lineCount; ++i) {
            out.println(line);
        }
        out.flush();
        out.close();
    }
    std::filesystem::remove(sample().outputPath());
    state.SetBytesProcessed(state.iterations() * lineCount *
                            static_cast<std::int64_t>(sample().line().size() + 1));
}
BENCHMARK(writeLinesQv<ascii>);
BENCHMARK(writeLinesQv<mixed>);

void writeNumbersQv(benchmark::State& state) {
    for (auto _ : state) {
        const auto bytes = make<io::ByteArrayOutputStream>();
        io::PrintWriter out(
            make<io::BufferedWriter>(make<io::OutputStreamWriter>(bytes, u"UTF-8")));
        for (int i = 0; i < lineCount; ++i) {
            out.println(i);
        }
        out.flush();
    }
    state.SetItemsProcessed(state.iterations() * lineCount);
}
BENCHMARK(writeNumbersQv);

void readBytesQv(benchmark::State& state) {
    for (auto _ : state) {
        io::BufferedInputStream in(
            make<io::ByteArrayInputStream>(bytesOf(ascii()), sizeOf(ascii())));
        std::int64_t sum = 0;
        for (int byte = in.read(); byte >= 0; byte = in.read()) {
            sum += byte;
        }
        benchmark::DoNotOptimize(sum);
    }
    countBytes(state, ascii());
}
BENCHMARK(readBytesQv);

void writeBytesQv(benchmark::State& state) {
    for (auto _ : state) {
        const auto bytes = make<io::ByteArrayOutputStream>();
        io::BufferedOutputStream out(bytes);
        for (const char byte : ascii().bytes()) {
            out.write(static_cast<signed char>(byte));
        }
        out.flush();
    }
    countBytes(state, ascii());
}
BENCHMARK(writeBytesQv);

void writeBlocksQv(benchmark::State& state) {
    for (auto _ : state) {
        io::ByteArrayOutputStream out;
        for (std::int32_t i = 0; i + 16 <= sizeOf(ascii()); i += 16) {
            out.write(bytesOf(ascii()) + i, 16);
        }
    }
    countBytes(state, ascii());
}
BENCHMARK(writeBlocksQv);

#ifdef BENCH_QT

template <const Sample& (*sample)()>
void readLinesQt(benchmark::State& state) {
    const QString path = QString::fromStdU16String(sample().path());
    for (auto _ : state) {
        QFile file(path);
        file.open(QIODevice::ReadOnly);
        QTextStream in(&file);
#    if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
        in.setCodec("UTF-8");
#    endif
        QString line;
        std::int64_t units = 0;
        while (in.readLineInto(&line)) {
            units += line.size();
        }
        benchmark::DoNotOptimize(units);
    }
    countBytes(state, sample());
}
BENCHMARK(readLinesQt<ascii>);
BENCHMARK(readLinesQt<mixed>);

template <const Sample& (*sample)()>
void writeLinesQt(benchmark::State& state) {
    const QString path = QString::fromStdU16String(sample().outputPath());
    const QString line = QString::fromStdString(sample().line());
    for (auto _ : state) {
        QFile file(path);
        file.open(QIODevice::WriteOnly | QIODevice::Truncate);
        QTextStream out(&file);
#    if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
        out.setCodec("UTF-8");
#    endif
        for (int i = 0; i < lineCount; ++i) {
            out << line << '\n';
        }
        out.flush();
        file.close();
    }
    QFile::remove(path);
    state.SetBytesProcessed(state.iterations() * lineCount *
                            static_cast<std::int64_t>(sample().line().size() + 1));
}
BENCHMARK(writeLinesQt<ascii>);
BENCHMARK(writeLinesQt<mixed>);

void writeNumbersQt(benchmark::State& state) {
    for (auto _ : state) {
        QBuffer bytes;
        bytes.open(QIODevice::WriteOnly);
        QTextStream out(&bytes);
        for (int i = 0; i < lineCount; ++i) {
            out << i << '\n';
        }
        out.flush();
    }
    state.SetItemsProcessed(state.iterations() * lineCount);
}
BENCHMARK(writeNumbersQt);

void readBytesQt(benchmark::State& state) {
    QByteArray bytes(ascii().bytes().data(), sizeOf(ascii()));
    for (auto _ : state) {
        QBuffer in(&bytes);
        in.open(QIODevice::ReadOnly);
        std::int64_t sum = 0;
        for (char byte = 0; in.getChar(&byte);) {
            sum += byte;
        }
        benchmark::DoNotOptimize(sum);
    }
    countBytes(state, ascii());
}
BENCHMARK(readBytesQt);

void writeBytesQt(benchmark::State& state) {
    for (auto _ : state) {
        QBuffer out;
        out.open(QIODevice::WriteOnly);
        for (const char byte : ascii().bytes()) {
            out.putChar(byte);
        }
    }
    countBytes(state, ascii());
}
BENCHMARK(writeBytesQt);

void writeBlocksQt(benchmark::State& state) {
    for (auto _ : state) {
        QBuffer out;
        out.open(QIODevice::WriteOnly);
        for (std::int32_t i = 0; i + 16 <= sizeOf(ascii()); i += 16) {
            out.write(ascii().bytes().data() + i, 16);
        }
    }
    countBytes(state, ascii());
}
BENCHMARK(writeBlocksQt);

#endif

} // namespace
