// What the library says to the platform layer when it asks for a component, in a program that
// consists of the library's objects and stands in for the platform layer's own operations.

#include "face/Library.h"
#include "qv/text/charset/CodecManager.h"
#include "qv/text/charset/IQVCharCodec.h"
#include "qvcore/Component.h"
#include "qvcore/Module.h"
#include "tests/lifecycle/Check.h"

#include <string>
#include <vector>

namespace {

using Names = std::vector<std::u16string>;

constexpr GUID classId = {
    0x3B1D9E7A, 0x52C4, 0x4E0F, {0x8C, 0x21, 0x9F, 0x04, 0x6D, 0xA5, 0x77, 0x10}};

Names asked;             ///< the names behind the ProgIDs that were looked up
std::u16string served;   ///< the name whose ProgID is known
int creations = 0;       ///< how often an object was asked for
std::int32_t result = 0; ///< of a creation, which gives no object

const std::u16string prefix = u"Velquor.CharCodec.";

/// The names under which components are sought, for an encoding that none serves.
Names soughtFor(const char16_t* name) {
    auto* const manager = qv::text::charset::CodecManager::getInstance();
    asked.clear();
    CHECK(manager->getDecoder(name) == nullptr);
    const Names forDecoder = asked;
    asked.clear();
    CHECK(manager->getEncoder(name) == nullptr);
    CHECK(asked == forDecoder);
    return forDecoder;
}

void namesAreSoughtAsGivenAndThenByTheirCanonicalName() {
    served.clear();
    CHECK(soughtFor(u"No such Encoding") == Names{u"No such Encoding"});
    CHECK((soughtFor(u"gb2312") == Names{u"gb2312", u"CP936"}));
    CHECK((soughtFor(u"Windows-1251") == Names{u"Windows-1251", u"CP1251"}));
    CHECK((soughtFor(u"20932") == Names{u"20932", u"EUCJP"}));
    CHECK(creations == 0);
}

void canonicalNamesAreSoughtOnce() {
    served.clear();
    CHECK(soughtFor(u"CP936") == Names{u"CP936"});
    CHECK(soughtFor(u"cp936") == Names{u"cp936"}); // in any case, and only in that
}

void registeredNamesAreNotSought() {
    for (const char16_t* name : {u"utf-8", u"DEFAULT", u"UTF-16LE"}) {
        asked.clear();
        delete qv::text::charset::CodecManager::getInstance()->getDecoder(name);
        CHECK(asked.empty());
    }
    asked.clear();
    delete qv::text::charset::CodecManager::getInstance()->getDecoder(u"65001");
    CHECK(asked == Names{u"65001"}); // a name of the table alone
}

void componentsAreAskedForTheirCodec() {
    served = u"X-Outside";
    for (const std::int32_t each : {-1, 0}) {
        result = each;
        creations = 0;
        CHECK(soughtFor(u"X-Outside") == Names{u"X-Outside"});
        CHECK(creations == 2);
    }
}

void nameWhoseComponentCannotBeMadeIsSoughtOn() {
    served = u"GB2312";
    result = -1;
    creations = 0;
    CHECK((soughtFor(u"GB2312") == Names{u"GB2312", u"CP936"}));
    CHECK(creations == 2);
}

} // namespace

std::int32_t QVComClassIDFromProgID(const char16_t* progId, GUID* found) noexcept {
    const std::u16string text = progId;
    CHECK(text.starts_with(prefix));
    asked.push_back(text.substr(prefix.size()));
    if (asked.back() != served) {
        return -1;
    }
    *found = classId;
    return 0;
}

std::int32_t QVModuleComCreateObject(std::uint64_t module, const GUID* wanted, void* outer,
                                     const GUID* iid, void** out) noexcept {
    ++creations;
    CHECK(module == qv::face::identity());
    CHECK(QVModuleIsInitialized(module) == 1);
    CHECK(qv::equalGuids(*wanted, classId));
    CHECK(outer == nullptr);
    CHECK(qv::equalGuids(*iid, IID_IQVCharCodec));
    *out = nullptr;
    return result;
}

int main() {
    namesAreSoughtAsGivenAndThenByTheirCanonicalName();
    canonicalNamesAreSoughtOnce();
    registeredNamesAreNotSought();
    componentsAreAskedForTheirCodec();
    nameWhoseComponentCannotBeMadeIsSoughtOn();
    std::puts("passed");
    return 0;
}
