#pragma once

#include "qv/Reference.h"
#include "qv/String.h"

#include <map>
#include <vector>

namespace qv::util {

class OptionDefinition;

/// Turns one command line into an ordered list of elements: options, each with a name and values,
/// and parameters, each with one value.
///
/// An option opens with `-` or `/`. Values stand behind `=`, separated by commas; an option that
/// was defined with a count of values also takes that many tokens behind it. Quotes protect blanks
/// at the head of a token and at the head of a value in a list behind `=`. Parsing itself never
/// fails.
///
/// Kept: quotes are honoured only directly behind the single blank that ended the token before; a
/// token that opens an option where a value was expected is lost, with all that stands behind its
/// `=`; quotes do not protect a switch character.
///
/// Thread safety: const-safe.
class QV_API CommandLineParser : public Object {
public:
    /// An option or a parameter of the line. The name of a parameter is empty.
    class QV_API Element : public Object {
    public:
        Element(const Element&) = delete;
        Element& operator=(const Element&) = delete;

        /// Without switch characters.
        const String& getName() const noexcept { return name_; }
        /// The element's index in the line; -1 for a definition that answers for an absent option.
        int getPosition() const noexcept { return position_; }
        int getValueCount() const noexcept { return static_cast<int>(values_.size()); }
        /// Borrows: the value, as long as the element. @throws Exception "Invalid vector index", as
        /// the two below.
        const String& getValueString(int index) const;
        /// Reads the number at the head of a value, with the radix that its prefix says.
        /// @throws Exception "Unable to convert string to long" where there is none.
        std::int32_t getValueLong(int index) const;
        /// @throws Exception "Unable to convert string to double" where there is none.
        double getValueDouble(int index) const;

    protected:
        friend class CommandLineParser;

        Element(const String& name, int position);
        ~Element() noexcept override;

        void addValue(const String& value) { values_.push_back(value); }
        /// Takes the other's values in place of its own.
        void copyValues(const Element& other);

    private:
        String name_;
        std::vector<String> values_;
        int position_;
    };

    /// The units that open an option.
    static const char16_t m_switchChars[];

    /// Nothing parsed, nothing defined, case counts.
    CommandLineParser();
    CommandLineParser(const CommandLineParser&) = delete;
    CommandLineParser& operator=(const CommandLineParser&) = delete;
    ~CommandLineParser() noexcept override;

    /// Defines an option, in place of an earlier definition of that name. `name` has no switch
    /// character. `defaults` are values separated by commas or blanks; null means that there are
    /// none.
    void defineOption(const char16_t* name, int valueCount, const char16_t* defaults = nullptr);
    /// Chooses whether look-ups tell upper from lower case, before or after parsing.
    void setIgnoreCase(bool ignore) noexcept { ignoreCase_ = ignore; }

    /// Drops the results of an earlier call and keeps the definitions. Null is an empty text.
    void parse(const char16_t* text);
    void parse(const String& text);
    /// Joins the arguments, decoded in the default encoding, into one text; one with a blank is
    /// quoted. What cannot be decoded becomes U+FFFD.
    void parse(int argc, char** const argv);

    /// How many options and parameters the line has.
    int getElementCount() const noexcept { return static_cast<int>(elements_.size()); }
    /// @throws Exception "Invalid vector index".
    Reference<Element> getElement(int index) const;
    /// How many parameters the line has.
    int getParameterCount() const noexcept { return static_cast<int>(parameters_.size()); }
    /// A parameter; `index` counts parameters alone. @throws Exception "Invalid vector index".
    Reference<Element> getParameter(int index) const;

    /// True for an option of the line; definitions do not count.
    bool isPresent(const char16_t* name) const;
    /// The last option of that name, else its definition if it has defaults, else null.
    Reference<Element> getOption(const char16_t* name) const;
    /// Borrows: the value, until the next parse. Requires: `getOption(name)` is not null, here and
    /// below. They throw as the element's own.
    const String& getValueString(const char16_t* name, int index = 0) const;
    std::int32_t getValueLong(const char16_t* name, int index = 0) const;
    double getValueDouble(const char16_t* name, int index = 0) const;

protected:
    /// The definition of a name, else null.
    Reference<OptionDefinition> getDefinition(const String& name) const;
    /// Drops all results of parsing.
    void reset();

private:
    struct FoldedOrder {
        bool operator()(const String& left, const String& right) const {
            return left.compare(right, true) < 0;
        }
    };
    template <class Value>
    struct NameMaps {
        void put(const String& name, const Value& value) {
            exact.insert_or_assign(name, value);
            folded.insert_or_assign(name, value);
        }
        const Value* find(const String& name, bool ignoreCase) const {
            return ignoreCase ? find(folded, name) : find(exact, name);
        }
        template <class Map>
        static const Value* find(const Map& map, const String& name) {
            const auto found = map.find(name);
            return found == map.end() ? nullptr : &found->second;
        }

        std::map<String, Value> exact;
        std::map<String, Value, FoldedOrder> folded;
    };

    void parseUnits(char16_t* text);
    void parseOption(char16_t* token, char16_t*& cursor, int index);
    void takeFollowingValues(Element& element, char16_t*& cursor);
    void takeListedValues(Element& element, char16_t* list);

    std::vector<Reference<Element>> elements_;
    NameMaps<Reference<OptionDefinition>> definitions_;
    NameMaps<int> optionPositions_;
    std::vector<int> parameters_;
    bool ignoreCase_ = false;
};

/// What an option may look like: how many values it takes, and which it has where the line gives
/// none.
class QV_API OptionDefinition : public CommandLineParser::Element {
public:
    /// How many tokens behind the option are its values.
    int getExpectedValueCount() const noexcept { return valueCount_; }
    /// True where the definition answers for an absent option.
    bool hasDefaults() const noexcept { return hasDefaults_; }

private:
    friend class CommandLineParser;

    OptionDefinition(const String& name, int valueCount, bool hasDefaults);
    ~OptionDefinition() noexcept override;

    int valueCount_;
    bool hasDefaults_;
};

} // namespace qv::util
