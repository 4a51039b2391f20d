#pragma once

#include "qv/ComObject.h"
#include "qv/Reference.h"
#include "qv/Str1.h"
#include "qv/detail/SampledHash.h"

#include <limits>
#include <memory>
#include <new>
#include <utility>

namespace qv {

/// The hash map on light strings, for tables of names.
///
/// A chained table: it grows to `capacity * 2 + 1` when a new key meets a size at the threshold,
/// and puts new entries at the front of their chain. Keys share the store of the string given,
/// unless that store lies inside another object: then they are copied. Values are kept as they are
/// given: one whose store lies inside another object must not outlive that.
///
/// Thread safety: one thread at a time, also for reading: a look-up counts on the key's store.
template <class V>
class QV_API_TEMPLATE Str1HashMap {
    struct Entry;

public:
    static constexpr int DEFAULT_CAPACITY = 101;
    static constexpr float DEFAULT_LOAD = 0.75f;

    /// Walks the buckets from the first to the last and each chain from its head. Kept: changes of
    /// the map meanwhile are not detected.
    class KeyValueIterator {
        friend class Str1HashMap;
        int bucket_ = 0;
        const Entry* entry_ = nullptr;
    };

    /// An empty map of `capacity` buckets, at least one, which grows at `load` entries for each of
    /// them. Requires: a load above 0.
    /// @throws std::bad_alloc.
    explicit Str1HashMap(int capacity = DEFAULT_CAPACITY, float load = DEFAULT_LOAD)
        : capacity_(capacity < 1 ? 1 : capacity), load_(load) {
        allocTable(capacity_);
    }
    Str1HashMap(const Str1HashMap&) = delete;
    Str1HashMap& operator=(const Str1HashMap&) = delete;

    // Slot order is contract from here on.

    virtual ~Str1HashMap() = default;
    /// Drops all entries; the capacity stays.
    virtual void clear() { allocTable(capacity_); }
    virtual bool containsKey(const Str1& key) const { return find(Lookup(*this, key)) != nullptr; }
    /// Copies the value of a key out. @return false, with `out` untouched, for an unknown key.
    virtual bool get(const Str1& key, V& out) const {
        const Entry* const entry = find(Lookup(*this, key));
        if (entry != nullptr) {
            out = entry->value;
        }
        return entry != nullptr;
    }
    virtual int getSize() const { return size_; }
    /// Sets the value of a key; the old one is copied to `*old`, where `old` is not null.
    virtual void put(const Str1& key, const V& value, V* old = nullptr) {
        const Lookup lookup(*this, key);
        if (Entry* const entry = find(lookup)) {
            if (old != nullptr) {
                *old = entry->value;
            }
            entry->value = value;
            return;
        }
        auto added = std::make_unique<Entry>(lookup, value);
        ++changeCount_;
        if (size_ >= threshold_) {
            rehash();
        }
        Chain& head = table_[bucketOf(added->hash)];
        added->next = std::move(head);
        head = std::move(added);
        ++size_;
    }
    /// Removes a key; its value is copied to `*old`, where `old` is not null.
    virtual void remove(const Str1& key, V* old = nullptr) {
        const Lookup lookup(*this, key);
        for (Chain* link = &table_[bucketOf(lookup.hash)]; *link != nullptr;
             link = &(*link)->next) {
            if ((*link)->matches(lookup)) {
                if (old != nullptr) {
                    *old = (*link)->value;
                }
                *link = Chain(std::move((*link)->next));
                --size_;
                return;
            }
        }
    }
    virtual void iteratorInit(KeyValueIterator& iterator) const {
        iterator.bucket_ = -1;
        iterator.entry_ = nullptr;
        advance(iterator);
    }
    virtual bool iteratorHasNext(KeyValueIterator& iterator) const {
        return iterator.entry_ != nullptr;
    }
    /// Requires: `iteratorHasNext`. Either output may be null.
    /// Borrows: key and value, until the entry goes.
    virtual void iteratorNext(KeyValueIterator& iterator, const Str1** key, const V** value) const {
        if (key != nullptr) {
            *key = &iterator.entry_->key;
        }
        if (value != nullptr) {
            *value = &iterator.entry_->value;
        }
        advance(iterator);
    }

protected:
    /// What a key is known by: the key itself.
    virtual void normalizeKey(Str1& out, const Str1& key) const { out.setTo(key); }

    // Slot order ends here.

public:
    bool isEmpty() const { return getSize() == 0; }
    int getCapacity() const noexcept { return capacity_; }
    int getChangeCount() const noexcept { return changeCount_; }

private:
    using Chain = std::unique_ptr<Entry>;

    /// A key as the map knows it, and its hash.
    struct Lookup {
        Lookup(const Str1HashMap& map, const Str1& wanted) {
            map.normalizeKey(key, wanted);
            hash = detail::sampledHash(key.getData0(), key.getLength(), false);
        }
        Str1 key;
        std::uint32_t hash = 0;
    };

    struct Entry {
        Entry(const Lookup& lookup, const V& newValue) : value(newValue), hash(lookup.hash) {
            if (lookup.key.isStoreEmbedded()) {
                key.copy(lookup.key);
            } else {
                key.setTo(lookup.key);
            }
        }
        /// Ends a chain link by link: a long one must not recurse.
        ~Entry() {
            while (next != nullptr) {
                next = std::move(next->next);
            }
        }
        bool matches(const Lookup& lookup) const noexcept {
            return hash == lookup.hash && key == lookup.key;
        }

        Str1 key;
        V value;
        std::uint32_t hash;
        Chain next;
    };

    std::size_t bucketOf(std::uint32_t hash) const noexcept {
        return hash % static_cast<std::uint32_t>(capacity_);
    }

    Entry* find(const Lookup& lookup) const noexcept {
        Entry* entry = table_[bucketOf(lookup.hash)].get();
        while (entry != nullptr && !entry->matches(lookup)) {
            entry = entry->next.get();
        }
        return entry;
    }

    void advance(KeyValueIterator& iterator) const noexcept {
        if (iterator.entry_ != nullptr) {
            iterator.entry_ = iterator.entry_->next.get();
        }
        while (iterator.entry_ == nullptr && iterator.bucket_ + 1 < capacity_) {
            iterator.entry_ = table_[static_cast<std::size_t>(++iterator.bucket_)].get();
        }
    }

    void allocTable(int capacity) {
        table_ = std::make_unique<Chain[]>(static_cast<std::size_t>(capacity));
        capacity_ = capacity;
        threshold_ = thresholdOf(capacity);
        size_ = 0;
    }

    /// The product of capacity and load. Where that is no `int`, the table never grows.
    int thresholdOf(int capacity) const noexcept {
        constexpr auto beyond = static_cast<float>(std::numeric_limits<int>::max());
        const float product = static_cast<float>(capacity) * load_;
        return product > -beyond && product < beyond ? static_cast<int>(product)
                                                     : std::numeric_limits<int>::max();
    }

    /// Moves the entries, from the last bucket to the first, each to the head of its new chain.
    void rehash() {
        const int oldCapacity = capacity_;
        if (oldCapacity > (std::numeric_limits<int>::max() - 1) / 2) {
            throw std::bad_alloc();
        }
        const int oldSize = size_;
        std::unique_ptr<Chain[]> old = std::move(table_);
        try {
            allocTable(oldCapacity * 2 + 1);
        } catch (...) {
            table_ = std::move(old);
            throw;
        }
        size_ = oldSize;
        for (int i = oldCapacity - 1; i >= 0; --i) {
            Chain entry = std::move(old[static_cast<std::size_t>(i)]);
            while (entry != nullptr) {
                Chain rest = std::move(entry->next);
                Chain& head = table_[bucketOf(entry->hash)];
                entry->next = std::move(head);
                head = std::move(entry);
                entry = std::move(rest);
            }
        }
    }

    int size_ = 0;
    int capacity_;
    float load_;
    int threshold_ = 0;
    std::unique_ptr<Chain[]> table_;
    int changeCount_ = 0;
};

/// The map with case-blind keys: it knows them by their lower-case form.
template <class V>
class QV_API_TEMPLATE Str1HashMapLC : public Str1HashMap<V> {
public:
    using Str1HashMap<V>::Str1HashMap;

protected:
    void normalizeKey(Str1& out, const Str1& key) const override {
        out.copy(key);
        out.toLower();
    }
};

QV_EXTERN_INSTANCE(Str1HashMap<Str1>);
QV_EXTERN_INSTANCE(Str1HashMap<void*>);
QV_EXTERN_INSTANCE(Str1HashMap<CopyReference<ComObject>>);
QV_EXTERN_INSTANCE(Str1HashMapLC<Str1>);

} // namespace qv
