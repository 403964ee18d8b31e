// One made-up model in several notations.
#include "model_text.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <random>
#include <set>

namespace bench {

namespace {

class Maker {
public:
    explicit Maker(int sections) : m_Sections(sections) {}

    ModelText Make() {
        const std::vector<std::string> sectionNames = Words(static_cast<std::size_t>(m_Sections), 6, 12);
        m_LeafNames = Words(2000, 6, 14);
        m_BlockNames = Words(400, 5, 10);
        m_Model.env = "__ZR_ENV_READ_MODE__=NOT_WRAPPED\r\n";
        m_Model.xml = "<model>\n";
        for (const std::string &section : sectionNames) {
            m_Path = {section};
            m_Model.env += "[" + section + "]\r\n";
            m_Model.xml += "<" + section + ">\n";
            m_Model.info += section + "\n{\n";
            std::set<std::string> used;
            for (int i = 0; i < 20; ++i)
                AddTopBlock(i, used);
            m_Model.xml += "</" + section + ">\n";
            m_Model.info += "}\n";
        }
        m_Model.xml += "</model>\n";
        std::shuffle(m_Model.targets.begin(), m_Model.targets.end(), m_Random);
        if (m_Model.targets.size() > 100000)
            m_Model.targets.resize(100000);
        return std::move(m_Model);
    }

private:
    double Real(double from, double to) { return std::uniform_real_distribution<double>(from, to)(m_Random); }
    std::size_t Whole(std::size_t from, std::size_t to) {
        return std::uniform_int_distribution<std::size_t>(from, to)(m_Random);
    }
    char OneOf(const std::string &set) { return set[Whole(0, set.size() - 1)]; }

    std::string Word(std::size_t least, std::size_t most) {
        std::string word(1, OneOf("abcdefghijklmnopqrstuvwxyz"));
        for (std::size_t length = Whole(least, most); word.size() < length;)
            word += OneOf("abcdefghijklmnopqrstuvwxyz0123456789");
        return word;
    }

    std::vector<std::string> Words(std::size_t count, std::size_t least, std::size_t most) {
        std::vector<std::string> words;
        for (std::set<std::string> seen; words.size() < count;)
            if (std::string word = Word(least, most); seen.insert(word).second)
                words.push_back(word);
        return words;
    }

    std::string Fresh(const std::vector<std::string> &from, std::set<std::string> &used) {
        for (;;)
            if (const std::string &name = from[Whole(0, from.size() - 1)]; used.insert(name).second)
                return name;
    }

    static std::string Fixed(const char *format, double value) {
        char text[64];
        std::snprintf(text, sizeof text, format, value);
        return text;
    }

    void AddTopBlock(int number, std::set<std::string> &used) {
        const std::string name = Fresh(m_BlockNames, used);
        if (number % 5 == 4)
            AddBlock(name, {25, 15, 10}, 0);
        else
            AddBlock(name, {50}, 0);
    }

    // The leaves of one block for each number in `counts`, each block in the one before.
    void AddBlock(const std::string &name, const std::vector<int> &counts, std::size_t level) {
        const std::string indent(2 * level + 2, ' ');
        m_Path.push_back(name);
        m_Model.env += indent + name + " ={\r\n";
        m_Model.xml += indent + "<" + name + ">\n";
        m_Model.info += indent + name + "\n" + indent + "{\n";
        m_Model.key_file += "[";
        for (std::size_t i = 0; i < m_Path.size(); ++i)
            m_Model.key_file += (i ? "/" : "") + m_Path[i];
        m_Model.key_file += "]\n";
        std::set<std::string> used(m_BlockNames.begin(), m_BlockNames.end());
        for (int i = 0; i < counts[level]; ++i)
            AddLeaf(Fresh(m_LeafNames, used), indent + "  ");
        if (level + 1 < counts.size())
            AddBlock(m_BlockNames[Whole(0, m_BlockNames.size() - 1)], counts, level + 1);
        m_Model.env += indent + "}\r\n";
        m_Model.xml += indent + "</" + name + ">\n";
        m_Model.info += indent + "}\n";
        m_Path.pop_back();
    }

    void AddLeaf(const std::string &name, const std::string &indent) {
        const double kind = Real(0, 1);
        std::string value;
        bool quoted = false;
        if (kind < 0.4) {
            value = Fixed("%.10f", (Real(0, 3) < 2 ? 1 : -1) * std::pow(10.0, Real(0, 4)));
            m_Model.targets.push_back({m_Path, std::strtod(value.c_str(), nullptr)});
            m_Model.targets.back().steps.push_back(name);
        } else if (kind < 0.7) {
            value = Fixed("%.0f", (Real(0, 4) < 3 ? 1 : -1) * std::floor(std::pow(10.0, Real(0, 6))));
        } else if (kind < 0.9) {
            quoted = true;
            value = OneOf("abcdefghijklmnopqrstuvwxyz");
            for (std::size_t length = Whole(10, 40); value.size() + 1 < length;)
                value += OneOf("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789   _-");
            value += OneOf("abcdefghijklmnopqrstuvwxyz");
        } else {
            for (int i = 0; i < 8; ++i)
                value += (i ? "," : "") + Fixed("%.4f", std::pow(10.0, Real(-1, 3)));
        }
        m_Model.env += indent + name + " =" + value + "\r\n";
        m_Model.xml += indent + "<" + name + ">" + value + "</" + name + ">\n";
        m_Model.info += indent + name + " " + (quoted ? "\"" + value + "\"" : value) + "\n";
        m_Model.key_file += name + "=" + value + "\n";
        ++m_Model.leaves;
    }

    int m_Sections;
    std::mt19937 m_Random{12345};
    std::vector<std::string> m_LeafNames;
    std::vector<std::string> m_BlockNames;
    std::vector<std::string> m_Path;
    ModelText m_Model;
};

} // namespace

ModelText MakeModel(int sections) {
    return Maker(sections).Make();
}

} // namespace bench
