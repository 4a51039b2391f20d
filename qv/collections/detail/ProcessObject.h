#pragma once

#include "qv/Reference.h"

#include <atomic>

namespace qv::collections::detail {

/// The one `T` of the process: made at the first call, under the language's once-only
/// initialisation, and released at process exit. Who calls still later, as a static destructor may,
/// gets one of its own. For one source file: an instance in two modules would not be one.
template <class T>
class ProcessObject {
public:
    static Reference<T> get() {
        static const ProcessObject holder;
        T* const object = object_.load(std::memory_order_relaxed);
        return object != nullptr ? Reference<T>(object) : make<T>();
    }

private:
    ProcessObject() { object_ = make<T>().detach(); }
    ~ProcessObject() { Reference<T>::adopt(object_.exchange(nullptr)); }

    static inline constinit std::atomic<T*> object_ = nullptr;
};

} // namespace qv::collections::detail
