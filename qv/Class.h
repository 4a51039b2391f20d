#pragma once

#include "qv/Object.h"

#include <typeinfo>

namespace qv {

class ClassManagerBase;

/// The run-time record of a class: its registered name, its language type and, where instances can
/// be made from the name alone, its factory.
///
/// Records are made by the class manager and live until the library ends.
/// Thread safety: immutable.
class QV_API Class : public Object {
public:
    /// Makes a new object with its count at 0, or gives null where memory ran out.
    using Factory = Object* (*)();

    Class(const Class&) = delete;
    Class& operator=(const Class&) = delete;

    // Slot order is contract from here on.

    /// The registered name, 0-terminated. Borrows: it lies in static storage.
    virtual const char16_t* getName() const;
    /// True only for the very type of the record: an instance of a subclass is none of this class.
    virtual bool isInstance(const Object& object) const;
    /// Owns: the caller, the new object with its count at 0.
    /// @throws IllegalAccessException for a class without a factory.
    virtual Object* createInstance() const;

    // Slot order ends here.

    /// True if `createInstance` can make instances.
    bool hasFactory() const noexcept { return factory_ != nullptr; }

    /// The record of a name; upper and lower case differ.
    /// @throws ClassNotFoundException with the name.
    static const Class* forName(const char16_t* name);
    /// The record of a type.
    /// @throws ClassNotFoundException with the type's printable name.
    static const Class* forType(const std::type_info* type);

private:
    friend class ClassManagerBase;

    Class(const char16_t* name, const std::type_info* type, Factory factory) noexcept;
    ~Class() override;

    const char16_t* name_;
    const std::type_info* type_;
    Factory factory_;
};

} // namespace qv
