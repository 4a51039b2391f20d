#pragma once

#include "qv/Object.h"

namespace support {

/// An object that says in `alive` how many of its kind there are.
class CountedObject : public qv::Object {
public:
    explicit CountedObject(int& alive) : alive_(alive) { ++alive_; }
    CountedObject(const CountedObject& other) : qv::Object(other), alive_(other.alive_) {
        ++alive_;
    }
    ~CountedObject() noexcept override { --alive_; }

    using qv::Object::InternalAddRef;
    using qv::Object::InternalRelease;

private:
    int& alive_;
};

/// A component that is none of the library's objects.
class ForeignComponent : public IQVUnknown {
public:
    virtual ~ForeignComponent() = default;
    std::int32_t QueryInterface(const GUID&, void**) override { return -1; }
    std::uint32_t AddRef() const override { return ++count_; }
    std::uint32_t Release() const override { return --count_; }
    std::uint32_t count() const { return count_; }

private:
    mutable std::uint32_t count_ = 1;
};

} // namespace support
