#pragma once

#include "qv/Class.h"
#include "qv/GlobalLock.h"
#include "qv/util/Singleton.h"

namespace qv {

/// The registry of the run-time records, by name and by type. Library start fills it.
///
/// Thread safety: const-safe. Registration after library start must exclude all other use.
class QV_API ClassManagerBase {
public:
    ClassManagerBase(const ClassManagerBase&) = delete;
    ClassManagerBase& operator=(const ClassManagerBase&) = delete;

    /// Registers a class. A name that is known stays as it is; a type that is known keeps its first
    /// record.
    /// Borrows: `name` and `type`, which stay valid until the library ends.
    void registerClass(const char16_t* name, const std::type_info* type, Class::Factory factory);
    /// @throws ClassNotFoundException with the name.
    const Class* lookupName(const char16_t* name) const;
    /// @throws ClassNotFoundException with the type's printable name.
    const Class* lookupType(const std::type_info* type) const;
    /// Calls `visit` for each record in the order of the names.
    void forEach(void (*visit)(const Class& record, void* context), void* context) const;

private:
    template <class, sync::LockObject**>
    friend class util::Singleton;
    struct Maps;

    ClassManagerBase();
    ~ClassManagerBase();

    Maps* maps_;
};

using ClassManager = util::Singleton<ClassManagerBase, &g_pGlobalLock>;

} // namespace qv

QV_EXTERN_INSTANCE(qv::util::Singleton<qv::ClassManagerBase, &g_pGlobalLock>);
