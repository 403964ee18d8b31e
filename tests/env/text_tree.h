// Trees of the environment as plain values, for tests that compare what was read and written.
#ifndef ZR_TESTS_ENV_TEXT_TREE_H
#define ZR_TESTS_ENV_TEXT_TREE_H

#include <optional>
#include <string>
#include <vector>

#include <zrclb/env.hpp>

namespace text_test {

struct Node {
    enum Kind {
        Data,
        Block,
        Section
    } kind = Data;
    std::optional<std::string> name;
    std::optional<std::string> value; // of a data element
    std::vector<Node> children;       // of a block or section

    bool operator==(const Node &) const = default;
};

using Tree = std::vector<Node>; // the sections

inline std::optional<std::string> TextOf(const char *text) {
    return text ? std::optional<std::string>(text) : std::nullopt;
}

// Follows the nesting by recursion: for trees of test size only.
inline Node NodeOf(Zr::CZrEnvElement *element) {
    Node node;
    node.name = TextOf(element->GetName());
    if (Zr::CZrEnvDataElement *data = element->ToEnvDataElement()) {
        node.value = TextOf(data->GetString());
        return node;
    }
    node.kind = element->ToEnvSection() ? Node::Section : Node::Block;
    Zr::CZrEnvBlock *block = element->ToEnvBlock();
    for (Zr::CZrEnvElement *child = block->GetFirstElement(); child; child = block->GetNextElement(child)) {
        if (child->GetParent() != block)
            node.name = "(a child with a wrong parent)";
        node.children.push_back(NodeOf(child));
    }
    if (block->GetElemCount() != node.children.size())
        node.name = "(a block with a wrong count)";
    return node;
}

inline Tree TreeOf(Zr::CZrEnv &env) {
    Tree tree;
    for (Zr::CZrEnvSection *section = env.GetFirstSection(); section; section = env.GetNextSection(section))
        tree.push_back(NodeOf(section));
    return tree;
}

inline Node Data(std::string name, std::string value) {
    return {Node::Data, std::move(name), std::move(value), {}};
}
inline Node Block(std::string name, std::vector<Node> children) {
    return {Node::Block, std::move(name), std::nullopt, std::move(children)};
}
inline Node Section(std::string name, std::vector<Node> children) {
    return {Node::Section, std::move(name), std::nullopt, std::move(children)};
}

inline void Describe(const Node &node, const std::string &indent, std::string &out) {
    static const char *const kinds[] = {"data", "block", "section"};
    out += indent + kinds[node.kind] + " <" + node.name.value_or("(null)") + ">";
    if (node.kind == Node::Data)
        out += " = <" + node.value.value_or("(null)") + ">";
    out += "\n";
    for (const Node &child : node.children)
        Describe(child, indent + "  ", out);
}

// What a failed comparison prints.
inline void PrintTo(const Node &node, std::ostream *stream) {
    std::string text;
    Describe(node, "\n", text);
    *stream << text;
}

} // namespace text_test

#endif
