#include "qv/util/PathNormalizer.h"

#include "qv/Exceptions.h"
#include "qv/util/BufferLocks.h"

#include <vector>

namespace qv::util {

PathNormalizer::PathNormalizer(SLASH_TYPE type) { setSlashType(type); }

void PathNormalizer::setSlashType(SLASH_TYPE type) {
    switch (type) {
    case SLASH_NATIVE:
    case SLASH_BACK:
        slash_ = u'\\';
        return;
    case SLASH_FORWARD:
        slash_ = u'/';
        return;
    }
    throw Exception(u"Invalid slash type specified.");
}

String PathNormalizer::normalize(const String& text) {
    const BufferReadLock<char16_t> lock(text);
    inputLength_ = text.getLength();
    std::vector<char16_t> output(static_cast<std::size_t>(inputLength_) + 2);
    input_ = lock.getData();
    output_ = output.data();
    outputLength_ = 0;
    state_ = STATE_START;
    for (inputIndex_ = 0; inputIndex_ <= inputLength_; ++inputIndex_) {
        transition(nextState());
        if (state_ == STATE_NAME) {
            write(input_[inputIndex_]);
        }
    }
    return String(output_, outputLength_);
}

/// The table of the machine: a row for each state, a column for each kind of unit.
PathNormalizer::STATE PathNormalizer::nextState() const {
    enum Kind { Dot, Separator, Other, Terminator };
    static constexpr STATE next[][4] = {
        {STATE_LEAD_DOT, STATE_SLASH, STATE_NAME, STATE_END},
        {STATE_NAME, STATE_SLASH, STATE_NAME, STATE_END},
        {STATE_SLASH_DOT, STATE_SLASH, STATE_NAME, STATE_END},
        {STATE_SLASH_DOT_DOT, STATE_SLASH, STATE_NAME, STATE_END},
        {STATE_NAME, STATE_SLASH, STATE_NAME, STATE_END},
        {STATE_LEAD_DOT_DOT, STATE_LEAD_DOT_SLASH, STATE_NAME, STATE_END},
        {STATE_LEAD_DOT, STATE_LEAD_DOT_SLASH, STATE_NAME, STATE_END},
        {STATE_NAME, STATE_LEAD_DOT_DOT_SLASH, STATE_NAME, STATE_END},
        {STATE_LEAD_DOT, STATE_LEAD_DOT_DOT_SLASH, STATE_NAME, STATE_END},
    };
    const auto kind = [this] {
        if (inputIndex_ == inputLength_) {
            return Terminator;
        }
        switch (input_[inputIndex_]) {
        case u'.':
            return Dot;
        case u'/':
        case u'\\':
            return Separator;
        default:
            return Other;
        }
    };
    return next[state_][kind()];
}

/// What a change of state writes; changes that are not listed write nothing.
void PathNormalizer::transition(STATE next) {
    const auto change = [](STATE from, STATE to) { return from * 16 + to; };
    switch (change(state_, next)) {
    case change(STATE_SLASH, STATE_NAME):
    case change(STATE_SLASH, STATE_END):
    case change(STATE_SLASH_DOT, STATE_END):
        write(slash_);
        break;
    case change(STATE_SLASH_DOT, STATE_NAME):
        write(slash_);
        write(u'.');
        break;
    case change(STATE_SLASH_DOT_DOT, STATE_NAME):
        write(slash_);
        write(u'.');
        write(u'.');
        break;
    case change(STATE_LEAD_DOT, STATE_NAME):
        write(u'.');
        break;
    case change(STATE_LEAD_DOT_DOT, STATE_NAME):
    case change(STATE_LEAD_DOT_DOT, STATE_END):
        write(u'.');
        write(u'.');
        break;
    case change(STATE_LEAD_DOT_DOT, STATE_LEAD_DOT_DOT_SLASH):
        write(u'.');
        write(u'.');
        write(slash_);
        break;
    case change(STATE_LEAD_DOT_SLASH, STATE_END):
        write(u'.');
        write(slash_);
        break;
    case change(STATE_SLASH_DOT_DOT, STATE_SLASH):
        state_ = pop();
        return;
    case change(STATE_SLASH_DOT_DOT, STATE_END):
        cut();
        break;
    case change(STATE_LEAD_DOT, STATE_END):
        finishLeadDot();
        break;
    default:
        break;
    }
    state_ = next;
}

/// Takes the last component back, its separator included. @return the state that this leaves.
PathNormalizer::STATE PathNormalizer::pop() {
    while (outputLength_ > 0) {
        if (output_[--outputLength_] == slash_) {
            return outputLength_ == 0 ? STATE_START : STATE_SLASH;
        }
    }
    return STATE_START;
}

/// Takes the last component back and leaves its separator.
void PathNormalizer::cut() {
    while (outputLength_ > 0 && output_[outputLength_ - 1] != slash_) {
        --outputLength_;
    }
}

void PathNormalizer::finishLeadDot() {
    if (inputIndex_ == 1) {
        write(u'.');
    } else if (outputLength_ == 0) {
        write(u'.');
        write(slash_);
    }
}

} // namespace qv::util
