#include "qv/io/PrintWriter.h"

#include "qv/String.h"

namespace qv::io {

namespace {

constexpr char16_t lineFeed = 10;

} // namespace

PrintWriter::PrintWriter(Writer* out, bool autoFlush) : FilterWriter(out), autoFlush_(autoFlush) {}

void PrintWriter::print(const String& text) { write(text); }

void PrintWriter::print(const char* text) {
    write(String(reinterpret_cast<const signed char*>(text), -1));
}

void PrintWriter::print(const char16_t* text) { write(text); }

void PrintWriter::print(double value) { write(String::valueOf(value)); }

void PrintWriter::print(float value) { write(String::valueOf(value)); }

void PrintWriter::print(long value) { write(String::valueOf(value)); }

void PrintWriter::print(int value) { write(String::valueOf(value)); }

void PrintWriter::print(char16_t unit) { write(unit); }

void PrintWriter::print(bool value) { write(String::valueOf(value)); }

void PrintWriter::println(const String& text) { printLine(text); }

void PrintWriter::println(const char* text) { printLine(text); }

void PrintWriter::println(const char16_t* text) { printLine(text); }

void PrintWriter::println(double value) { printLine(value); }

void PrintWriter::println(float value) { printLine(value); }

void PrintWriter::println(long value) { printLine(value); }

void PrintWriter::println(int value) { printLine(value); }

void PrintWriter::println(char16_t unit) { printLine(unit); }

void PrintWriter::println(bool value) { printLine(value); }

void PrintWriter::println() { newLine(); }

void PrintWriter::newLine() {
    write(lineFeed);
    if (autoFlush_) {
        flush();
    }
}

template <class Value>
void PrintWriter::printLine(const Value& value) {
    print(value);
    newLine();
}

} // namespace qv::io
