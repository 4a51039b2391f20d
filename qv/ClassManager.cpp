#include "qv/ClassManager.h"

#include "qv/Reference.h"
#include "qv/detail/SystemText.h"
#include "qv/util/SingletonImpl.h"
#include "qvcore/Text.h"

#include <cstdlib>
#include <cxxabi.h>
#include <map>
#include <memory>

namespace qv {

namespace {

struct NameOrder {
    bool operator()(const char16_t* left, const char16_t* right) const noexcept {
        return QVStrCmpW(left, right) < 0;
    }
};

struct TypeOrder {
    bool operator()(const std::type_info* left, const std::type_info* right) const noexcept {
        return left->before(*right);
    }
};

String printableName(const std::type_info& type) {
    int status = 0;
    const std::unique_ptr<char, decltype(&std::free)> name(
        abi::__cxa_demangle(type.name(), nullptr, nullptr, &status), &std::free);
    return detail::systemText(name != nullptr ? name.get() : type.name());
}

} // namespace

struct ClassManagerBase::Maps {
    std::map<const char16_t*, Reference<Class>, NameOrder> byName;
    std::map<const std::type_info*, Reference<Class>, TypeOrder> byType;
};

ClassManagerBase::ClassManagerBase() : maps_(new Maps) {}

ClassManagerBase::~ClassManagerBase() { delete maps_; }

void ClassManagerBase::registerClass(const char16_t* name, const std::type_info* type,
                                     Class::Factory factory) {
    if (maps_->byName.contains(name)) {
        return;
    }
    const Reference<Class> record(new Class(name, type, factory));
    // Its place in the second map is made in front: both maps take the record, or neither does.
    decltype(maps_->byType) typed;
    typed.emplace(type, record);
    maps_->byName.emplace(name, record);
    maps_->byType.merge(typed);
}

const Class* ClassManagerBase::lookupName(const char16_t* name) const {
    const auto found = maps_->byName.find(name);
    if (found == maps_->byName.end()) {
        throw ClassNotFoundException(name);
    }
    return found->second;
}

const Class* ClassManagerBase::lookupType(const std::type_info* type) const {
    const auto found = maps_->byType.find(type);
    if (found == maps_->byType.end()) {
        throw ClassNotFoundException(printableName(*type));
    }
    return found->second;
}

void ClassManagerBase::forEach(void (*visit)(const Class&, void*), void* context) const {
    for (const auto& [name, record] : maps_->byName) {
        visit(*record, context);
    }
}

} // namespace qv

template class qv::util::Singleton<qv::ClassManagerBase, &g_pGlobalLock>;
