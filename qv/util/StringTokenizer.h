#pragma once

#include "qv/String.h"

namespace qv::util {

/// Splits a text at delimiters, each of them one unit.
///
/// A run of delimiters separates once: there are no empty tokens. With delimiters asked for, each
/// of them is a token of one unit. The position stands on the delimiter behind a token, and the
/// next step passes it.
///
/// Thread safety: one thread at a time.
class QV_API StringTokenizer : public Object {
public:
    /// Null `delimiters` are blank, carriage return, line feed, tab and form feed. With no
    /// delimiters at all the text is one token.
    explicit StringTokenizer(const String& text, const char16_t* delimiters = nullptr,
                             bool returnDelimiters = false);
    ~StringTokenizer() noexcept override;

    bool hasMoreTokens();
    /// The next token. Delimiters that are given replace the set for good, and count from the
    /// position on.
    /// @throws Exception "No such element" behind the last one.
    String nextToken(const char16_t* delimiters = nullptr);
    /// The tokens still to come. The position does not move.
    int getTokenCount() const;

private:
    bool isDelimiter(char16_t unit) const noexcept;
    int skipDelims(int start) const;
    int scanToken(int start) const;

    String text_;
    String delimiters_;
    bool returnDelimiters_;
    std::int32_t position_ = 0;
    std::int32_t nextStart_ = -1; ///< -1 when not known
};

} // namespace qv::util
