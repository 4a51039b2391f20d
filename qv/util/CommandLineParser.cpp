#include "qv/util/CommandLineParser.h"

#include "qv/Exceptions.h"
#include "qv/detail/SystemText.h"
#include "qv/util/BufferLocks.h"
#include "qvcore/NumberText.h"
#include "qvcore/Text.h"

#include <cassert>
#include <string>

namespace qv::util {

namespace {

constexpr char16_t blank[] = u" ";
constexpr char16_t comma[] = u",";
constexpr char16_t defaultDelimiters[] = u", ";

bool isOneOf(char16_t unit, const char16_t* set) {
    return unit != 0 && QVStrChrW(set, unit) != nullptr;
}

bool isSwitch(char16_t unit) { return isOneOf(unit, CommandLineParser::m_switchChars); }

/// Takes a token in place; quotes count at its very head. Null if nothing is left.
char16_t* nextToken(char16_t*& cursor, const char16_t* delimiters) {
    if (cursor == nullptr) {
        return nullptr;
    }
    if (cursor[0] != u'"') {
        return QVStrTokW(&cursor, delimiters);
    }
    if (cursor[1] == u'"') {
        char16_t* const token = cursor;
        *token = 0;
        cursor += 2;
        return token;
    }
    char16_t* const token = QVStrTokW(&cursor, u"\"");
    while (cursor != nullptr && isOneOf(*cursor, delimiters)) {
        ++cursor;
    }
    return token;
}

/// Passes one piece of a list behind `=` as `nextToken` takes it: what quotes protect, or else all
/// units up to a comma, which goes along, or a blank. @return false where no piece can follow.
bool passPiece(const char16_t*& unit) {
    const char16_t* const end = *unit == u'"' ? QVStrChrW(unit + 1, u'"') : nullptr;
    if (end != nullptr) {
        const bool empty = end == unit + 1;
        unit = end + 1;
        while (!empty && *unit == u',') {
            ++unit;
        }
        return true;
    }
    while (*unit == u',') {
        ++unit;
    }
    while (*unit != 0 && *unit != u',' && *unit != u' ') {
        ++unit;
    }
    return *unit == u',' && *++unit != 0;
}

/// The blank or terminator that ends an option's token: quotes at the head of a value behind `=`
/// protect blanks up to their end.
char16_t* optionEnd(char16_t* option) {
    const char16_t* unit = option;
    while (*unit != 0 && *unit != u'=' && *unit != u' ') {
        ++unit;
    }
    if (*unit == u'=') {
        ++unit;
        while (passPiece(unit)) {
        }
    }
    return option + (unit - option);
}

/// Takes the next token of the line in place.
char16_t* nextLineToken(char16_t*& cursor) {
    char16_t* start = cursor;
    while (start != nullptr && *start == u' ') {
        ++start;
    }
    if (start == nullptr || !isSwitch(*start)) {
        return nextToken(cursor, blank);
    }
    cursor = optionEnd(start);
    if (*cursor != 0) {
        *cursor++ = 0;
    }
    return start;
}

} // namespace

const char16_t CommandLineParser::m_switchChars[] = u"-/";

// --- Element ---

CommandLineParser::Element::Element(const String& name, int position)
    : name_(name), position_(position) {}

CommandLineParser::Element::~Element() noexcept = default;

void CommandLineParser::Element::copyValues(const Element& other) {
    if (this != &other) {
        values_ = other.values_;
    }
}

const String& CommandLineParser::Element::getValueString(int index) const {
    if (index < 0 || index >= getValueCount()) {
        throw Exception(u"Invalid vector index");
    }
    return values_[static_cast<std::size_t>(index)];
}

std::int32_t CommandLineParser::Element::getValueLong(int index) const {
    const char16_t* const text = getValueString(index).getData();
    const char16_t* end = text;
    const std::int32_t value = QVStrToLW(text, &end, 0);
    if (end == text) {
        throw Exception(u"Unable to convert string to long");
    }
    return value;
}

double CommandLineParser::Element::getValueDouble(int index) const {
    const char16_t* const text = getValueString(index).getData();
    const char16_t* end = text;
    const double value = QVStrToDW(text, &end);
    if (end == text) {
        throw Exception(u"Unable to convert string to double");
    }
    return value;
}

OptionDefinition::OptionDefinition(const String& name, int valueCount, bool hasDefaults)
    : Element(name, -1), valueCount_(valueCount), hasDefaults_(hasDefaults) {}

OptionDefinition::~OptionDefinition() noexcept = default;

// --- Definitions ---

CommandLineParser::CommandLineParser() = default;
CommandLineParser::~CommandLineParser() noexcept = default;

void CommandLineParser::defineOption(const char16_t* name, int valueCount,
                                     const char16_t* defaults) {
    const Reference<OptionDefinition> definition(
        new OptionDefinition(name, valueCount, defaults != nullptr));
    if (defaults != nullptr) {
        std::u16string copy(defaults);
        char16_t* cursor = copy.data();
        while (const char16_t* const value = nextToken(cursor, defaultDelimiters)) {
            definition->addValue(value);
        }
    }
    definitions_.put(name, definition);
}

Reference<OptionDefinition> CommandLineParser::getDefinition(const String& name) const {
    const auto* const found = definitions_.find(name, ignoreCase_);
    return found != nullptr ? *found : nullptr;
}

// --- Parsing ---

void CommandLineParser::parse(const char16_t* text) {
    std::u16string copy(text == nullptr ? u"" : text);
    parseUnits(copy.data());
}

void CommandLineParser::parse(const String& text) {
    std::u16string copy;
    {
        const BufferReadLock<char16_t> lock(text);
        copy.assign(lock.getData(), static_cast<std::size_t>(text.getLength()));
    }
    parseUnits(copy.data());
}

void CommandLineParser::parse(int argc, char** const argv) {
    String text;
    for (int i = 0; i < argc; ++i) {
        const String argument = qv::detail::systemText(argv[i]);
        const bool quoted = argument.indexOf(u' ') >= 0;
        if (quoted) {
            text += u'"';
        }
        text += argument;
        if (quoted) {
            text += u'"';
        }
        text += u' ';
    }
    parse(text);
}

void CommandLineParser::reset() {
    optionPositions_ = {};
    parameters_.clear();
    elements_.clear();
}

void CommandLineParser::parseUnits(char16_t* text) {
    reset();
    char16_t* cursor = text;
    for (int index = 0; char16_t* const token = nextLineToken(cursor); ++index) {
        if (isSwitch(*token)) {
            parseOption(token, cursor, index);
        } else {
            const Reference<Element> parameter(new Element(String(), index));
            parameter->addValue(token);
            elements_.push_back(parameter);
            parameters_.push_back(index);
        }
    }
}

void CommandLineParser::parseOption(char16_t* token, char16_t*& cursor, int index) {
    const char16_t* nameStart = token;
    while (isSwitch(*nameStart)) {
        ++nameStart;
    }
    auto* const equals = const_cast<char16_t*>(QVStrChrW(token, u'='));
    const int nameLength = equals == nullptr ? -1 : static_cast<int>(equals - nameStart);
    const Reference<Element> option(new Element(String(nameStart, nameLength), index));
    if (equals != nullptr) {
        takeListedValues(*option, equals + 1);
    } else {
        takeFollowingValues(*option, cursor);
    }
    elements_.push_back(option);
    optionPositions_.put(option->getName(), index);
}

void CommandLineParser::takeListedValues(Element& element, char16_t* list) {
    while (const char16_t* const value = nextToken(list, comma)) {
        element.addValue(value);
    }
}

void CommandLineParser::takeFollowingValues(Element& element, char16_t*& cursor) {
    const Reference<OptionDefinition> definition = getDefinition(element.getName());
    if (definition == nullptr) {
        return;
    }
    if (cursor == nullptr || *cursor == 0 || isSwitch(*cursor)) {
        element.copyValues(*definition);
        return;
    }
    for (int missing = definition->getExpectedValueCount(); missing > 0; --missing) {
        const char16_t* const value = nextLineToken(cursor);
        if (value == nullptr || isSwitch(*value)) {
            return; // kept: an option is lost here, with what stands behind its `=`
        }
        element.addValue(value);
    }
}

// --- Look-up ---

Reference<CommandLineParser::Element> CommandLineParser::getElement(int index) const {
    if (index < 0 || index >= getElementCount()) {
        throw Exception(u"Invalid vector index");
    }
    return elements_[static_cast<std::size_t>(index)];
}

Reference<CommandLineParser::Element> CommandLineParser::getParameter(int index) const {
    if (index < 0 || index >= getParameterCount()) {
        throw Exception(u"Invalid vector index");
    }
    return getElement(parameters_[static_cast<std::size_t>(index)]);
}

bool CommandLineParser::isPresent(const char16_t* name) const {
    return optionPositions_.find(name, ignoreCase_) != nullptr;
}

Reference<CommandLineParser::Element> CommandLineParser::getOption(const char16_t* name) const {
    if (const int* const position = optionPositions_.find(name, ignoreCase_)) {
        return getElement(*position);
    }
    const Reference<OptionDefinition> definition = getDefinition(name);
    return definition != nullptr && definition->hasDefaults() ? definition : nullptr;
}

const String& CommandLineParser::getValueString(const char16_t* name, int index) const {
    const Reference<Element> option = getOption(name);
    assert(option != nullptr);
    return option->getValueString(index);
}

std::int32_t CommandLineParser::getValueLong(const char16_t* name, int index) const {
    const Reference<Element> option = getOption(name);
    assert(option != nullptr);
    return option->getValueLong(index);
}

double CommandLineParser::getValueDouble(const char16_t* name, int index) const {
    const Reference<Element> option = getOption(name);
    assert(option != nullptr);
    return option->getValueDouble(index);
}

} // namespace qv::util
