#include "qv/Class.h"

#include "qv/ClassManager.h"
#include "qv/Exceptions.h"

namespace qv {

Class::Class(const char16_t* name, const std::type_info* type, Factory factory) noexcept
    : name_(name), type_(type), factory_(factory) {}

Class::~Class() = default;

const char16_t* Class::getName() const { return name_; }

bool Class::isInstance(const Object& object) const { return typeid(object) == *type_; }

Object* Class::createInstance() const {
    if (factory_ == nullptr) {
        throw IllegalAccessException();
    }
    return factory_();
}

const Class* Class::forName(const char16_t* name) {
    return ClassManager::getInstance()->lookupName(name);
}

const Class* Class::forType(const std::type_info* type) {
    return ClassManager::getInstance()->lookupType(type);
}

} // namespace qv
