#include "qv/Str1HashMap.h"

namespace qv {

template class Str1HashMap<Str1>;
template class Str1HashMap<void*>;
template class Str1HashMap<CopyReference<ComObject>>;
template class Str1HashMapLC<Str1>;

} // namespace qv
