// The input of targets that build trees: names that meet, texts, null texts; trees to begin with and addresses in them.
#ifndef FUZZ_TREE_INPUT_H
#define FUZZ_TREE_INPUT_H

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include <zrclb/env.hpp>

#include "byte_input.h"
#include "env/reference_reader.h"
#include "env/tree_model.h"

namespace fuzz {

inline void Collect(zr::test::ModelNode &node, std::vector<zr::test::ModelNode *> &nodes) {
    nodes.push_back(&node);
    for (const auto &child : node.children)
        Collect(*child, nodes);
}

class TreeInput : public ByteInput {
public:
    using ByteInput::ByteInput;

    // Up to a zero byte.
    std::string Text() {
        std::string text;
        while (!Empty()) {
            const std::uint8_t byte = Byte();
            if (byte == 0)
                break;
            text += static_cast<char>(byte);
        }
        return text;
    }

    // Mostly one of a few; some of them are refused, or reached by no path. Any other text behind 255.
    zr::test::ModelText Name() {
        static const char *const names[] = {"a",  "b",   "c",   "d",  "ab",       "abcdefgh", "abcdefghi", "2",
                                            "12", "a@2", "a=b", "a]", "\xE4\xFF", "",         " ",         nullptr};
        const std::uint8_t choice = Byte();
        if (choice == 255)
            return Text();
        const std::size_t common = choice % 2 == 0 ? 3 : std::size(names);
        const char *name = names[choice / 2U % common];
        return name ? zr::test::ModelText(name) : std::nullopt;
    }

    // A small number, now and then one off the mark.
    zr_long Number() {
        const std::uint8_t choice = Byte();
        return choice < 250 ? choice % 5 : choice < 253 ? 11 : -1;
    }
};

// What there is at first: nothing, or texts of trees in which most names meet others.
inline const char *FirstText(std::uint8_t choice) {
    static const char *const texts[] = {
        "",
        "[a]\na =1\na =2\nb ={\na =3\nc ={\na =4\nb =5\n}\n}\nc ={\n}\nd =abcdefghijklmnop\n[b]\na =6\n[a]\nb =7\n",
        "[a]\na =\nb =\nc =\nd =\nab =\n2 =\n12 =\nabcdefgh =\nabcdefghi =\na =\nb =\na ={\nb =1\nb =2\n}\n",
        "[a]\na ={\nb ={\nc ={\na ={\nb =1\n}\n}\na =2\n}\nb ={\nc =3\n}\n}\n[b]\nb ={\na =4\n}\na =5\n",
        "[a]\na ={\nb =1\nc =2\n}\nb ={\na ={\nb =3\n}\na ={\nc =4\nb =5\n}\n}\nc ={\na =6\na =7\na =8\n}\na ={\nc =9\n}\n",
    };
    return texts[choice % std::size(texts)];
}

inline std::unique_ptr<zr::test::ModelNode> FromTextNode(const text_test::Node &text) {
    auto node = std::make_unique<zr::test::ModelNode>(static_cast<zr::test::ModelNode::Kind>(text.kind), text.name);
    node->value = text.value;
    for (const text_test::Node &child : text.children)
        node->Append(FromTextNode(child));
    return node;
}

inline void ReadFirstText(zr::test::ModelEnv &model, Zr::CZrEnv &env, std::uint8_t choice) {
    const char *text = FirstText(choice);
    const text_test::ReferenceReader reference(text, false, eEnvReadAuto, "");
    Require(env.ReadString(text, eEnvReadAuto) == Zr::ENV_OK, "first text");
    for (const text_test::Node &section : reference.sections)
        model.sections.push_back(FromTextNode(section));
    Require(Compare(model, env).empty(), "first tree");
}

// All nodes below an environment's sections, or below the root of a view.
inline std::vector<zr::test::ModelNode *> NodesOf(const zr::test::ModelEnv &env) {
    std::vector<zr::test::ModelNode *> nodes;
    for (const auto &node : env.IsSub() && env.root ? env.root->children : env.sections)
        Collect(*node, nodes);
    return nodes;
}

// The steps from the section or root down to a node, of which some can be left out.
struct NodeAddress {
    zr::test::ModelText section;
    std::vector<std::string> steps;

    NodeAddress(const zr::test::ModelEnv &env, const zr::test::ModelNode *node, bool numbered) {
        for (; node != env.root && node->parent; node = node->parent) {
            int number = 1;
            for (const zr::test::ModelNode *child : node->parent->byName) {
                if (child == node)
                    break;
                number += child->name == node->name ? 1 : 0;
            }
            const bool isTold = number > 1 || numbered;
            steps.insert(steps.begin(),
                         node->name.value_or("") + (isTold ? env.delimiter + std::to_string(number) : ""));
        }
        if (!env.IsSub())
            section = node->name;
    }

    zr::test::ModelText Path(char delimiter) const {
        zr::test::ModelText path;
        for (const std::string &step : steps)
            path = path ? *path + delimiter + step : step;
        return path;
    }
};

inline const char *OrNull(const zr::test::ModelText &text) {
    return text ? text->c_str() : nullptr;
}

} // namespace fuzz

#endif
