// Splits the words behind a verb into options and plain words.
#include "arguments.h"

#include <algorithm>

#include "session.h"

namespace zrtool {

namespace {

const OptionRule *FindRule(const std::vector<OptionRule> &rules, const std::string &name) {
    const auto found =
        std::find_if(rules.begin(), rules.end(), [&](const OptionRule &rule) { return name == rule.name; });
    return found == rules.end() ? nullptr : &*found;
}

} // namespace

Arguments::Arguments(const std::vector<std::string> &words, const std::vector<OptionRule> &rules) {
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string &word = words[i];
        if (word == "--") {
            m_words.insert(m_words.end(), words.begin() + static_cast<std::ptrdiff_t>(i) + 1, words.end());
            return;
        }
        const bool isLong = word.starts_with("--");
        const std::size_t equal = isLong ? word.find('=') : std::string::npos;
        const std::string name = word.substr(0, equal);
        const OptionRule *rule = FindRule(rules, name);
        if (rule == nullptr) {
            if (isLong)
                throw Failure(BadUsage, "unknown option " + name);
            m_words.push_back(word);
        } else if (equal != std::string::npos) {
            if (!rule->takesValue)
                throw Failure(BadUsage, "option " + name + " takes no value");
            m_given.push_back({name, word.substr(equal + 1)});
        } else if (!rule->takesValue) {
            m_given.push_back({name, ""});
        } else if (++i < words.size()) {
            m_given.push_back({name, words[i]});
        } else {
            throw Failure(BadUsage, "option " + name + " needs a value");
        }
    }
}

void Arguments::Expect(std::size_t count) const {
    if (m_words.size() < count)
        throw Failure(BadUsage, "too few words");
    if (m_words.size() > count)
        throw Failure(BadUsage, "one word too many: '" + m_words[count] + "'");
}

bool Arguments::Has(const std::string &name) const {
    return !All(name).empty();
}

std::vector<std::string> Arguments::All(const std::string &name) const {
    std::vector<std::string> values;
    for (const Given &given : m_given) {
        if (given.name == name)
            values.push_back(given.value);
    }
    return values;
}

std::string Arguments::One(const std::string &name, const std::string &otherwise) const {
    const std::vector<std::string> values = All(name);
    if (values.size() > 1)
        throw Failure(BadUsage, "option " + name + " is given twice");
    return values.empty() ? otherwise : values.front();
}

long Arguments::Number(const std::string &name) const {
    if (!Has(name))
        return -1;
    const std::string text = One(name, "");
    if (text.empty() || text.size() > 9 || text.find_first_not_of("0123456789") != std::string::npos)
        throw Failure(BadUsage, "option " + name + " needs a number from 0 to 999999999");
    return std::stol(text);
}

} // namespace zrtool
