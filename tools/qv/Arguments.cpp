#include "Arguments.h"

#include "qvcore/Module.h"
#include "qvcore/NumberText.h"

#include <algorithm>

namespace tool {

using qv::Reference;
using qv::String;
using Element = qv::util::CommandLineParser::Element;

Arguments::Arguments(int argc, char** argv) {
    if (const char16_t* const line = QVModuleGetCommandLine()) {
        parser_.parse(line); // as the system keeps it, so that no character is lost
        programs_ = 1;
    } else {
        parser_.parse(std::max(argc - 1, 0), argv + 1);
    }
}

String Arguments::parameter(int index) const {
    index += programs_;
    return index < parser_.getParameterCount() ? parser_.getParameter(index)->getValueString(0)
                                               : String();
}

void Arguments::check(std::span<const OptionRule> rules, int parameters) const {
    if (parser_.getParameterCount() - programs_ > parameters) {
        throw UsageError();
    }
    int parameter = 0;
    for (int i = 0; i < parser_.getElementCount(); ++i) {
        const Reference<Element> element = parser_.getElement(i);
        if (parameter < parser_.getParameterCount() && parser_.getParameter(parameter) == element) {
            ++parameter;
            continue;
        }
        const auto rule = std::ranges::find_if(rules, [&](const OptionRule& candidate) {
            return element->getName() == candidate.name;
        });
        if (rule == rules.end() || rule->takesValue != (element->getValueCount() > 0)) {
            throw UsageError();
        }
    }
}

bool Arguments::has(const char16_t* name) const { return parser_.isPresent(name); }

std::vector<String> Arguments::texts(const char16_t* name) const {
    std::vector<String> values;
    if (has(name)) {
        const Reference<Element> option = parser_.getOption(name);
        for (int i = 0; i < option->getValueCount(); ++i) {
            values.push_back(option->getValueString(i));
        }
    }
    return values;
}

std::optional<String> Arguments::text(const char16_t* name) const {
    if (!has(name)) {
        return std::nullopt;
    }
    String text;
    const char16_t* separator = u"";
    for (const String& value : texts(name)) {
        text.append(separator).append(value);
        separator = u",";
    }
    return text;
}

String Arguments::requiredText(const char16_t* name) const {
    const std::optional<String> value = text(name);
    if (!value) {
        throw UsageError();
    }
    return *value;
}

std::optional<int> Arguments::number(const char16_t* name) const {
    const std::optional<String> value = text(name);
    if (!value) {
        return std::nullopt;
    }
    const char16_t* end = value->getData();
    const int number = QVStrToLW(end, &end, 10);
    if (value->isEmpty() || end != value->getData() + value->getLength()) {
        throw UsageError();
    }
    return number;
}

std::optional<int> Arguments::count(const char16_t* name) const {
    const std::optional<int> count = number(name);
    if (count && *count < 0) {
        throw UsageError();
    }
    return count;
}

} // namespace tool
