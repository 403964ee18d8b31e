// Any tree that can be built, written as a string and as a file: the texts are those of the plain writer, and what is read
// back is what the plain reader finds in them. A tree that the text can hold comes back as it was.
#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <zrclb/env.hpp>

#include "byte_input.h"
#include "caught_reports.h"
#include "env/reference_reader.h"
#include "env/reference_writer.h"
#include "scratch_file.h"

namespace {

using fuzz::Require;
using text_test::Node;
using text_test::Tree;
using Zr::CZrEnv;
using Zr::CZrEnvBlock;
using Zr::CZrEnvDataElement;
using Zr::CZrEnvElement;
using Zr::CZrEnvSection;

// A byte of choices, then steps of a byte each, texts up to a zero byte.
class Input : public fuzz::ByteInput {
public:
    using ByteInput::ByteInput;

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
};

// Builds an environment and, beside it, what must have come of it.
class Builder {
public:
    explicit Builder(CZrEnv &env) : m_env(env) {}

    void Build(Input &input) {
        while (!input.Empty())
            Step(input);
    }
    const Tree &Expected() const { return m_tree; }

private:
    static constexpr std::size_t MostLevels = 60; // the indentation passes the width of a folded line

    struct Level {
        CZrEnvBlock *block;
        std::vector<std::size_t> path; // of the block among the sections, and below them
    };

    void Step(Input &input) {
        switch (const std::uint8_t step = input.Byte(); step % 8) {
        case 0:
            AddSection(input.Text());
            break;
        case 1:
            InsertSectionInFront(input.Text());
            break;
        case 2:
            OpenBlock(input.Text());
            break;
        case 3:
            if (m_levels.size() > 1)
                m_levels.pop_back();
            break;
        case 4:
            AddData(input.Text(), std::nullopt);
            break;
        case 5:
            AddData(input.Text(), Repeated(input.Text(), step / 8U));
            break;
        default: {
            const std::string name = input.Text();
            AddData(name, input.Text());
        }
        }
    }

    static std::string Repeated(const std::string &text, std::size_t times) {
        std::string repeated;
        for (; times > 0; --times)
            repeated += text;
        return repeated;
    }

    void AddSection(const std::string &name) {
        CZrEnvSection *section = m_env.InsertSection(name.c_str());
        Require((section != nullptr) == (name.find(']') == std::string::npos), "names of sections");
        if (section == nullptr)
            return;
        m_tree.push_back(text_test::Section(name, {}));
        m_levels = {{section, {m_tree.size() - 1}}};
    }

    // The name is not tested here: one that is refused leaves the section nameless.
    void InsertSectionInFront(const std::string &name) {
        if (m_tree.empty())
            return;
        auto *section = new CZrEnvSection(name.c_str());
        Require(m_env.InsertSectionBefore(section, m_env.GetFirstSection()), "section in front");
        m_tree.insert(m_tree.begin(), text_test::Section(name, {}));
        if (name.find(']') != std::string::npos)
            m_tree[0].name.reset();
        m_levels = {{section, {0}}};
    }

    Node &Here() {
        Node *node = &m_tree[m_levels.back().path[0]];
        for (std::size_t i = 1; i < m_levels.back().path.size(); ++i)
            node = &node->children[m_levels.back().path[i]];
        return *node;
    }

    static std::optional<std::string> NameOf(const std::string &name) {
        return name.empty() || name.find('=') != std::string::npos ? std::nullopt : std::optional(name);
    }

    void OpenBlock(const std::string &name) {
        if (m_levels.empty() || m_levels.size() >= MostLevels)
            return;
        auto *block = new CZrEnvBlock(name.c_str());
        Require(m_levels.back().block->InsertElement(block), "block");
        Node &here = Here();
        here.children.push_back(text_test::Block(name, {}));
        here.children.back().name = NameOf(name);
        std::vector<std::size_t> path = m_levels.back().path;
        path.push_back(here.children.size() - 1);
        m_levels.push_back({block, path});
    }

    void AddData(const std::string &name, const std::optional<std::string> &value) {
        if (m_levels.empty())
            return;
        auto *data = new CZrEnvDataElement(name.c_str(), value ? value->c_str() : nullptr);
        Require(m_levels.back().block->InsertElement(data), "data element");
        Here().children.push_back({Node::Data, NameOf(name), value, {}});
    }

    CZrEnv &m_env;
    Tree m_tree;
    std::vector<Level> m_levels;
};

// ---- What the text can hold

bool IsBlankAtAnEnd(const std::string &text) {
    return !text.empty() && (std::string(" \t").find(text.front()) != std::string::npos ||
                             std::string(" \t").find(text.back()) != std::string::npos);
}

// The byte that ends every text, the one that ends a file, and a backslash whose blanks make a fold with what is behind.
bool HasWildByte(const std::string &text, const std::string &behind) {
    return text.find_first_of("\xFF\x1A") != std::string::npos || (text + behind).find("\\ ") != std::string::npos;
}

bool IsTameName(const std::string &name, bool section) {
    if (IsBlankAtAnEnd(name) || HasWildByte(name, section ? "" : " ") ||
        name.find_first_of("\n\r") != std::string::npos)
        return false;
    return section || std::string("[}=;").find(name[0]) == std::string::npos;
}

bool IsTameValue(const std::string &value) {
    return !IsBlankAtAnEnd(value) && !HasWildByte(value, "") && !value.starts_with('{') &&
           value.find("<<\\n>>") == std::string::npos && value.find("<<\\r>>") == std::string::npos;
}

// The nodes as they come back; nothing where one of them is not sure to.
std::optional<std::vector<Node>> Held(const std::vector<Node> &nodes, bool wrap) {
    std::vector<Node> held;
    for (const Node &node : nodes) {
        const bool isData = node.kind == Node::Data;
        if (!node.name || (isData && !node.value)) // not written at all
            continue;
        if (!IsTameName(*node.name, node.kind == Node::Section) || (isData && !IsTameValue(*node.value)))
            return {};
        Node copy{node.kind, node.name, node.value, {}};
        if (isData && !wrap && node.value->ends_with('\\')) // each cycle adds one
            *copy.value += '\\';
        std::optional<std::vector<Node>> children = Held(node.children, wrap);
        if (!children)
            return {};
        copy.children = std::move(*children);
        held.push_back(std::move(copy));
    }
    return held;
}

// ---- Writing and reading

std::string Written(CZrEnv &env, bool wrap) {
    char *text = env.WriteString(wrap);
    std::string copy = text;
    CZrEnv::FreeString(text);
    return copy;
}

// A read that fails may report what it likes here: that is the reader's own target.
void RequireReadBack(const std::string &text, const Tree &tree, bool wrap) {
    CZrEnv *env = CZrEnv::CreateEnv(2, nullptr);
    const int result = env->ReadString(text.c_str(), eEnvReadAuto);
    const text_test::ReferenceReader reference(text, false, eEnvReadAuto, "");
    Require(result == reference.result, "result of reading back");
    const Tree read = text_test::TreeOf(*env);
    Require(read == reference.sections, "tree of reading back");
    if (const std::optional<Tree> held = Held(tree, wrap)) {
        Require(result == Zr::ENV_OK, "a tree that the text can hold reads back");
        Require(read == *held, "and as it was");
    }
    CZrEnv::DestroyEnv(env, false);
}

void RequireFile(CZrEnv &env, const std::string &text, bool wrap) {
    static const std::string path = fuzz::PathOf("written.env");
    Require(env.WriteFile(path.c_str(), wrap), "file is written");
    Require(fuzz::TakeReports().empty(), "writing a file reports nothing");
    const std::string bytes = fuzz::Load(path);
    Require(bytes == text, "file holds the text");
    CZrEnv *other = CZrEnv::CreateEnv(2, nullptr);
    const int result = other->ReadFile(path.c_str(), eEnvReadAuto);
    const text_test::ReferenceReader reference(text_test::AsTextStreamReads(bytes), true, eEnvReadAuto, path);
    Require(result == reference.result, "result of reading the file");
    Require(text_test::TreeOf(*other) == reference.sections, "tree of reading the file");
    CZrEnv::DestroyEnv(other, false);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    Input input(data, size);
    const unsigned choices = input.Byte();
    CZrEnv *env = CZrEnv::CreateEnv(1, nullptr);
    Builder builder(*env);
    builder.Build(input);
    const Tree &tree = builder.Expected();
    Require(text_test::TreeOf(*env) == tree, "the tree is what was built");
    fuzz::TakeReports();
    const bool wrap = choices % 2 != 0;
    const std::string text = Written(*env, wrap);
    Require(text == text_test::ReferenceWriter(tree, wrap).text, "same text");
    Require(fuzz::TakeReports().empty(), "writing reports nothing");
    if (choices >= 192)
        RequireFile(*env, text, wrap);
    RequireReadBack(text, tree, wrap);
    Require(text_test::TreeOf(*env) == tree, "writing changes nothing");
    CZrEnv::DestroyEnv(env, false);
    return 0;
}
