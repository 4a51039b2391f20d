#pragma once

#include "qv/String.h"

namespace qv {

/// Root of the library's exceptions: an object, thrown by value and caught by reference.
///
/// The message is read with `getDescription`; `toString` gives the class name, not the message.
/// A copy has an object part of its own and shares the description's characters.
class QV_API Exception : public Object {
public:
    /// The description stays empty.
    Exception();
    /// Shares the characters of `description`.
    Exception(const String& description);
    Exception(const Exception& other);
    Exception& operator=(const Exception& other);
    ~Exception() noexcept override;

    // Slot order is contract from here on.

    /// The message; empty unless a constructor gave one.
    virtual String getDescription() const;
    /// The result that this exception becomes on a component face: QV_E_FAIL unless a class says
    /// more.
    virtual std::int32_t getResult() const;

private:
    String description_;
};

/// A result on its way through native code.
class QV_API ResultException : public Exception {
public:
    /// Carries QV_E_FAIL.
    ResultException();
    /// Carries `result`, without a description.
    explicit ResultException(std::int32_t result);
    ResultException(std::int32_t result, const String& description);

    /// The result that it was made with.
    std::int32_t getResult() const override;

private:
    std::int32_t result_;
};

} // namespace qv
