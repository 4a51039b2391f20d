#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <new>
#include <utility>

namespace qv::collections::detail {

/// The table of the hash maps: chains of entries, which stand in the bucket of their hash by
/// remainder.
///
/// It grows to `capacity * 2 + 1` when a new entry meets a size at the threshold, and puts new
/// entries at the front of their chain. Growing walks the buckets from the last to the first and
/// each chain from its head, so that chains turn round.
///
/// An `Entry` has a `hash` and a `next`, which is a `Link`: a pointer that owns an entry. What is
/// taken out is handed to the caller, so that it ends when the table is in order.
template <class Entry, class Link>
class ChainedTable {
public:
    static constexpr int DEFAULT_CAPACITY = 101;
    static constexpr float DEFAULT_LOAD = 0.75f;

    /// Requires: a capacity above 0. Kept: it is not looked at, and with 0 the first look-up
    /// divides by it.
    /// @throws std::bad_alloc, for a negative capacity too.
    ChainedTable(int capacity, float load) : load_(load) { allocTable(capacity); }
    ChainedTable(const ChainedTable&) = delete;
    ChainedTable& operator=(const ChainedTable&) = delete;
    ~ChainedTable() { release(takeAll()); }

    float getLoad() const noexcept { return load_; }
    int getSize() const noexcept { return size_; }
    int getCapacity() const noexcept { return capacity_; }
    /// The first entry of a bucket, or null.
    Entry* getHead(int bucket) const noexcept { return headOf(bucket).get(); }

    /// The entry with that hash for which `matches` is true, or null.
    template <class Matches>
    Entry* find(std::uint32_t hash, Matches matches) const {
        Entry* entry = chainOf(hash).get();
        while (entry != nullptr && !(entry->hash == hash && matches(*entry))) {
            entry = entry->next.get();
        }
        return entry;
    }

    /// Puts a new entry in, growing the table first where it is due.
    /// @throws std::bad_alloc, with the table as it was.
    void insert(Link entry) {
        if (size_ >= threshold_) {
            rehash();
        }
        pushFront(std::move(entry));
        ++size_;
    }

    /// Takes an entry out. Requires: it is in the table.
    Link remove(const Entry* entry) noexcept {
        Link* link = &chainOf(entry->hash);
        while (link->get() != entry) {
            link = &(*link)->next;
        }
        Link taken = std::move(*link);
        *link = std::move(taken->next);
        --size_;
        return taken;
    }

    /// Takes all entries out, as one chain. Kept: the size stays, as callers know it from `clear`.
    Link takeAll() noexcept {
        Link all;
        for (int i = 0; i < capacity_; ++i) {
            Link entry = std::move(headOf(i));
            while (entry != nullptr) {
                Link rest = std::move(entry->next);
                entry->next = std::move(all);
                all = std::move(entry);
                entry = std::move(rest);
            }
        }
        return all;
    }

    /// Ends a chain entry by entry: a long one must not recurse.
    static void release(Link chain) noexcept {
        while (chain != nullptr) {
            Link rest = std::move(chain->next);
            chain = std::move(rest);
        }
    }

private:
    Link& headOf(int bucket) const noexcept { return table_[static_cast<std::size_t>(bucket)]; }
    Link& chainOf(std::uint32_t hash) const noexcept {
        return table_[hash % static_cast<std::uint32_t>(capacity_)];
    }

    void pushFront(Link entry) noexcept {
        Link& head = chainOf(entry->hash);
        entry->next = std::move(head);
        head = std::move(entry);
    }

    void allocTable(int capacity) {
        if (capacity < 0) {
            throw std::bad_alloc();
        }
        table_ = std::make_unique<Link[]>(static_cast<std::size_t>(capacity));
        capacity_ = capacity;
        threshold_ = thresholdOf(capacity);
    }

    /// The product of capacity and load. Where that is no `int`, the table never grows.
    int thresholdOf(int capacity) const noexcept {
        constexpr auto beyond = static_cast<float>(std::numeric_limits<int>::max());
        const float product = static_cast<float>(capacity) * load_;
        return product > -beyond && product < beyond ? static_cast<int>(product)
                                                     : std::numeric_limits<int>::max();
    }

    void rehash() {
        if (capacity_ > (std::numeric_limits<int>::max() - 1) / 2) {
            throw std::bad_alloc();
        }
        const int oldCapacity = capacity_;
        auto old = std::make_unique<Link[]>(static_cast<std::size_t>(oldCapacity) * 2 + 1);
        old.swap(table_);
        capacity_ = oldCapacity * 2 + 1;
        threshold_ = thresholdOf(capacity_);
        for (int i = oldCapacity - 1; i >= 0; --i) {
            Link entry = std::move(old[static_cast<std::size_t>(i)]);
            while (entry != nullptr) {
                Link rest = std::move(entry->next);
                pushFront(std::move(entry));
                entry = std::move(rest);
            }
        }
    }

    float load_;
    int size_ = 0;
    int capacity_ = 0;
    int threshold_ = 0;
    std::unique_ptr<Link[]> table_;
};

} // namespace qv::collections::detail
