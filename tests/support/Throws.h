#pragma once

#include "qv/Exceptions.h"

#include <gtest/gtest.h>

namespace support {

/// The result of the ResultException that `work` throws; fails the test if it throws none.
template <class Work>
std::int32_t thrownResult(Work work) {
    try {
        work();
    } catch (const qv::ResultException& exception) {
        return exception.getResult();
    }
    ADD_FAILURE() << "no ResultException";
    return 0;
}

/// The description of the `Thrown` that `work` throws, in UTF-8; fails the test if it throws none.
template <class Thrown, class Work>
std::string thrownText(Work work) {
    try {
        work();
    } catch (const Thrown& exception) {
        return exception.getDescription().getBytes(u"UTF-8");
    }
    ADD_FAILURE() << "not thrown";
    return "(nothing thrown)";
}

} // namespace support
