// Splits the words behind a verb into options and plain words.
#ifndef ZRTOOL_ARGUMENTS_H
#define ZRTOOL_ARGUMENTS_H

#include <string>
#include <vector>

namespace zrtool {

struct OptionRule {
    const char *name; // as written, "--depth"
    bool takesValue;  // the next word, or what stands behind "="
};

// Options may stand anywhere before a "--". A word with one dash that no rule names is a plain word, so that a negative
// number needs no care; an unknown word with two dashes is refused. Every fault is a Failure with BadUsage.
class Arguments {
public:
    Arguments(const std::vector<std::string> &words, const std::vector<OptionRule> &rules);

    const std::vector<std::string> &Words() const { return m_words; }
    // Refuses any other number of plain words than the one asked for.
    void Expect(std::size_t count) const;
    bool Has(const std::string &name) const;
    // All values given for an option, in order.
    std::vector<std::string> All(const std::string &name) const;
    // The value of an option that may be given once, or `otherwise`.
    std::string One(const std::string &name, const std::string &otherwise) const;
    // The same as a number from 0 up; -1 when the option is absent.
    long Number(const std::string &name) const;

private:
    struct Given {
        std::string name;
        std::string value;
    };

    std::vector<std::string> m_words;
    std::vector<Given> m_given;
};

} // namespace zrtool

#endif
