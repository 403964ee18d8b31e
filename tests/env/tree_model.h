// Environments in their plainest form: nodes in vectors, every search a walk. What the library's trees hold and answer is
// compared with this.
//
// The order among namesakes is kept as a row of entries sorted by name. A rename can leave the library's index out of order,
// with an entry too many; what a look-up in such a block gives is not told any more, and the model calls it blurred.
#ifndef ZR_TESTS_ENV_TREE_MODEL_H
#define ZR_TESTS_ENV_TREE_MODEL_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include <zrclb/env.hpp>

namespace zr::test {

using ModelText = std::optional<std::string>; // null or a text

// Whether a text can be the name of an element, or a step of a path with that delimiter (0: none).
inline bool IsElementName(const ModelText &name, char delimiter = '\0') {
    return name && !name->empty() && name->find('=') == std::string::npos &&
           (delimiter == '\0' || name->find(delimiter) == std::string::npos);
}

inline bool IsSectionName(const ModelText &name) {
    return name && name->find(']') == std::string::npos;
}

// ---- Nodes

class ModelNode {
public:
    enum Kind {
        Data,
        Block,
        Section
    };

    ModelNode(Kind nodeKind, ModelText nodeName) : kind(nodeKind), name(std::move(nodeName)) {}

    // A node as it is made with a name, which may be refused.
    static std::unique_ptr<ModelNode> Make(Kind kind, const ModelText &name) {
        const bool taken = kind == Section ? IsSectionName(name) : IsElementName(name);
        return std::make_unique<ModelNode>(kind, taken ? name : std::nullopt);
    }

    Kind kind;
    ModelText name;
    ModelText value;                                  // of a data element
    ModelNode *parent = nullptr;                      // null for a section of an environment
    std::vector<std::unique_ptr<ModelNode>> children; // in sequence
    std::vector<ModelNode *> byName;
    bool blurred = false;
    Zr::CZrEnvElement *element = nullptr; // its counterpart, once it is known

    bool IsBlock() const { return kind != Data; }

    bool IsAtOrAbove(const ModelNode *node) const {
        while (node && node != this)
            node = node->parent;
        return node != nullptr;
    }

    bool HasBlurred() const {
        return blurred ||
               std::any_of(children.begin(), children.end(), [](const auto &child) { return child->HasBlurred(); });
    }

    std::size_t Size() const {
        std::size_t size = 1;
        for (const auto &child : children)
            size += child->Size();
        return size;
    }

    std::size_t PlaceOf(const ModelNode *child) const {
        const auto at =
            std::find_if(children.begin(), children.end(), [child](const auto &own) { return own.get() == child; });
        return static_cast<std::size_t>(at - children.begin());
    }

    // ---- Changes

    ModelNode *Append(std::unique_ptr<ModelNode> child) {
        ModelNode *node = child.get();
        node->parent = this;
        FileBehindNamesakes(node);
        children.push_back(std::move(child));
        return node;
    }

    // The entry goes right before that of `before` if the name fits there, else right behind it, else in front of all
    // namesakes.
    void InsertBefore(std::unique_ptr<ModelNode> child, const ModelNode *before) {
        ModelNode *node = child.get();
        node->parent = this;
        const auto at = std::find(byName.begin(), byName.end(), before);
        if (at == byName.end())
            byName.insert(std::lower_bound(byName.begin(), byName.end(), node, Less), node);
        else if (!Less(*at, node) && (at == byName.begin() || !Less(node, *std::prev(at))))
            byName.insert(at, node);
        else if (!Less(node, *at) && (std::next(at) == byName.end() || !Less(*std::next(at), node)))
            byName.insert(std::next(at), node);
        else
            byName.insert(std::lower_bound(byName.begin(), byName.end(), node, Less), node);
        children.insert(children.begin() + static_cast<std::ptrdiff_t>(PlaceOf(before)), std::move(child));
    }

    std::unique_ptr<ModelNode> Take(ModelNode *child) {
        const auto at = children.begin() + static_cast<std::ptrdiff_t>(PlaceOf(child));
        std::unique_ptr<ModelNode> taken = std::move(*at);
        children.erase(at);
        std::erase(byName, child);
        taken->parent = nullptr;
        return taken;
    }

    // Ends the old child. The new one takes its place in sequence and goes behind its namesakes by name.
    ModelNode *Replace(ModelNode *old, std::unique_ptr<ModelNode> added) {
        ModelNode *node = added.get();
        const std::size_t place = PlaceOf(old);
        Take(old);
        node->parent = this;
        FileBehindNamesakes(node);
        children.insert(children.begin() + static_cast<std::ptrdiff_t>(place), std::move(added));
        return node;
    }

    // Whether an entry that stays where it is leaves the row in order.
    bool IsSorted() const { return std::is_sorted(byName.begin(), byName.end(), Less); }

    void FileAnew(ModelNode *child) {
        std::erase(byName, child);
        FileBehindNamesakes(child);
    }

    // ---- Look-ups

    ModelNode *Find(const std::string &wanted, zr_long position) const {
        for (ModelNode *child : byName)
            if (child->name == wanted && --position < 1)
                return child;
        return nullptr;
    }

    std::size_t Count(const std::string &wanted) const {
        return static_cast<std::size_t>(
            std::count_if(byName.begin(), byName.end(), [&](const ModelNode *child) { return child->name == wanted; }));
    }

private:
    // Without a name in front of all others.
    static bool Less(const ModelNode *a, const ModelNode *b) {
        return !a->name || !b->name ? !a->name && b->name : *a->name < *b->name;
    }

    void FileBehindNamesakes(ModelNode *child) {
        byName.insert(std::upper_bound(byName.begin(), byName.end(), child, Less), child);
    }
};

// ---- Paths

struct ModelStep {
    std::string name;
    zr_long position = 1;
};

inline std::vector<std::string> Split(const std::string &text, char delimiter) {
    std::vector<std::string> tokens(1);
    for (const char c : text) {
        if (c == delimiter)
            tokens.emplace_back();
        else
            tokens.back() += c;
    }
    return tokens;
}

inline std::vector<ModelStep> StepsOf(const std::string &path, char delimiter) {
    const std::vector<std::string> tokens = Split(path, delimiter);
    std::vector<ModelStep> steps;
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        ModelStep step{tokens[i]};
        if (i + 1 < tokens.size() && !tokens[i + 1].empty() &&
            tokens[i + 1].find_first_not_of("0123456789") == std::string::npos) {
            std::int64_t value = 0;
            for (const char digit : tokens[++i])
                value = std::min<std::int64_t>(value * 10 + (digit - '0'), INT32_MAX);
            step.position = static_cast<zr_long>(value);
        }
        if (IsElementName(step.name, delimiter))
            steps.push_back(step);
    }
    return steps;
}

// ---- Environments

class ModelEnv {
public:
    zr_long id = 0;
    char delimiter = '@';
    std::vector<std::unique_ptr<ModelNode>> sections;
    ModelEnv *defaults = nullptr;
    ModelEnv *parent = nullptr; // of a subenvironment
    ModelNode *root = nullptr;  // of a subenvironment
    std::vector<ModelEnv *> subs;
    int lastError = Zr::ENV_OK;

    bool IsSub() const { return parent != nullptr; }
    ModelEnv &Top() { return parent ? *parent : *this; }

    // ---- Look-ups

    ModelNode *GetSection(const ModelText &name) {
        if (!name)
            return nullptr;
        const auto at =
            std::find_if(sections.begin(), sections.end(), [&](const auto &section) { return section->name == *name; });
        lastError = at == sections.end() ? Zr::ENV_NOT_FOUND : Zr::ENV_OK;
        return at == sections.end() ? nullptr : at->get();
    }

    ModelNode *SearchProc(const ModelText &section, const ModelText &path, bool direct) {
        ModelNode *start = IsSub() ? root : GetSection(section);
        lastError = !start ? Zr::ENV_NOT_FOUND : path && !start->IsBlock() ? Zr::ENV_ERROR : Zr::ENV_OK;
        if (!start || !path)
            return start;
        return start->IsBlock() ? Walk(start, *path, direct) : nullptr;
    }

    ModelNode *GetElement(const ModelText &section, const ModelText &path, bool direct, bool withDefaults) {
        lastError = Zr::ENV_OK;
        if (!IsSub() && !section)
            return sections.empty() ? nullptr : sections[0].get();
        if (IsSub() && !path)
            return root;
        ModelNode *found = path ? SearchProc(section, path, direct) : GetSection(section);
        if (found)
            return found;
        if (withDefaults && defaults) {
            found = defaults->GetElement(section, path, direct, true);
            lastError = defaults->lastError;
            return found;
        }
        lastError = Zr::ENV_NOT_FOUND;
        return nullptr;
    }

    ModelNode *FindElement(const ModelText &section, const ModelText &path, zr_long position, bool direct) {
        lastError = Zr::ENV_OK;
        if (!IsSub() && !section) {
            if (position < 1) {
                lastError = Zr::ENV_ERROR;
                return nullptr;
            }
            return AtPosition(sections, position);
        }
        ModelNode *target = path ? SearchProc(section, path, direct) : IsSub() ? root : GetSection(section);
        if (position < 1 || !target)
            return target;
        if (target->IsBlock())
            return AtPosition(target->children, position);
        lastError = Zr::ENV_NOT_FOUND;
        return nullptr;
    }

    ModelNode *GetPosElement(const ModelText &section, const ModelText &path, zr_long position, bool direct,
                             bool withDefaults) {
        ModelNode *found = FindElement(section, path, position, direct);
        if (found)
            return found;
        if (withDefaults && defaults) {
            found = defaults->GetPosElement(section, path, position, direct, true);
            lastError = defaults->lastError;
            return found;
        }
        lastError = Zr::ENV_NOT_FOUND;
        return nullptr;
    }

    std::size_t CountElements(const ModelText &section, const ModelText &path, bool direct) {
        if (!IsSub() && !section)
            return sections.size();
        const ModelNode *found = path ? SearchProc(section, path, direct) : IsSub() ? root : GetSection(section);
        return found && found->IsBlock() ? found->byName.size() : 0;
    }

    std::size_t CountPath(const ModelText &section, const std::string &path, bool direct) {
        const ModelNode *found = SearchProc(section, path, direct);
        const std::string word = Split(path, delimiter).back();
        return found && found->parent && IsElementName(word) ? found->parent->Count(word) : 0;
    }

    // What env_check tells.
    int Check(const ModelText &section, const ModelText &path, bool direct) {
        if (!section && !IsSub())
            return sections.empty() ? Zr::ENV_NOT_FOUND : Zr::ENV_BLOCK;
        if (path) {
            const ModelNode *found = SearchProc(section, path, direct);
            return !found ? Zr::ENV_NOT_FOUND : found->IsBlock() ? Zr::ENV_BLOCK : Zr::ENV_DATA;
        }
        if (!IsSub())
            return GetSection(section) ? Zr::ENV_BLOCK : Zr::ENV_NOT_FOUND;
        if (!root || (root->IsBlock() && root->children.empty()))
            return Zr::ENV_NOT_FOUND;
        return root->IsBlock() ? Zr::ENV_BLOCK : Zr::ENV_DATA;
    }

    // ---- Changes

    ModelNode *InsertSection(const ModelText &name) {
        if (IsSub() || !IsSectionName(name))
            return nullptr;
        sections.push_back(ModelNode::Make(ModelNode::Section, name));
        return sections.back().get();
    }

    // The data element to be written, made if need be; null with the last error where there can be none.
    ModelNode *GetOrCreateData(const ModelText &section, const ModelText &path) {
        ModelNode *found = GetElement(section, path, true, false);
        if (found && found->kind == ModelNode::Data)
            return found;
        if (found && found->kind == ModelNode::Block && found->parent) {
            auto data = std::make_unique<ModelNode>(ModelNode::Data, found->name ? *found->name : "");
            lastError = Zr::ENV_OK;
            return Replace(found, std::move(data));
        }
        if (found) {
            lastError = Zr::ENV_ERROR;
            return nullptr;
        }
        ModelNode *made = CreatePath(section, path, ModelNode::Data);
        if (made && made->kind == ModelNode::Data) {
            lastError = Zr::ENV_OK;
            return made;
        }
        if (!made || path)
            lastError = Zr::ENV_ERROR;
        return nullptr;
    }

    ModelNode *CreatePath(const ModelText &section, const ModelText &path, ModelNode::Kind kind) {
        const std::vector<ModelStep> steps = StepsOf(path.value_or(""), delimiter);
        ModelNode *block = nullptr;
        if (IsSub()) {
            if (!root || steps.empty() || (!root->IsBlock() && !root->parent))
                return nullptr;
            if (!root->IsBlock())
                Replace(root, std::make_unique<ModelNode>(ModelNode::Block, root->name ? *root->name : ""));
            block = root;
        } else {
            block = GetSection(section);
            if (!block)
                block = InsertSection(section);
        }
        if (steps.empty())
            return block;
        for (std::size_t i = 0; block && i + 1 < steps.size(); ++i) {
            ModelNode *there = block->Find(steps[i].name, steps[i].position);
            if (!there)
                there = CreateNewElement(*block, steps[i], ModelNode::Block);
            else if (!there->IsBlock())
                there = Replace(there, ModelNode::Make(ModelNode::Block, steps[i].name));
            block = there && there->IsBlock() ? there : nullptr;
        }
        return block ? CreateNewElement(*block, steps.back(), kind) : nullptr;
    }

    // Takes the roots along: of this environment and of those that it lists itself. All others at or below go.
    ModelNode *Replace(ModelNode *old, std::unique_ptr<ModelNode> added) {
        ModelNode *node = added.get();
        if (root == old)
            root = node;
        for (ModelEnv *sub : subs)
            if (sub->root == old)
                sub->root = node;
        Top().ForgetRootsBelow(old);
        return old->parent->Replace(old, std::move(added));
    }

    void ForgetRootsBelow(const ModelNode *node) {
        for (ModelEnv *sub : subs)
            if (sub->root && node->IsAtOrAbove(sub->root))
                sub->root = nullptr;
    }

    // Ends an element or section of this environment's tree.
    void End(ModelNode *node) {
        Top().ForgetRootsBelow(node);
        if (node->parent)
            node->parent->Take(node);
        else
            std::erase_if(Top().sections, [node](const auto &section) { return section.get() == node; });
    }

    void DeleteSections() {
        for (ModelEnv *sub : subs)
            sub->root = nullptr;
        sections.clear();
    }

    int Delete(const ModelText &section, const ModelText &path) {
        if (!path && section) {
            ModelNode *found = IsSub() ? nullptr : GetSection(section);
            if (found)
                End(found);
            return IsSub() ? Zr::ENV_ERROR : found ? Zr::ENV_OK : Zr::ENV_NOT_FOUND;
        }
        if (!path && !IsSub())
            DeleteSections();
        if (!path)
            return IsSub() ? Zr::ENV_ERROR : Zr::ENV_OK;
        if (!section && !IsSub())
            return Zr::ENV_ERROR;
        ModelNode *found = GetElement(section, path, true, false);
        if (!found)
            return Zr::ENV_NOT_FOUND;
        if (found->parent || found->kind == ModelNode::Section)
            End(found);
        return Zr::ENV_OK;
    }

    bool HasBlurred() const {
        return std::any_of(sections.begin(), sections.end(), [](const auto &section) { return section->HasBlurred(); });
    }

private:
    using Children = std::vector<std::unique_ptr<ModelNode>>;

    ModelNode *AtPosition(const Children &children, zr_long position) {
        const std::size_t at = static_cast<std::size_t>(std::max<zr_long>(position, 1)) - 1;
        lastError = at < children.size() ? Zr::ENV_OK : Zr::ENV_NOT_FOUND;
        return at < children.size() ? children[at].get() : nullptr;
    }

    ModelNode *Walk(ModelNode *start, const std::string &path, bool direct) const {
        ModelNode *node = start;
        for (const ModelStep &step : StepsOf(path, delimiter)) {
            if (!node->IsBlock())
                return nullptr;
            node = direct ? node->Find(step.name, step.position) : InTree(node, step);
            if (!node)
                return nullptr;
        }
        return node;
    }

    // Level by level. A namesake that is passed over is not looked into.
    static ModelNode *InTree(ModelNode *start, const ModelStep &step) {
        std::vector<ModelNode *> queue{start};
        for (std::size_t next = 0; next < queue.size(); ++next) {
            zr_long left = step.position;
            for (const auto &child : std::vector<ModelNode *>(Pointers(*queue[next]))) {
                if (step.position < 1)
                    return child;
                if (child->name == step.name) {
                    if (--left == 0)
                        return child;
                } else if (child->IsBlock()) {
                    queue.push_back(child);
                }
            }
        }
        return nullptr;
    }

    static std::vector<ModelNode *> Pointers(const ModelNode &block) {
        std::vector<ModelNode *> pointers;
        for (const auto &child : block.children)
            pointers.push_back(child.get());
        return pointers;
    }

    static ModelNode *CreateNewElement(ModelNode &block, const ModelStep &step, ModelNode::Kind kind) {
        for (zr_long i = 0; i < step.position - 1; ++i)
            if (!block.Find(step.name, i))
                block.Append(ModelNode::Make(ModelNode::Data, step.name));
        if (step.position < 1)
            return nullptr;
        if (ModelNode *present = block.Find(step.name, step.position))
            return present;
        return block.Append(ModelNode::Make(kind, step.name));
    }
};

// ---- Model and library

// Why a tree is not that of the model; empty where it is. Nodes of the model that have no counterpart yet get one.
inline std::string Compare(ModelNode &node, Zr::CZrEnvElement *element) {
    if (!element)
        return "an element is missing";
    if (node.element && node.element != element)
        return "another element stands there";
    node.element = element;
    if (element->GetName() ? node.name != element->GetName() : node.name.has_value())
        return "another name";
    if (element->GetParent() != (node.parent ? node.parent->element : nullptr))
        return "another parent";
    if (const Zr::CZrEnvDataElement *data = element->ToEnvDataElement()) {
        if (node.kind != ModelNode::Data)
            return "a data element where none should be";
        return (data->GetString() ? node.value == data->GetString() : !node.value) ? "" : "another value";
    }
    const bool isSection = element->ToEnvSection() != nullptr;
    if (node.kind != (isSection ? ModelNode::Section : ModelNode::Block))
        return "another kind";
    Zr::CZrEnvElement *child = element->ToEnvBlock()->GetFirstElement();
    for (const auto &own : node.children) {
        if (std::string fault = Compare(*own, child); !fault.empty())
            return fault;
        child = child->GetSuccElem();
    }
    if (child)
        return "an element too many";
    const std::size_t count = element->ToEnvBlock()->GetElemCount();
    return (node.blurred ? count >= node.children.size() : count == node.children.size()) ? "" : "another count";
}

// Why the look-ups by name are not those of the model, in a tree that is otherwise the same. Blocks that have no index yet
// get one.
inline std::string CompareNames(const ModelNode &node) {
    if (!node.IsBlock())
        return "";
    Zr::CZrEnvBlock &block = *node.element->ToEnvBlock();
    zr_long number = 0;
    const ModelNode *before = nullptr;
    for (const ModelNode *child : node.byName) {
        if (node.blurred)
            break;
        number = before && before->name == child->name ? number + 1 : 1;
        before = child;
        if (!IsElementName(child->name))
            continue;
        if (block.GetElement(child->name->c_str(), number) != child->element)
            return "another element of a name";
        if (block.GetElemCount(child->name->c_str()) != node.Count(*child->name))
            return "another count of a name";
    }
    for (const auto &child : node.children)
        if (std::string fault = CompareNames(*child); !fault.empty())
            return fault;
    return "";
}

// The same for all sections of a top-level environment.
inline std::string Compare(ModelEnv &model, Zr::CZrEnv &env) {
    Zr::CZrEnvSection *section = env.GetFirstSection();
    for (const auto &own : model.sections) {
        if (std::string fault = Compare(*own, section); !fault.empty())
            return fault;
        if (section->GetEnv() != &env)
            return "a section of another environment";
        section = env.GetNextSection(section);
    }
    return section ? "a section too many" : "";
}

} // namespace zr::test

#endif
