// Counts words: a map from texts to numbers, walked by its keys in order of the alphabet.

#include "qv/Integers.h"
#include "qv/collections/List.h"
#include "qv/collections/StringHashMap.h"
#include "qv/collections/qvcom/ArrayList.h"

#include <cstdio>

using namespace qv;
using namespace qv::collections;

namespace {

/// Puts a text in front of the first one that stands behind it.
void insertSorted(List<String>& list, const String& text) {
    const auto place = list.createListIterator(0);
    while (place->hasNext()) {
        if (place->next()->compare(text) > 0) {
            place->previous();
            break;
        }
    }
    place->add(make<String>(text));
}

} // namespace

int main() {
    const char16_t* const words[] = {u"free",    u"and", u"equal", u"in",
                                     u"dignity", u"and", u"rights"};
    StringHashMap counts;
    for (const char16_t* const word : words) {
        const auto before = counts.get(word, -1);
        const int count = before ? static_cast<Integer32&>(*before) + 1 : 1;
        counts.put(word, make<Integer32>(count));
    }

    const auto sorted = make<List<String>>(make<collections::qvcom::ArrayList>());
    const auto keys = counts.createKeySet();
    for (const String& word : *keys) {
        insertSorted(*sorted, word);
    }
    for (const String& word : *sorted) {
        const auto count = counts.get(word);
        std::printf("%d %s\n", static_cast<int>(static_cast<Integer32&>(*count)), word.getBytes());
    }
}
