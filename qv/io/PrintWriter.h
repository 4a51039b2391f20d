#pragma once

#include "qv/io/FilterWriter.h"

namespace qv::io {

/// Writes values as text. A line ends with the single unit 10 on every system.
///
/// Only `println` flushes, and only where that was asked for; neither `print`, `close` nor the
/// destructor does.
class QV_API PrintWriter : public FilterWriter {
public:
    /// Owns: one reference to `out`. With `autoFlush` every `println` ends with a `flush`.
    explicit PrintWriter(Writer* out, bool autoFlush = false);

    // Slot order is contract from here on.

    virtual void print(const String& text);
    /// Decodes a 0-terminated text with the default encoding.
    virtual void print(const char* text);
    virtual void print(const char16_t* text);
    /// Numbers and truth values have the text of String::valueOf.
    virtual void print(double value);
    virtual void print(float value);
    virtual void print(long value);
    virtual void print(int value);
    virtual void print(char16_t unit);
    virtual void print(bool value);
    virtual void println(const String& text);
    virtual void println(const char* text);
    virtual void println(const char16_t* text);
    virtual void println(double value);
    virtual void println(float value);
    virtual void println(long value);
    virtual void println(int value);
    virtual void println(char16_t unit);
    virtual void println(bool value);
    virtual void println();

protected:
    void newLine();

private:
    template <class Value>
    void printLine(const Value& value);

    bool autoFlush_;
};

} // namespace qv::io
