#pragma once

#include "qv/ComObject.h"
#include "qv/IQVComparable.h"

namespace qv {

class Class;
class String;

class Object;

namespace detail {

/// The component face of the object methods: it calls the native twin of the object that it is part
/// of. A class of its own, so that the object's primary table holds the native methods alone.
class QV_API ComparableFace : public IQVComparable {
public:
    std::int32_t CompareTo(const IQVUnknown* other, std::int32_t* result) const noexcept override;
    std::int32_t HashCode(std::uint32_t* result) const noexcept override;

protected:
    ~ComparableFace() = default;

private:
    const Object& whole() const noexcept;
};

} // namespace detail

/// Root of all classes that answer the object methods, and the first interface.
///
/// Two faces: native members start with a small letter and throw; component members start with a
/// capital, return a result and let no exception out.
///
/// Thread safety: as ComObject; the object methods are const-safe here.
class QV_API Object : public ComObject, public detail::ComparableFace {
public:
    Object() noexcept = default;
    Object(const Object&) noexcept = default;
    Object& operator=(const Object&) noexcept = default;

    std::int32_t QueryInterface(const GUID& iid, void** out) noexcept override;
    std::uint32_t AddRef() const noexcept override { return ComObject::AddRef(); }
    std::uint32_t Release() const noexcept override { return ComObject::Release(); }
    ~Object() noexcept(false) override {}

    // Slot order is contract from here on.

    /// States that a class can be cloned, by overriding it.
    /// @throws Exception, with an empty description, where it is not overridden.
    virtual void clone() const;
    /// Order of addresses, unless a class has a better one: 1, -1, or 0 for the same object.
    virtual int compareTo(const Object& other) const;
    /// True only for the same object, unless a class has a better meaning.
    virtual bool equals(const Object& other) const;
    /// The record of the object's dynamic type. Borrows: records live as long as the library.
    /// @throws ClassNotFoundException, with the type's printable name, for a type that has no
    /// record.
    virtual const Class* getClass() const;
    /// The low 32 bits of the address, unless a class has a better one.
    virtual std::uint32_t hashCode() const;
    /// The class name, "@", and the hash code in base 16.
    /// @throws ClassNotFoundException as getClass.
    virtual String toString() const;

    static const qvcom::InterfaceData* GetComIntfMap() noexcept;
};

} // namespace qv
