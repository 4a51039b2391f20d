// The collections beside the language's own containers, on the same keys and objects. The
// containers of the standard library hold what the collections hold: counted references.

#include "qv/collections/List.h"
#include "qv/collections/StringHashMap.h"
#include "qv/collections/qvcom/ArrayList.h"
#include "qv/collections/qvcom/HashMap.h"
#include "qv/collections/qvcom/LinkedList.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <list>
#include <random>
#include <string>
#include <unordered_map>
#include <vector>

#ifdef __GLIBC__
#    include <malloc.h>
#endif

namespace {

using benchmark::DoNotOptimize;
using qv::Object;
using qv::Reference;
using qv::String;
using qv::collections::StringHashMap;
using namespace qv::collections::qvcom;

using StandardMap = std::unordered_map<std::u16string, Reference<Object>>;
using StandardVector = std::vector<Reference<Object>>;

constexpr int keyCount = 100000;
constexpr int listLength = 10000;

IQVUnknown* element(Object* object) { return static_cast<qv::ComObject*>(object); }

/// The same keys in both forms, in an order of their own.
struct Keys {
    Keys() {
        for (int i = 0; i < keyCount; ++i) {
            standard.push_back(u"qv.collections.key." + units(i * 7919));
        }
        std::shuffle(standard.begin(), standard.end(), std::mt19937(1));
        for (const std::u16string& key : standard) {
            own.push_back(qv::make<String>(key.data(), static_cast<int>(key.size())));
        }
        shuffled.resize(keyCount);
        for (int i = 0; i < keyCount; ++i) {
            shuffled[static_cast<std::size_t>(i)] = static_cast<std::size_t>(i);
        }
        std::shuffle(shuffled.begin(), shuffled.end(), std::mt19937(2));
    }
    static std::u16string units(int number) {
        const String text = String::valueOf(number);
        return {text.getData(), static_cast<std::size_t>(text.getLength())};
    }

    std::vector<std::u16string> standard;
    std::vector<Reference<String>> own;
    std::vector<std::size_t> shuffled; ///< the order of look-ups
    Reference<Object> value = qv::make<Object>();
};

const Keys& keys() {
    static const Keys all;
    return all;
}

/// Each form of map behind the same five operations.
struct OwnMap {
    Reference<HashMap> map = qv::make<HashMap>();
    void put(std::size_t i) { map->put(element(keys().own[i]), element(keys().value)); }
    auto get(std::size_t i) { return map->get(element(keys().own[i])); }
    void remove(std::size_t i) { map->remove(element(keys().own[i])); }
    void walk() {
        const auto entries = map->createEntrySet()->createIterator();
        while (entries->hasNext()) {
            DoNotOptimize(entries->next().get());
        }
    }
};

struct OwnStringMap {
    Reference<StringHashMap> map = qv::make<StringHashMap>();
    void put(std::size_t i) { map->put(*keys().own[i], keys().value); }
    auto get(std::size_t i) { return map->get(*keys().own[i]); }
    void remove(std::size_t i) { map->remove(*keys().own[i]); }
    void walk() { DoNotOptimize(map->createKeySet().get()); }
};

struct StdMap {
    StandardMap map;
    void put(std::size_t i) { map.insert_or_assign(keys().standard[i], keys().value); }
    auto get(std::size_t i) { return Reference<Object>(map.find(keys().standard[i])->second); }
    void remove(std::size_t i) { map.erase(keys().standard[i]); }
    void walk() {
        for (const auto& entry : map) {
            DoNotOptimize(Reference<Object>(entry.second).get());
        }
    }
};

/// A walk whose result is a snapshot of the keys.
struct StdSnapshotMap : StdMap {
    void walk() {
        std::unordered_map<std::u16string, Reference<Object>> snapshot;
        for (const auto& entry : map) {
            snapshot.emplace(entry.first, keys().value);
        }
        DoNotOptimize(snapshot.size());
    }
};

template <class Map>
void fill(Map& map) {
    for (std::size_t i = 0; i < keyCount; ++i) {
        map.put(i);
    }
}

/// Bytes that the process has allocated, where the system says so.
double allocated() {
#ifdef __GLIBC__
    const auto info = mallinfo2();
    return static_cast<double>(info.uordblks + info.hblkhd);
#else
    return 0;
#endif
}

/// The memory shown beside it is that of table and entries. A HashMap holds the caller's key
/// object, a StringHashMap shares its characters, and the standard map has a copy of them.
template <class Map>
void put(benchmark::State& state) {
    keys();
    const double before = allocated();
    {
        Map map;
        fill(map);
        state.counters["bytes_per_entry"] = (allocated() - before) / keyCount;
    }
    for (auto _ : state) {
        Map map;
        fill(map);
    }
    state.SetItemsProcessed(state.iterations() * keyCount);
}

template <class Map>
void get(benchmark::State& state) {
    Map map;
    fill(map);
    for (auto _ : state) {
        for (const std::size_t i : keys().shuffled) {
            DoNotOptimize(map.get(i).get());
        }
    }
    state.SetItemsProcessed(state.iterations() * keyCount);
}

template <class Map>
void walk(benchmark::State& state) {
    Map map;
    fill(map);
    for (auto _ : state) {
        map.walk();
    }
    state.SetItemsProcessed(state.iterations() * keyCount);
}

template <class Map>
void removeAll(benchmark::State& state) {
    for (auto _ : state) {
        state.PauseTiming();
        Map map;
        fill(map);
        state.ResumeTiming();
        for (const std::size_t i : keys().shuffled) {
            map.remove(i);
        }
    }
    state.SetItemsProcessed(state.iterations() * keyCount);
}

BENCHMARK(put<OwnMap>)->Name("map_put_100k/HashMap");
BENCHMARK(put<OwnStringMap>)->Name("map_put_100k/StringHashMap");
BENCHMARK(put<StdMap>)->Name("map_put_100k/std_unordered_map");
BENCHMARK(get<OwnMap>)->Name("map_get_100k/HashMap");
BENCHMARK(get<OwnStringMap>)->Name("map_get_100k/StringHashMap");
BENCHMARK(get<StdMap>)->Name("map_get_100k/std_unordered_map");
BENCHMARK(walk<OwnMap>)->Name("map_walk_100k/HashMap");
BENCHMARK(walk<StdMap>)->Name("map_walk_100k/std_unordered_map");
BENCHMARK(walk<OwnStringMap>)->Name("map_key_snapshot_100k/StringHashMap");
BENCHMARK(walk<StdSnapshotMap>)->Name("map_key_snapshot_100k/std_unordered_map");
BENCHMARK(removeAll<OwnMap>)->Name("map_remove_100k/HashMap");
BENCHMARK(removeAll<OwnStringMap>)->Name("map_remove_100k/StringHashMap");
BENCHMARK(removeAll<StdMap>)->Name("map_remove_100k/std_unordered_map");

// --- Lists ---

template <class List>
void appendList(benchmark::State& state) {
    const Reference<Object> object = qv::make<Object>();
    for (auto _ : state) {
        const auto list = qv::make<List>();
        for (int i = 0; i < listLength; ++i) {
            list->add(element(object));
        }
        DoNotOptimize(list->getSize());
    }
    state.SetItemsProcessed(state.iterations() * listLength);
}
BENCHMARK(appendList<ArrayList>)->Name("list_append_10k/ArrayList");
BENCHMARK(appendList<LinkedList>)->Name("list_append_10k/LinkedList");

template <class Standard>
void appendStandard(benchmark::State& state) {
    const Reference<Object> object = qv::make<Object>();
    for (auto _ : state) {
        Standard list;
        for (int i = 0; i < listLength; ++i) {
            list.emplace_back(object.get());
        }
        DoNotOptimize(list.size());
    }
    state.SetItemsProcessed(state.iterations() * listLength);
}
BENCHMARK(appendStandard<StandardVector>)->Name("list_append_10k/std_vector");
BENCHMARK(appendStandard<std::list<Reference<Object>>>)->Name("list_append_10k/std_list");

template <class List>
Reference<List> filledList() {
    auto list = qv::make<List>();
    for (int i = 0; i < listLength; ++i) {
        list->add(element(keys().own[static_cast<std::size_t>(i)]));
    }
    return list;
}

template <class List>
void walkList(benchmark::State& state) {
    const auto list = filledList<List>();
    for (auto _ : state) {
        const auto iterator = list->createIterator();
        while (iterator->hasNext()) {
            DoNotOptimize(iterator->next().get());
        }
    }
    state.SetItemsProcessed(state.iterations() * listLength);
}
BENCHMARK(walkList<ArrayList>)->Name("list_walk_10k/ArrayList_iterator");
BENCHMARK(walkList<LinkedList>)->Name("list_walk_10k/LinkedList_iterator");

void walkTyped(benchmark::State& state) {
    const qv::collections::List<String> list(filledList<ArrayList>());
    for (auto _ : state) {
        for (const String& text : list) {
            DoNotOptimize(&text);
        }
    }
    state.SetItemsProcessed(state.iterations() * listLength);
}
BENCHMARK(walkTyped)->Name("list_walk_10k/ArrayList_typed_range");

void walkByIndex(benchmark::State& state) {
    const auto list = filledList<ArrayList>();
    for (auto _ : state) {
        for (int i = 0, size = list->getSize(); i < size; ++i) {
            DoNotOptimize(list->get(i).get());
        }
    }
    state.SetItemsProcessed(state.iterations() * listLength);
}
BENCHMARK(walkByIndex)->Name("list_walk_10k/ArrayList_index");

template <class Standard>
void walkStandard(benchmark::State& state) {
    Standard list;
    for (int i = 0; i < listLength; ++i) {
        list.emplace_back(keys().own[static_cast<std::size_t>(i)].get());
    }
    for (auto _ : state) {
        for (const auto& held : list) {
            DoNotOptimize(Reference<Object>(held).get());
        }
    }
    state.SetItemsProcessed(state.iterations() * listLength);
}
BENCHMARK(walkStandard<StandardVector>)->Name("list_walk_10k/std_vector");
BENCHMARK(walkStandard<std::list<Reference<Object>>>)->Name("list_walk_10k/std_list");

void walkBorrowed(benchmark::State& state) {
    StandardVector list;
    for (int i = 0; i < listLength; ++i) {
        list.emplace_back(keys().own[static_cast<std::size_t>(i)].get());
    }
    for (auto _ : state) {
        for (const auto& held : list) {
            DoNotOptimize(held.get());
        }
    }
    state.SetItemsProcessed(state.iterations() * listLength);
}
BENCHMARK(walkBorrowed)->Name("list_walk_10k/std_vector_borrowed");

void indexOfLast(benchmark::State& state) {
    const auto list = filledList<ArrayList>();
    for (auto _ : state) {
        DoNotOptimize(list->indexOf(element(keys().own[listLength - 1])));
    }
    state.SetItemsProcessed(state.iterations() * listLength);
}
BENCHMARK(indexOfLast)->Name("list_index_of_10k/ArrayList");

void findLast(benchmark::State& state) {
    const std::vector<std::u16string> list(keys().standard.begin(),
                                           keys().standard.begin() + listLength);
    for (auto _ : state) {
        DoNotOptimize(std::find(list.begin(), list.end(), keys().standard[listLength - 1]));
    }
    state.SetItemsProcessed(state.iterations() * listLength);
}
BENCHMARK(findLast)->Name("list_index_of_10k/std_vector");

} // namespace
