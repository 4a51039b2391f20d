#include "qvcore/Component.h"

#include "qvcore/Text.h"
#include "qvcore/common/Guarded.h"
#include "qvcore/common/Immortal.h"
#include "qvcore/common/SystemComponents.h"

#include <algorithm>
#include <mutex>
#include <string>
#include <vector>

namespace qv::core {

namespace {

/// The system's class factory interface as a record of functions: the factories belong to other
/// modules, which know nothing of any class declared here.
struct ClassFactory {
    struct Table {
        std::int32_t (*queryInterface)(ClassFactory* self, const GUID& iid, void** out);
        std::uint32_t (*addRef)(ClassFactory* self);
        std::uint32_t (*release)(ClassFactory* self);
        std::int32_t (*createInstance)(ClassFactory* self, void* outer, const GUID& iid,
                                       void** out);
        std::int32_t (*lockServer)(ClassFactory* self, std::int32_t lock);
    };

    const Table* table;
};

constexpr GUID classFactoryId = {
    0x00000001, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};

bool isSame(const GUID& left, const GUID& right) noexcept {
    return QVComCompareGUID(&left, &right) == 0;
}

/// The form in which ProgIDs are compared; a null one is empty.
std::u16string folded(const char16_t* progId) {
    std::u16string text(progId == nullptr ? u"" : progId);
    QVStrToLowerW(text.data(), static_cast<std::int32_t>(text.size()));
    return text;
}

/// The classes registered for this process. A class without a ProgID is found by its id only. Never
/// destroyed: modules revoke their classes when the process's static objects go.
///
/// Thread safety: internally locked; no class is called under the lock.
class ProcessClasses {
public:
    static ProcessClasses& instance() { return core::immortal<ProcessClasses>(); }

    std::int32_t add(const char16_t* progId, const GUID& classId,
                     QVComGetClassObject getClassObject) {
        Entry entry = {folded(progId), classId, getClassObject};
        const std::lock_guard lock(mutex_);
        const bool isTaken = std::any_of(entries_.begin(), entries_.end(), [&](const Entry& each) {
            return isSame(each.classId, classId) || each.isNamed(entry.progId);
        });
        if (isTaken) {
            return QV_E_ALREADYEXISTS;
        }
        entries_.push_back(std::move(entry));
        return QV_S_OK;
    }

    std::int32_t remove(const GUID& classId) {
        const std::lock_guard lock(mutex_);
        const auto removed = std::erase_if(
            entries_, [&](const Entry& entry) { return isSame(entry.classId, classId); });
        return removed == 0 ? QV_E_CLASSNOTREGISTERED : QV_S_OK;
    }

    /// @return QV_E_UNKNOWNPROGID if there is none.
    std::int32_t find(const char16_t* progId, GUID& classId) {
        const std::u16string name = folded(progId);
        const std::lock_guard lock(mutex_);
        for (const Entry& entry : entries_) {
            if (entry.isNamed(name)) {
                classId = entry.classId;
                return QV_S_OK;
            }
        }
        return QV_E_UNKNOWNPROGID;
    }

    /// Null if the class is not registered.
    QVComGetClassObject find(const GUID& classId) {
        const std::lock_guard lock(mutex_);
        for (const Entry& entry : entries_) {
            if (isSame(entry.classId, classId)) {
                return entry.getClassObject;
            }
        }
        return nullptr;
    }

private:
    struct Entry {
        std::u16string progId;
        GUID classId;
        QVComGetClassObject getClassObject;

        bool isNamed(const std::u16string& name) const { return !progId.empty() && progId == name; }
    };

    std::mutex mutex_;
    std::vector<Entry> entries_;
};

std::int32_t createProcessObject(QVComGetClassObject getClassObject, const GUID& classId,
                                 void* outer, const GUID& iid, void*& out) {
    void* classObject = nullptr;
    std::int32_t result = getClassObject(&classId, &classFactoryId, &classObject);
    if (result < 0) {
        return result;
    }
    auto* factory = static_cast<ClassFactory*>(classObject);
    void* object = nullptr;
    result = factory->table->createInstance(factory, outer, iid, &object);
    factory->table->release(factory);
    if (result >= 0) {
        out = object;
    }
    return result;
}

} // namespace

} // namespace qv::core

using namespace qv;
using namespace qv::core;

std::int32_t QVComRegisterClass(const char16_t* progId, const GUID* classId,
                                QVComGetClassObject getClassObject) noexcept {
    if (classId == nullptr || getClassObject == nullptr) {
        return QV_E_INVALIDARG;
    }
    return guarded(
        [=] { return ProcessClasses::instance().add(progId, *classId, getClassObject); });
}

std::int32_t QVComRevokeClass(const GUID* classId) noexcept {
    if (classId == nullptr) {
        return QV_E_INVALIDARG;
    }
    return guarded([=] { return ProcessClasses::instance().remove(*classId); });
}

std::int32_t QVComClassIDFromProgID(const char16_t* progId, GUID* classId) noexcept {
    if (classId == nullptr) {
        return QV_E_POINTER;
    }
    if (progId == nullptr || *progId == 0) {
        return QV_E_UNKNOWNPROGID;
    }
    return guarded([=] {
        const std::int32_t result = ProcessClasses::instance().find(progId, *classId);
        return result == QV_E_UNKNOWNPROGID ? findSystemClass(progId, *classId) : result;
    });
}

std::int32_t QVModuleComCreateObject(std::uint64_t, const GUID* classId, void* outer,
                                     const GUID* iid, void** out) noexcept {
    if (out == nullptr) {
        return QV_E_POINTER;
    }
    if (classId == nullptr || iid == nullptr) {
        return QV_E_INVALIDARG;
    }
    return guarded([=] {
        const QVComGetClassObject getClassObject = ProcessClasses::instance().find(*classId);
        return getClassObject != nullptr
                   ? createProcessObject(getClassObject, *classId, outer, *iid, *out)
                   : createSystemObject(*classId, outer, *iid, *out);
    });
}
