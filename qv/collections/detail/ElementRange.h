#pragma once

#include "qv/collections/detail/Elements.h"
#include "qv/collections/qvcom/Iterator.h"

#include <cstddef>
#include <iterator>

namespace qv::collections::detail {

/// A walk in the form that the language's `for` wants: it stands at an element and holds it.
///
/// Behind it is a walk of the collection, with all its failures. An element that is null or no `T`
/// throws CastFailedException when the walk reaches it.
template <class T>
class ElementWalk {
public:
    using value_type = std::remove_const_t<T>;
    using difference_type = std::ptrdiff_t;
    using reference = T&;
    using pointer = T*;
    using iterator_category = std::input_iterator_tag;

    explicit ElementWalk(Reference<qvcom::ConstIterator> walk) : walk_(std::move(walk)) { ++*this; }

    T& operator*() const noexcept { return *element_; }
    T* operator->() const noexcept { return element_; }
    ElementWalk& operator++() {
        element_ = nullptr; // let go of it before the next: it may be the last to hold it
        if (walk_->hasNext()) {
            element_ = castHeld<T>(walk_->next());
            if (element_.get() == nullptr) {
                throwForeignElement();
            }
        }
        return *this;
    }
    void operator++(int) { ++*this; }
    /// True when the walk stands behind the last element.
    friend bool operator==(const ElementWalk& walk, std::default_sentinel_t) noexcept {
        return walk.element_.get() == nullptr;
    }

private:
    Reference<qvcom::ConstIterator> walk_;
    Reference<T> element_;
};

} // namespace qv::collections::detail
