#pragma once

#include "qv/io/OutputStreamWriter.h"
#include "qv/io/PrintWriter.h"

namespace tool {

/// Text on standard output, in the default encoding. What is printed arrives with `finish`.
class Output {
public:
    Output();

    /// Prints the parts one behind the other, and ends the line.
    template <class... Parts>
    void line(const Parts&... parts) {
        (writer_->print(parts), ...);
        writer_->println();
    }
    /// `name=value`.
    void value(const char16_t* name, const qv::String& text) { line(name, u"=", text); }
    void finish() { writer_->flush(); }

private:
    qv::Reference<qv::io::PrintWriter> writer_;
};

} // namespace tool
