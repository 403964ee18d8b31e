// One made-up model in several notations.
#include "model_text.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>
#include <random>
#include <set>
#include <sstream>

namespace bench {

namespace {

class Maker {
public:
    Maker(int sections, ModelParts parts) : m_Sections(sections), m_Parts(parts) {}

    ModelText Make() {
        const std::vector<std::string> sectionNames = Words(static_cast<std::size_t>(m_Sections), 6, 12);
        m_LeafNames = Words(2000, 6, 14);
        m_BlockNames = Words(400, 5, 10);
        m_Model.env = "__ZR_ENV_READ_MODE__=NOT_WRAPPED\r\n";
        m_Model.xml = "<model>\n";
        m_Model.json = "{";
        for (const std::string &section : sectionNames) {
            m_Path = {section};
            m_Model.env += "[" + section + "]\r\n";
            m_Model.xml += "<" + section + ">\n";
            m_Model.info += section + "\n{\n";
            m_Model.json += Comma() + "\n\"" + section + "\": {";
            std::set<std::string> used;
            m_Bearers.clear();
            m_LastBlock.clear();
            for (int i = 0; i < 20; ++i)
                AddTopBlock(i, used);
            KeepHidden();
            m_Model.xml += "</" + section + ">\n";
            m_Model.info += "}\n";
            m_Model.json += "\n}";
            if (m_Parts == ModelParts::OwnText)
                DropPeers();
        }
        m_Model.xml += "</model>\n";
        m_Model.json += "\n}\n";
        std::shuffle(m_Model.targets.begin(), m_Model.targets.end(), m_Random);
        if (m_Model.targets.size() > MostTargets)
            m_Model.targets.resize(MostTargets);
        std::shuffle(m_Model.hidden.begin(), m_Model.hidden.end(), m_Random);
        return std::move(m_Model);
    }

private:
    static constexpr std::size_t MostTargets = 100000;

    std::string Comma() const { return m_Model.json.back() == '{' ? "" : ","; }

    // What was not asked for does not pile up.
    void DropPeers() {
        m_Model.xml.clear();
        m_Model.info.clear();
        m_Model.key_file.clear();
        m_Model.json = "{";
        m_Model.hidden.clear();
    }

    // Of the doubles right in the last block, those that a search by name finds nowhere else in the section.
    void KeepHidden() {
        for (Target &target : m_LastBlock)
            if (m_Bearers[target.steps.back()] == 1)
                m_Model.hidden.push_back(std::move(target));
    }

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
        m_bLastBlock = number == 19;
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
        m_Model.json += Comma() + "\n" + indent + "\"" + name + "\": {";
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
        m_Model.json += "\n" + indent + "}";
        m_Path.pop_back();
    }

    void AddLeaf(const std::string &name, const std::string &indent) {
        const double chance = Real(0, 1);
        Leaf leaf{m_Path, Leaf::Doubles, "", {}};
        leaf.steps.push_back(name);
        if (chance < 0.4) {
            leaf.kind = Leaf::Double;
            leaf.text = Fixed("%.10f", (Real(0, 3) < 2 ? 1 : -1) * std::pow(10.0, Real(0, 4)));
        } else if (chance < 0.7) {
            leaf.kind = Leaf::Long;
            leaf.text = Fixed("%.0f", (Real(0, 4) < 3 ? 1 : -1) * std::floor(std::pow(10.0, Real(0, 6))));
        } else if (chance < 0.9) {
            leaf.kind = Leaf::Text;
            leaf.text = OneOf("abcdefghijklmnopqrstuvwxyz");
            for (std::size_t length = Whole(10, 40); leaf.text.size() + 1 < length;)
                leaf.text += OneOf("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789   _-");
            leaf.text += OneOf("abcdefghijklmnopqrstuvwxyz");
        } else {
            for (int i = 0; i < 8; ++i)
                leaf.text += (i ? "," : "") + Fixed("%.4f", std::pow(10.0, Real(-1, 3)));
        }
        WriteLeaf(leaf, indent);
        KeepLeaf(leaf);
        ++m_Model.leaves;
    }

    void WriteLeaf(const Leaf &leaf, const std::string &indent) {
        const std::string &name = leaf.steps.back();
        const std::string &value = leaf.text;
        const std::string quoted = "\"" + value + "\"";
        m_Model.env += indent + name + " =" + value + "\r\n";
        m_Model.xml += indent + "<" + name + ">" + value + "</" + name + ">\n";
        m_Model.info += indent + name + " " + (leaf.kind == Leaf::Text ? quoted : value) + "\n";
        m_Model.key_file += name + "=" + value + "\n";
        const std::string plain = leaf.kind == Leaf::Doubles ? "[" + value + "]" : value;
        m_Model.json += Comma() + "\n" + indent + "\"" + name + "\": " + (leaf.kind == Leaf::Text ? quoted : plain);
    }

    void KeepLeaf(Leaf &leaf) {
        ++m_Bearers[leaf.steps.back()];
        if (leaf.kind == Leaf::Double) {
            const Target target{leaf.steps, std::strtod(leaf.text.c_str(), nullptr)};
            KeepTarget(target);
            if (m_bLastBlock && leaf.steps.size() == 3)
                m_LastBlock.push_back(target);
        }
        if (m_Parts != ModelParts::AllAndValues)
            return;
        std::istringstream list(leaf.kind == Leaf::Text ? "" : leaf.text);
        for (std::string item; std::getline(list, item, ',');)
            leaf.values.push_back(std::strtod(item.c_str(), nullptr));
        m_Model.values.push_back(std::move(leaf));
    }

    // Of a large model only every n-th double is kept to be shuffled, some more than are wanted.
    void KeepTarget(const Target &target) {
        const std::size_t step = std::max<std::size_t>(1, static_cast<std::size_t>(m_Sections) / 1000);
        if (m_uDoubles++ % step == 0)
            m_Model.targets.push_back(target);
    }

    int m_Sections;
    ModelParts m_Parts;
    std::mt19937 m_Random{12345};
    std::vector<std::string> m_LeafNames;
    std::vector<std::string> m_BlockNames;
    std::vector<std::string> m_Path;
    std::map<std::string, int> m_Bearers; // of each leaf name, in the section that is made
    std::vector<Target> m_LastBlock;
    bool m_bLastBlock = false;
    std::size_t m_uDoubles = 0;
    ModelText m_Model;
};

} // namespace

ModelText MakeModel(int sections, ModelParts parts) {
    return Maker(sections, parts).Make();
}

ModelText MakeWideBlock(std::size_t leaves) {
    ModelText model;
    model.leaves = leaves;
    model.env = "__ZR_ENV_READ_MODE__=NOT_WRAPPED\r\n[wide]\r\n  block ={\r\n";
    std::mt19937 random{12345};
    for (std::size_t i = 0; i < leaves; ++i) {
        const std::string name = "leaf" + std::to_string(i);
        const double value = std::uniform_real_distribution<double>(-10000, 10000)(random);
        char text[64];
        std::snprintf(text, sizeof text, "%.10f", value);
        model.env += "    " + name + " =" + text + "\r\n";
        model.targets.push_back({{"wide", "block", name}, std::strtod(text, nullptr)});
    }
    model.env += "  }\r\n";
    std::shuffle(model.targets.begin(), model.targets.end(), random);
    model.targets.resize(std::min<std::size_t>(leaves, 100000));
    return model;
}

} // namespace bench
