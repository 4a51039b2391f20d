// The instances of the typed face that the library exports.

#include "qv/collections/List.h"
#include "qv/collections/Map.h"

namespace qv::collections {

template class ConstIterator<Integer32>;
template class ConstIterator<String>;
template class Iterator<Integer32>;
template class Iterator<String>;
template class ConstListIterator<String>;
template class ListIterator<String>;
template class Collection<Integer32>;
template class Collection<String>;
template class Set<Integer32>;
template class Set<String>;
template class List<String>;
template class Map<String, String>;

} // namespace qv::collections
