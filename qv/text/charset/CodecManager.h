#pragma once

#include "qv/GlobalLock.h"
#include "qv/Str1HashMap.h"
#include "qv/text/charset/CodecClasses.h"
#include "qv/util/Singleton.h"

namespace qv::text::charset {

/// The process-wide registry that turns an encoding's name into a converter.
///
/// A name is sought, without regard to case, among the registered codecs; then, in the caller's own
/// spelling, among the codec components of the system; then in the encoding information, whose
/// canonical name is sought in the same way.
///
/// Thread safety: const-safe. Registration after library start must exclude all other use.
class QV_API CodecManager {
public:
    CodecManager(const CodecManager&) = delete;
    CodecManager& operator=(const CodecManager&) = delete;

    /// Borrows: the manager, made on first use.
    /// @throws IllegalStateException before library start and after library end.
    static CodecManager* getInstance();
    /// Destroys the manager, if there is one. Whatever `getInstance` gave is gone.
    static void freeInstance();

    /// Owns: the caller, the new decoder with its count at 0. Null for a name that nothing serves.
    Object* getDecoder(const char16_t* name);
    /// Owns: the caller, the new encoder with its count at 0. Null for a name that nothing serves.
    Object* getEncoder(const char16_t* name);
    /// Adds a codec by the names of its run-time classes. A name that is known stays as it is.
    /// @throws ClassNotFoundException with a class name that is not known.
    void registerCodec(const char16_t* name, const char16_t* encoderClass,
                       const char16_t* decoderClass);

private:
    template <class, sync::LockObject**>
    friend class util::Singleton;
    using Instance = util::Singleton<CodecManager, &g_pGlobalLock>;
    struct Direction;

    CodecManager();
    ~CodecManager();

    Object* create(const char16_t* name, const Direction& direction);

    Str1HashMap<CopyReference<ComObject>> codecs_;
};

} // namespace qv::text::charset
