#pragma once

#include "qv/String.h"

#include <cstdint>

namespace qv::util {

/// Cleans a path text without touching the file system: takes `.` and `..` parts and doubled
/// separators out, and turns all separators into one kind.
///
/// A state machine over the units of the text. Separators are written when something follows them.
/// Kept: a leading separator goes when a `..` reaches it (`/a/../b` gives `b`).
///
/// Thread safety: one thread at a time.
class QV_API PathNormalizer : public Object {
public:
    /// Which separator the result has.
    enum SLASH_TYPE {
        SLASH_NATIVE = 0,  ///< the library's own, a backslash on every system
        SLASH_FORWARD = 1, ///< a slash
        SLASH_BACK = 2     ///< a backslash
    };

    /// @throws Exception "Invalid slash type specified." for any other value, as `setSlashType`.
    explicit PathNormalizer(SLASH_TYPE type = SLASH_NATIVE);
    ~PathNormalizer() noexcept override = default;

    /// Counts from the next `normalize` on.
    void setSlashType(SLASH_TYPE type);
    /// The cleaned text. @throws std::bad_alloc.
    String normalize(const String& text);

private:
    enum STATE : std::uint8_t {
        STATE_START,              // nothing yet, or everything popped
        STATE_NAME,               // inside a component: units are copied
        STATE_SLASH,              // after a separator that is not written yet
        STATE_SLASH_DOT,          // after a separator and `.`
        STATE_SLASH_DOT_DOT,      // after a separator and `..`
        STATE_LEAD_DOT,           // a `.` at the head of a part
        STATE_LEAD_DOT_SLASH,     // a leading `.` and a separator
        STATE_LEAD_DOT_DOT,       // `..` at the head
        STATE_LEAD_DOT_DOT_SLASH, // leading `..` and a separator
        STATE_END                 // the terminator was read
    };

    STATE nextState() const;
    void transition(STATE next);
    void write(char16_t unit) { output_[outputLength_++] = unit; }
    STATE pop();
    void cut();
    void finishLeadDot();

    char16_t slash_ = u'\\';
    STATE state_ = STATE_START;
    const char16_t* input_ = nullptr;
    char16_t* output_ = nullptr;
    int outputLength_ = 0;
    int inputIndex_ = 0;
    int inputLength_ = 0;
};

} // namespace qv::util
