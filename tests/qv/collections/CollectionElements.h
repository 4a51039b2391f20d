#pragma once

#include "qv/Exceptions.h"
#include "qv/String.h"
#include "qv/collections/qvcom/ArrayList.h"
#include "qv/collections/qvcom/LinkedList.h"
#include "qv/util/Comparator.h"
#include "tests/support/CountedObject.h"

#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <typeinfo>
#include <vector>

/// What the tests of the collections put into them, and how they read them.
namespace elements {

using namespace qv;
using namespace qv::collections::qvcom;
using support::CountedObject;

using Element = Reference<IQVUnknown>;

/// The pointer by which an object stands in a collection.
inline IQVUnknown* raw(const Object* object) {
    return static_cast<ComObject*>(const_cast<Object*>(object));
}

inline Reference<String> newText(const char16_t* units) { return make<String>(units); }

/// A new string as an element.
struct Text {
    Text(const char16_t* units) : string(newText(units)) {}
    operator IQVUnknown*() const { return raw(string); }
    Reference<String> string;
};

inline std::u16string show(IQVUnknown* element) {
    if (element == nullptr) {
        return u"null";
    }
    const auto* const string = dynamic_cast<const String*>(element);
    return string == nullptr
               ? u"?"
               : std::u16string(string->getData(), static_cast<std::size_t>(string->getLength()));
}

/// The elements of a walk, with blanks between them.
inline std::u16string show(ConstIterator& walk) {
    std::u16string all;
    while (walk.hasNext()) {
        all += (all.empty() ? u"" : u" ") + show(walk.next());
    }
    return all;
}

inline std::u16string show(const Collection& collection) {
    return show(*collection.createConstIterator());
}

template <class Target>
void fill(Target& target, std::initializer_list<const char16_t*> texts) {
    for (const char16_t* const units : texts) {
        target.add(Text(units));
    }
}

/// A new collection of strings.
template <class Made>
Reference<Made> filled(std::initializer_list<const char16_t*> texts) {
    auto made = make<Made>();
    fill(*made, texts);
    return made;
}

/// A list with nothing of its own but what a list must have. It counts its changes and can refuse.
class SmallList : public AbstractList {
public:
    SmallList() = default;
    explicit SmallList(const IQVComparator* comparator) : AbstractList(comparator) {}
    SmallList(const SmallList& other) : AbstractList(other) {}

    using AbstractList::add;
    using AbstractList::remove;

    bool add(int index, IQVUnknown* element) override {
        if (refuses) {
            return false;
        }
        check(index, getSize() + 1);
        elements_.insert(elements_.begin() + index, Element(element));
        ++modCount_;
        return true;
    }
    Element remove(int index) override {
        check(index, getSize());
        Element removed = elements_[static_cast<std::size_t>(index)];
        elements_.erase(elements_.begin() + index);
        ++modCount_;
        return removed;
    }
    Element get(int index) const override {
        check(index, getSize());
        return elements_[static_cast<std::size_t>(index)];
    }
    Element set(int index, IQVUnknown* element) override {
        check(index, getSize());
        Element old(element);
        old.swap(elements_[static_cast<std::size_t>(index)]);
        ++modCount_;
        return old;
    }
    int getSize() const override { return static_cast<int>(elements_.size()); }
    int changes() const { return modCount_; }

    bool refuses = false;

private:
    static void check(int index, int end) {
        if (index < 0 || index >= end) {
            throw RangeErrorException();
        }
    }

    std::vector<Element> elements_;
};

/// A list that shows how many changes it counted.
template <class List>
struct Counting : List {
    using List::List;
    int changes() const { return this->modCount_; }
    void setChanges(int count) { this->modCount_ = count; }
};

/// Fails with a result from a given call on, or compares in the usual way.
class FailingComparator : public util::Comparator {
public:
    std::int32_t Compare(const IQVUnknown* left, const IQVUnknown* right,
                         std::int32_t* result) noexcept override {
        ++comparisons;
        return failure < 0 ? failure : Comparator::Compare(left, right, result);
    }
    std::int32_t Hash(const IQVUnknown* object, std::uint32_t* result) noexcept override {
        ++hashes;
        return hashFailure < 0 ? hashFailure : Comparator::Hash(object, result);
    }

    std::int32_t failure = 0;
    std::int32_t hashFailure = 0;
    int comparisons = 0;
    int hashes = 0;
};

/// Looks at the first unit of strings only, and notes who is asked: the stored one, then the probe.
class InitialComparator : public util::Comparator {
public:
    std::int32_t Compare(const IQVUnknown* left, const IQVUnknown* right,
                         std::int32_t* result) noexcept override {
        asked.push_back(show(const_cast<IQVUnknown*>(left)) + u"," +
                        show(const_cast<IQVUnknown*>(right)));
        *result = initial(left) - initial(right);
        return 0;
    }
    std::int32_t Hash(const IQVUnknown* object, std::uint32_t* result) noexcept override {
        *result = static_cast<std::uint32_t>(initial(object));
        return 0;
    }

    std::vector<std::u16string> asked;

private:
    static int initial(const IQVUnknown* object) {
        const auto* const string = dynamic_cast<const String*>(object);
        return string == nullptr ? 0 : string->getCharAt(0);
    }
};

/// The result of what `work` throws where it must be exactly a qv::Exception, as a walk whose
/// source was changed throws it.
template <class Work>
void expectModified(Work work) {
    try {
        work();
    } catch (const Exception& exception) {
        EXPECT_EQ(typeid(exception), typeid(Exception));
        EXPECT_TRUE(exception.getDescription().isEmpty());
        return;
    }
    ADD_FAILURE() << "nothing thrown";
}

} // namespace elements
