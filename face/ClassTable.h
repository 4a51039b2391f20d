#pragma once

#include "qv/Class.h"

namespace qv::face {

/// One row of the class table.
struct ClassRow {
    const char16_t* name;
    const std::type_info* type;
    Class::Factory factory;
};

/// The classes that library start registers, in order, ended by a row without a type. Where a name
/// stands twice, the first row counts.
extern const ClassRow classTable[];

} // namespace qv::face
