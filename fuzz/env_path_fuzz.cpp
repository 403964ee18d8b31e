// Any path in any tree: the steps, the search along children and the one through the tree, positions, counts and lists,
// through defaults and subenvironments, against a naive walk.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <zrclb/env.h>
#include <zrclb/env.hpp>

#include "byte_input.h"
#include "caught_reports.h"
#include "env/tree_model.h"
#include "tree_input.h"

namespace {

using fuzz::OrNull;
using fuzz::Require;
using fuzz::TreeInput;
using zr::test::ModelEnv;
using zr::test::ModelNode;
using zr::test::ModelText;
using Zr::CZrEnv;
using Zr::CZrEnvBlock;
using Zr::CZrEnvDataElement;
using Zr::CZrEnvElement;

constexpr std::size_t MostNodes = 120;

CZrEnvElement *NewElement(ModelNode::Kind kind, const ModelText &name) {
    if (kind == ModelNode::Block)
        return new CZrEnvBlock(OrNull(name));
    return new CZrEnvDataElement(OrNull(name), "v");
}

// An environment and its model, built by the same steps.
struct Pair {
    ModelEnv model;
    CZrEnv *env = nullptr;

    std::size_t Size() const {
        std::size_t size = 0;
        for (const auto &section : model.sections)
            size += section->Size();
        return size;
    }

    // A block of the tree: down from a section as long as the choice leads to one.
    ModelNode *BlockAt(std::uint8_t choice) const {
        if (model.sections.empty())
            return nullptr;
        ModelNode *block = model.sections[choice % model.sections.size()].get();
        for (choice /= 2; choice > 0 && !block->children.empty(); choice /= 3) {
            ModelNode *child = block->children[choice % block->children.size()].get();
            if (!child->IsBlock())
                break;
            block = child;
        }
        return block;
    }

    void AddSection(const ModelText &name) {
        ModelNode *section = model.InsertSection(name);
        Zr::CZrEnvSection *made = env->InsertSection(OrNull(name));
        Require((made != nullptr) == (section != nullptr), "section");
        if (section)
            section->element = made;
    }

    static std::unique_ptr<ModelNode> Add(ModelNode::Kind kind, const ModelText &name) {
        auto node = ModelNode::Make(kind, name);
        node->element = NewElement(kind, name);
        if (kind == ModelNode::Data)
            node->value = "v";
        return node;
    }

    static void Append(ModelNode &block, ModelNode::Kind kind, const ModelText &name) {
        const ModelNode *node = block.Append(Add(kind, name));
        Require(block.element->ToEnvBlock()->InsertElement(node->element), "element");
    }

    static void InsertBefore(ModelNode &block, const ModelNode &before, ModelNode::Kind kind, const ModelText &name) {
        auto node = Add(kind, name);
        Require(block.element->ToEnvBlock()->InsertElementBefore(node->element, before.element), "element before");
        block.InsertBefore(std::move(node), &before);
    }

    static void Replace(ModelNode &block, ModelNode &old, ModelNode::Kind kind, const ModelText &name) {
        auto node = Add(kind, name);
        Require(block.element->ToEnvBlock()->ReplaceElement(old.element, node->element), "element in place of another");
        block.Replace(&old, std::move(node));
    }

    // Only where the index stays in order.
    static void Rename(ModelNode &block, ModelNode &child, const ModelText &name) {
        const ModelText old = child.name;
        if (!zr::test::IsElementName(name))
            return;
        child.name = name;
        if (block.IsSorted()) {
            Require(child.element->SetName(name->c_str()), "name");
            block.FileAnew(&child);
        } else {
            child.name = old;
        }
    }

    void Step(TreeInput &input) {
        const std::uint8_t step = input.Byte();
        if (step % 8 == 0)
            return AddSection(input.Name());
        ModelNode *block = BlockAt(input.Byte());
        if (!block || Size() > MostNodes)
            return;
        const ModelText name = input.Name();
        const ModelNode::Kind kind = step / 8 % 2 == 0 ? ModelNode::Block : ModelNode::Data;
        if (step % 8 < 4 || block->children.empty()) {
            for (int i = step / 16; i >= 0; --i)
                Append(*block, kind, name);
            return;
        }
        ModelNode &child = *block->children[input.Byte() % block->children.size()];
        if (step % 8 == 4)
            Replace(*block, child, kind, name);
        else if (step % 8 == 5)
            Rename(*block, child, name);
        else
            InsertBefore(*block, child, kind, name);
    }
};

// ---- Questions to one environment

class Question {
public:
    Question(ModelEnv &model, CZrEnv &env, TreeInput &input)
        : m_model(model), m_env(env), m_env_handle(reinterpret_cast<zr_env>(&env)), m_direct(input.Byte() % 2 != 0),
          m_position(input.Number()) {
        const std::uint8_t choice = input.Byte();
        const std::vector<ModelNode *> nodes = fuzz::NodesOf(model);
        if (choice >= 192 || nodes.empty()) {
            m_section = input.Name();
            if (choice != 255)
                m_path = input.Text();
            return;
        }
        fuzz::NodeAddress address(model, nodes[choice % nodes.size()], choice % 2 == 0);
        LeaveOut(address.steps, input.Byte());
        m_section = model.IsSub() ? input.Name() : address.section;
        m_path = address.Path(model.delimiter);
    }

    void Ask() {
        Elements();
        Positions();
        Counts();
        Kinds();
        Names();
    }

    // What the path leads to here, for a view of it.
    ModelNode *Found() { return m_model.GetElement(m_section, m_path, m_direct, false); }
    CZrEnv *Open() { return m_env.OpenSubenv(OrNull(m_section), OrNull(m_path), m_direct); }

private:
    // What a search through the tree finds all the same, or finds elsewhere; with another end now and then.
    void LeaveOut(std::vector<std::string> &steps, std::uint8_t choice) {
        for (std::size_t i = steps.size(); i-- > 0; choice /= 2)
            if (choice % 2 != 0)
                steps.erase(steps.begin() + static_cast<std::ptrdiff_t>(i));
        if (choice % 4 != 0)
            steps.push_back(choice % 4 == 1 ? "a" : choice % 4 == 2 ? "b" : std::string("a") + m_model.delimiter + "2");
    }

    void RequireSame(const CZrEnvElement *element, const ModelNode *node, const char *what) const {
        Require(element == (node ? node->element : nullptr), what);
        Require(m_env.GetLastError() == m_model.lastError, "last error");
    }

    void Elements() {
        const char *section = OrNull(m_section);
        const char *path = OrNull(m_path);
        RequireSame(m_env.GetElement(section, path, m_direct, false), Found(), "element");
        const ModelNode *node = m_model.GetElement(m_section, m_path, m_direct, true);
        RequireSame(m_env.GetElement(section, path, m_direct, true), node, "element with defaults");
        Require((m_env.GetBlock(section, path, m_direct, true) != nullptr) == (node && node->IsBlock()), "block");
        Require((m_env.GetDataElement(section, path, m_direct, true) != nullptr) == (node && !node->IsBlock()), "leaf");
    }

    void Positions() {
        for (const bool withDefaults : {false, true}) {
            const ModelNode *node = m_model.GetPosElement(m_section, m_path, m_position, m_direct, withDefaults);
            RequireSame(m_env.GetPosElement(OrNull(m_section), OrNull(m_path), m_position, m_direct, withDefaults),
                        node, "element at a position");
        }
    }

    void Counts() {
        Require(m_env.CountElements(OrNull(m_section), OrNull(m_path), m_direct) ==
                    static_cast<zr_long>(m_model.CountElements(m_section, m_path, m_direct)),
                "number of elements");
        const zr_long namesakes = m_env.CountPath(OrNull(m_section), OrNull(m_path), m_direct);
        Require(namesakes ==
                    static_cast<zr_long>(m_path ? m_model.CountPath(m_section, *m_path, m_direct) : std::size_t{0}),
                "number of namesakes");
    }

    void Kinds() {
        const char *section = OrNull(m_section);
        const char *path = OrNull(m_path);
        Require(env_check(m_env_handle, section, path, m_direct) == m_model.Check(m_section, m_path, m_direct), "kind");
        const ModelNode *node = m_model.GetElement(m_section, m_path, m_direct, true);
        Require(env_exist(m_env_handle, section, path, m_direct) == (node ? 1 : 0), "is there");
        Require(env_exist_data(m_env_handle, section, path, m_direct) == (node && !node->IsBlock() ? 1 : 0), "leaf is");
        Require(env_exist_block(m_env_handle, section, path, m_direct) == (node && node->IsBlock() ? 1 : 0),
                "block is");
    }

    void Names() {
        std::vector<std::string> got;
        std::vector<std::string> expected;
        const zr_long result = m_env.GetElemNames(OrNull(m_section), OrNull(m_path), m_direct, got);
        if (!m_model.IsSub() && !m_section) {
            for (const auto &section : m_model.sections)
                expected.push_back(section->name.value_or(""));
            Require(result == Zr::ENV_OK, "names of sections");
        } else {
            const ModelNode *block = m_model.GetElement(m_section, m_path, m_direct, true);
            const bool is = block && block->IsBlock();
            Require(result == (is ? Zr::ENV_OK : Zr::ENV_BLOCK), "result of names");
            for (std::size_t i = 0; is && i < block->children.size(); ++i)
                expected.push_back(block->children[i]->name.value_or(""));
        }
        Require(got == expected, "names");
    }

    ModelEnv &m_model;
    CZrEnv &m_env;
    zr_env m_env_handle;
    bool m_direct;
    zr_long m_position;
    ModelText m_section;
    ModelText m_path;
};

// Joins three texts, the last of which may be missing, in a buffer of any size.
void CheckBuildPath(char delimiter, TreeInput &input) {
    const std::string first = input.Text();
    const std::string second = input.Text();
    const ModelText third = input.Name();
    const std::size_t size = input.Byte() % 24U;
    std::string expected(24, '#');
    std::string got = expected;
    std::vector<std::string> texts = {first, second};
    if (third)
        texts.push_back(*third);
    std::string joined;
    bool fits = first.size() + 1 <= size;
    if (fits) {
        for (const std::string &text : texts) {
            joined += (&text == texts.data() ? "" : std::string(1, delimiter)) + text;
            fits = fits && joined.size() + 1 <= size;
        }
        if (!fits)
            joined.clear();
    }
    const zr_long result = CZrEnv::BuildPath(delimiter, static_cast<zr_ulong>(size), got.data(), first.c_str(),
                                             second.c_str(), OrNull(third), nullptr);
    Require(result == (fits ? Zr::ENV_OK : Zr::ENV_TOO_SMALL), "result of joining");
    if (fits)
        Require(got.c_str() == joined, "joined path");
    else
        Require(size == 0 || first.size() + 1 > size ? got == expected : got[0] == '\0', "a path that is too long");
}

} // namespace

// A byte of choices, the delimiter, a byte for each tree to begin with, the number of steps, the steps, then questions.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    TreeInput input(data, size);
    const unsigned choices = input.Byte();
    const char delimiter = static_cast<char>(input.Byte());
    Pair behind;
    Pair front;
    behind.env = CZrEnv::CreateEnv(2, nullptr);
    front.env = CZrEnv::CreateEnv(1, choices % 2 != 0 ? behind.env : nullptr);
    front.model.defaults = choices % 2 != 0 ? &behind.model : nullptr;
    for (Pair *pair : {&front, &behind}) {
        if (choices / 2 % 2 != 0 && delimiter != '\0') {
            pair->env->SetDelimiter(delimiter);
            pair->model.delimiter = delimiter;
        }
    }
    fuzz::ReadFirstText(front.model, *front.env, input.Byte());
    fuzz::ReadFirstText(behind.model, *behind.env, input.Byte());
    for (int steps = input.Byte() % 64; steps > 0 && !input.Empty(); --steps)
        (steps % 4 == 3 ? behind : front).Step(input);
    for (Pair *pair : {&front, &behind}) {
        Require(Compare(pair->model, *pair->env).empty(), "the tree is what was built");
        for (const auto &section : pair->model.sections)
            Require(CompareNames(*section).empty(), "names in their order");
    }

    for (int questions = 0; questions < 8 && !input.Empty(); ++questions) {
        fuzz::TakeReports();
        Question question(front.model, *front.env, input);
        question.Ask();
        ModelNode *root = question.Found();
        CZrEnv *sub = question.Open();
        Require((sub != nullptr) == (root != nullptr), "view");
        if (sub) {
            ModelEnv view;
            view.parent = &front.model;
            view.root = root;
            view.delimiter = front.model.delimiter;
            view.defaults = front.model.defaults;
            Require(sub->GetSubEnvRootElement() == root->element, "root of a view");
            Question(view, *sub, input).Ask();
            CZrEnv::DestroyEnv(sub, false);
        }
        CheckBuildPath(front.model.delimiter, input);
    }
    Require(CZrEnv::DestroyEnv(front.env, false) == Zr::ENV_OK, "end");
    Require(CZrEnv::DestroyEnv(behind.env, false) == Zr::ENV_OK, "end of the default");
    return 0;
}
