#pragma once

#include <string>

namespace support {

/// A shared module opened at run time, and closed with the object.
class SharedModule {
public:
    /// `path` is that of the file, without the system's prefix and ending.
    explicit SharedModule(const std::string& path);
    SharedModule(const SharedModule&) = delete;
    SharedModule& operator=(const SharedModule&) = delete;
    ~SharedModule();

    bool isOpen() const { return handle_ != nullptr; }
    /// Null for an unknown name.
    template <class Function>
    Function* find(const char* name) const {
        return reinterpret_cast<Function*>(address(name));
    }
    /// True while anybody has the module open.
    static bool isLoaded(const std::string& path);
    /// Keeps the module open when the object ends.
    void leaveOpen() { handle_ = nullptr; }

private:
    using AnyFunction = void();
    AnyFunction* address(const char* name) const;

    void* handle_;
};

} // namespace support
