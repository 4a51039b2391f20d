#include "qv/text/charset/CodecManager.h"

#include "face/Library.h"
#include "qv/text/charset/BTCCom.h"
#include "qv/text/charset/CTBCom.h"
#include "qv/text/charset/EncodingInfo.h"
#include "qv/text/charset/detail/UpperName.h"
#include "qv/util/SingletonImpl.h"
#include "qvcore/Component.h"

namespace qv::text::charset {

/// What decoders and encoders differ in where they are sought.
struct CodecManager::Direction {
    const Class* (CodecClasses::*getClass)() const noexcept;
    Object* (*wrap)(IQVCharCodec* codec);
};

namespace {

/// The codec component of a name, or null.
Reference<IQVCharCodec> findComponent(const char16_t* name) {
    String progId(u"Velquor.CharCodec.");
    progId.append(name);
    GUID classId;
    void* created = nullptr;
    if (QVComClassIDFromProgID(progId.getData(), &classId) < 0 ||
        QVModuleComCreateObject(face::identity(), &classId, nullptr, &IID_IQVCharCodec, &created) <
            0) {
        return nullptr;
    }
    Reference<IQVCharCodec> codec(static_cast<IQVCharCodec*>(created));
    if (codec != nullptr) {
        codec->Release(); // the count that came with the creation
    }
    return codec;
}

template <class Converter>
Object* wrapIn(IQVCharCodec* codec) {
    return new Converter(codec);
}

} // namespace

CodecManager::CodecManager()
    : codecs_(Str1HashMap<CopyReference<ComObject>>::DEFAULT_CAPACITY,
              Str1HashMap<CopyReference<ComObject>>::DEFAULT_LOAD) {}

CodecManager::~CodecManager() = default;

CodecManager* CodecManager::getInstance() { return Instance::getInstance(); }

void CodecManager::freeInstance() { Instance::freeInstance(); }

Object* CodecManager::getDecoder(const char16_t* name) {
    return create(name, {&CodecClasses::getDecoder, &wrapIn<BTCCom>});
}

Object* CodecManager::getEncoder(const char16_t* name) {
    return create(name, {&CodecClasses::getEncoder, &wrapIn<CTBCom>});
}

Object* CodecManager::create(const char16_t* name, const Direction& direction) {
    const detail::UpperName upper(name);
    CopyReference<ComObject> row;
    if (codecs_.get(upper, row)) {
        return (static_cast<CodecClasses*>(row.get())->*direction.getClass)()->createInstance();
    }
    if (const Reference<IQVCharCodec> codec = findComponent(name)) {
        return direction.wrap(codec);
    }
    QVEncInfo info;
    if (QVGetEncInfoByName(name, &info) >= 0 && !(upper == info.name)) {
        return create(info.name, direction);
    }
    return nullptr;
}

void CodecManager::registerCodec(const char16_t* name, const char16_t* encoderClass,
                                 const char16_t* decoderClass) {
    const detail::UpperName upper(name);
    if (codecs_.containsKey(upper)) {
        return;
    }
    const Class* const encoder = Class::forName(encoderClass);
    const Class* const decoder = Class::forName(decoderClass);
    codecs_.put(upper, make<CodecClasses>(encoder, decoder));
}

} // namespace qv::text::charset
