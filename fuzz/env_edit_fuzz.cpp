// Any row of edits on two environments with defaults, views and elements that stand nowhere: after each one both trees are
// those of the model, element by element, and sound.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <zrclb/env.h>
#include <zrclb/env.hpp>

#include "byte_input.h"
#include "caught_reports.h"
#include "env/reference_reader.h"
#include "env/reference_writer.h"
#include "env/tree_check.h"
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
using Zr::CZrEnvSection;
using NodePtr = std::unique_ptr<ModelNode>;

constexpr std::size_t MostNodes = 150;
constexpr std::size_t MostViews = 4;
constexpr zr_long FarthestPosition = 12;
constexpr zr_long NameCapacity = 12;
constexpr zr_long TextCapacity = 12;

// An environment or a view of one, its model, and where its iteration stands.
struct Handle {
    ModelEnv model;
    CZrEnv *env = nullptr;
    bool hasCursor = false;
    ModelNode *cursor = nullptr;

    zr_env Env() const { return reinterpret_cast<zr_env>(env); }
};

struct Address {
    ModelText section;
    ModelText path;
};

// What a walk of leaves hands on.
using Visit = std::function<bool(const ModelText &section, const ModelText &path, ModelNode &node)>;

CZrEnvElement *NewElement(ModelNode::Kind kind, const ModelText &name) {
    if (kind == ModelNode::Section)
        return new CZrEnvSection(OrNull(name));
    if (kind == ModelNode::Block)
        return new CZrEnvBlock(OrNull(name));
    return new CZrEnvDataElement(OrNull(name), static_cast<const char *>(nullptr));
}

NodePtr NewNode(ModelNode::Kind kind, const ModelText &name) {
    NodePtr node = ModelNode::Make(kind, name);
    node->element = NewElement(kind, name);
    return node;
}

CZrEnvBlock &BlockOf(const ModelNode &node) {
    return *node.element->ToEnvBlock();
}

// ---- Texts and trees

text_test::Node AsTextNode(const ModelNode &node) {
    text_test::Node text{static_cast<text_test::Node::Kind>(node.kind), node.name, node.value, {}};
    for (const NodePtr &child : node.children)
        text.children.push_back(AsTextNode(*child));
    return text;
}

text_test::Tree AsTextTree(const ModelEnv &env) {
    text_test::Tree tree;
    for (const NodePtr &section : env.sections)
        tree.push_back(AsTextNode(*section));
    return tree;
}

// ---- One session

class Session {
public:
    explicit Session(TreeInput &input) : m_input(input) {
        for (int i = 0; i < 2; ++i) {
            m_tops[i].model.id = i + 5;
            m_tops[i].env = CZrEnv::CreateEnv(i + 5, nullptr);
            const std::uint8_t choice = input.Byte();
            fuzz::ReadFirstText(m_tops[i].model, *m_tops[i].env, choice);
            if (choice >= 128 && !m_tops[i].model.sections.empty())
                AddInnerSection(*m_tops[i].model.sections[0]);
        }
    }
    Session(const Session &) = delete;
    Session &operator=(const Session &) = delete;

    ~Session() {
        while (!m_views.empty())
            CloseView(m_views.size() - 1);
        for (Handle &top : m_tops)
            top.env->DetachDefaultChain();
        for (Handle &top : m_tops)
            Require(env_close(top.Env(), 0) == Zr::ENV_OK, "end");
        CZrEnvBlock bin("bin");
        for (const NodePtr &node : m_drawer)
            Require(bin.InsertElement(node->element), "an element that stands nowhere");
    }

    void Step() {
        using Edit = void (Session::*)();
        static const Edit edits[] = {
            &Session::Put,          &Session::Put,           &Session::Delete,       &Session::Rename,
            &Session::InsertByPath, &Session::OpenView,      &Session::OpenView,     &Session::CloseAny,
            &Session::Defaults,     &Session::Sink,          &Session::CopyBlock,    &Session::Append,
            &Session::Append,       &Session::InsertInFront, &Session::Remove,       &Session::Move,
            &Session::MoveInFront,  &Session::ReplaceAny,    &Session::SetName,      &Session::AddSection,
            &Session::MoveSection,  &Session::Traverse,      &Session::VisitLeaves,  &Session::Read,
            &Session::Write,        &Session::Get,           &Session::GetByNumber,  &Session::First,
            &Session::Next,         &Session::ListNames,     &Session::SetDelimiter, &Session::SetValue,
            &Session::DeleteNode,
        };
        (this->*edits[m_input.Byte() % std::size(edits)])();
        Check();
    }

private:
    // No text holds a section inside another: it knows of no environment by itself.
    static void AddInnerSection(ModelNode &section) {
        ModelNode *at = &section;
        for (const auto kind : {ModelNode::Section, ModelNode::Block, ModelNode::Data}) {
            NodePtr node = NewNode(kind, "a");
            Require(BlockOf(*at).InsertElement(node->element), "an inner section");
            at = at->Append(std::move(node));
        }
    }

    // ---- Choices

    Handle &AnyTop() { return m_tops[m_input.Byte() % 2]; }

    Handle &AnyHandle() {
        const std::size_t choice = m_input.Byte() % (2 + m_views.size());
        return choice < 2 ? m_tops[choice] : *m_views[choice - 2];
    }

    // Mostly that of a node which is there, or of one below it; else any steps or any text.
    Address AnyAddress(const Handle &handle) {
        const std::uint8_t choice = m_input.Byte();
        Address address;
        if (choice % 8 > 2) {
            address = AddressOfNode(handle.model, choice / 8);
        } else {
            address.section = m_input.Name();
            if (choice % 8 == 1)
                address.path = m_input.Text();
            else if (choice % 8 == 2)
                address.path = AnySteps(handle.model.delimiter, choice / 8 % 3);
        }
        for (const zr::test::ModelStep &step : zr::test::StepsOf(address.path.value_or(""), handle.model.delimiter))
            if (step.position > FarthestPosition) // as many elements would be made
                address.path = "a";
        return address;
    }

    std::string AnySteps(char delimiter, int more) {
        std::string path;
        for (int i = more; i >= 0; --i) {
            const std::uint8_t position = m_input.Byte();
            path += m_input.Name().value_or("a");
            if (position % 3 == 0)
                path += delimiter + std::to_string(position / 3 % 6);
            if (i > 0)
                path += delimiter;
        }
        return path;
    }

    Address AddressOfNode(const ModelEnv &env, int choice) {
        const std::vector<ModelNode *> nodes = fuzz::NodesOf(env);
        const std::uint8_t which = m_input.Byte();
        if (nodes.empty())
            return {m_input.Name(), std::nullopt};
        fuzz::NodeAddress address(env, nodes[which % nodes.size()], choice % 4 == 2);
        if (choice % 4 == 3)
            address.steps.push_back(m_input.Name().value_or("b"));
        return {env.IsSub() ? m_input.Name() : address.section, address.Path(env.delimiter)};
    }

    std::vector<ModelNode *> AllNodes() const {
        std::vector<ModelNode *> nodes;
        for (const Handle &top : m_tops)
            for (const NodePtr &section : top.model.sections)
                fuzz::Collect(*section, nodes);
        for (const NodePtr &node : m_drawer)
            fuzz::Collect(*node, nodes);
        return nodes;
    }

    // Any node of both trees or the drawer; null where there is none.
    ModelNode *AnyNode() {
        const std::vector<ModelNode *> nodes = AllNodes();
        return nodes.empty() ? nullptr : nodes[m_input.Byte() % nodes.size()];
    }

    ModelNode *AnyBlock() {
        std::vector<ModelNode *> nodes = AllNodes();
        std::erase_if(nodes, [](const ModelNode *node) { return !node->IsBlock(); });
        return nodes.empty() ? nullptr : nodes[m_input.Byte() % nodes.size()];
    }

    ModelNode *AnyChild(const ModelNode *block) {
        const std::uint8_t choice = m_input.Byte();
        return !block || block->children.empty() ? nullptr : block->children[choice % block->children.size()].get();
    }

    bool IsFull() const { return AllNodes().size() > MostNodes; }

    // ---- Where nodes stand

    static ModelNode &Uppermost(ModelNode &node) {
        ModelNode *at = &node;
        while (at->parent)
            at = at->parent;
        return *at;
    }

    // The environment that holds a node; null for the drawer.
    Handle *OwnerOf(ModelNode &node) {
        const ModelNode *top = &Uppermost(node);
        for (Handle &handle : m_tops)
            for (const NodePtr &section : handle.model.sections)
                if (section.get() == top)
                    return &handle;
        return nullptr;
    }

    static bool IsInnerSection(const ModelNode *node) {
        return node && node->kind == ModelNode::Section && node->parent;
    }

    // The id that an element is found with; a section inside a block tells of none.
    zr_long IdOf(ModelNode &node) {
        const Handle *owner = IsInnerSection(&node) ? nullptr : OwnerOf(node);
        return owner ? owner->model.id : 0;
    }

    bool IsInDrawer(const ModelNode &node) const {
        return std::any_of(m_drawer.begin(), m_drawer.end(), [&](const NodePtr &own) { return own.get() == &node; });
    }

    // Takes a node out of the model, wherever it stands.
    NodePtr TakeOut(ModelNode &node) {
        if (node.parent)
            return node.parent->Take(&node);
        for (std::vector<NodePtr> *list : {&m_tops[0].model.sections, &m_tops[1].model.sections, &m_drawer}) {
            for (NodePtr &own : *list) {
                if (own.get() == &node) {
                    NodePtr taken = std::move(own);
                    std::erase(*list, nullptr);
                    return taken;
                }
            }
        }
        Require(false, "a node stands somewhere");
        return nullptr;
    }

    // Views are to be closed before what lies under them is taken out, to be ended who knows when.
    void CloseViewsBelow(const ModelNode &node) {
        for (std::size_t i = m_views.size(); i-- > 0;)
            if (m_views[i]->model.root && node.IsAtOrAbove(m_views[i]->model.root))
                CloseView(i);
    }

    // Views lose the roots that leave their tree.
    void LeaveTree(ModelNode &node, const Handle *to) {
        Handle *owner = OwnerOf(node);
        if (owner && owner != to)
            owner->model.ForgetRootsBelow(&node);
    }

    // What a look-up by path gives is told only where no index on the way is out of order.
    static bool IsTold(const ModelEnv &env) {
        for (const ModelEnv *at = &env; at; at = at->defaults)
            if (at->HasBlurred() || (at->parent && at->parent->HasBlurred()))
                return false;
        return true;
    }

    // ---- Edits by path

    void Put() {
        Handle &handle = AnyHandle();
        const Address address = AnyAddress(handle);
        const std::uint8_t choice = m_input.Byte();
        const std::string text = m_input.Text();
        if (IsFull() || !IsTold(handle.model))
            return;
        ForgetCursors();
        const char *section = OrNull(address.section);
        const char *path = OrNull(address.path);
        const auto number = static_cast<zr_long>(text.size());
        std::string value = text;
        int result = 0;
        if (choice % 8 == 0) {
            value = std::to_string(number);
            result = env_put_long(handle.Env(), section, path, number);
        } else if (choice % 8 == 1) {
            value = std::to_string(number) + ".5";
            result = env_put_double(handle.Env(), section, path, number + 0.5);
        } else if (choice % 8 == 2) {
            const zr_long numbers[] = {number, -1};
            value = std::to_string(number) + ",-1";
            result = env_put_longs(handle.Env(), section, path, 2, numbers);
        } else if (choice % 8 == 3) {
            const char *texts[] = {text.c_str(), text.c_str()};
            value = text + "," + text;
            result = env_put_strings(handle.Env(), section, path, 2, texts);
        } else {
            result = env_put(handle.Env(), section, path, text.c_str());
            if (address.path && address.path->empty())
                return Require(result == Zr::ENV_EMPTY_PATH, "an empty path is refused");
        }
        Require(result == StoreInModel(handle.model, address.section, address.path, value), "result of putting");
    }

    static int StoreInModel(ModelEnv &env, const ModelText &section, const ModelText &path, const std::string &value) {
        ModelNode *data = env.GetOrCreateData(section, path);
        if (data)
            data->value = value;
        return data ? int{Zr::ENV_OK} : env.lastError;
    }

    void Delete() {
        Handle &handle = AnyHandle();
        const Address address = AnyAddress(handle);
        if (!IsTold(handle.model))
            return;
        ForgetCursors();
        const int result = env_delete(handle.Env(), OrNull(address.section), OrNull(address.path));
        Require(result == handle.model.Delete(address.section, address.path), "result of deleting");
    }

    void Rename() {
        Handle &handle = AnyHandle();
        const Address address = AnyAddress(handle);
        const ModelText name = m_input.Name();
        if (!IsTold(handle.model))
            return;
        ModelNode *node = handle.model.GetElement(address.section, address.path, true, false);
        const int result = env_rename(handle.Env(), OrNull(address.section), OrNull(address.path), OrNull(name));
        if (!handle.model.IsSub() && !address.section)
            return Require(result == Zr::ENV_ERROR, "renaming without section");
        if (!node)
            return Require(result == Zr::ENV_NOT_FOUND, "renaming what is not there");
        Require((result == Zr::ENV_OK) == CanBear(*node, name), "result of renaming");
        if (result == Zr::ENV_OK)
            SetModelName(*node, *name);
    }

    static bool CanBear(const ModelNode &node, const ModelText &name) {
        return node.kind == ModelNode::Section ? zr::test::IsSectionName(name) : zr::test::IsElementName(name);
    }

    // After the library did it: where the old entry was not found under the new name it counts once more.
    static void SetModelName(ModelNode &node, const std::string &name) {
        node.name = name;
        ModelNode *parent = node.parent;
        if (!parent)
            return;
        const std::size_t count = BlockOf(*parent).GetElemCount();
        if (!parent->blurred && !parent->IsSorted() && count != parent->children.size()) {
            Require(count == parent->children.size() + 1, "one entry stays behind");
            parent->blurred = true;
        }
        parent->FileAnew(&node);
    }

    void InsertByPath() {
        Handle &handle = AnyHandle();
        const Address address = AnyAddress(handle);
        const ModelText name = m_input.Name();
        if (IsFull() || !IsTold(handle.model))
            return;
        ModelEnv &env = handle.model;
        const int result = env_insert_before(handle.Env(), OrNull(address.section), OrNull(address.path), OrNull(name));
        if (!env.IsSub() && !address.path) {
            ModelNode *anchor = env.GetSection(address.section);
            Require(result == (anchor ? Zr::ENV_OK : Zr::ENV_NOT_FOUND), "result of a section in front");
            if (anchor)
                env.sections.insert(SectionAt(env, *anchor), ModelNode::Make(ModelNode::Section, name));
            return;
        }
        ModelNode *anchor = env.GetElement(address.section, address.path, true, true);
        const int expected = !anchor ? Zr::ENV_NOT_FOUND : !anchor->parent ? Zr::ENV_ERROR : Zr::ENV_OK;
        Require(result == expected, "result of an element in front");
        if (expected == Zr::ENV_OK)
            anchor->parent->InsertBefore(ModelNode::Make(ModelNode::Data, name), anchor);
    }

    static std::vector<NodePtr>::iterator SectionAt(ModelEnv &env, const ModelNode &section) {
        return std::find_if(env.sections.begin(), env.sections.end(),
                            [&](const NodePtr &own) { return own.get() == &section; });
    }

    // ---- Views and defaults

    void OpenView() {
        Handle &handle = AnyHandle();
        const Address address = AnyAddress(handle);
        const std::uint8_t choice = m_input.Byte();
        if (IsFull() || m_views.size() >= MostViews || !IsTold(handle.model))
            return;
        const char *section = OrNull(address.section);
        const char *path = OrNull(address.path);
        auto view = std::make_unique<Handle>();
        ModelNode *root = nullptr;
        if (choice % 2 == 0) {
            root = handle.model.GetElement(address.section, address.path, choice % 4 == 0, false);
            view->env = reinterpret_cast<CZrEnv *>(env_open_subenv(handle.Env(), section, path, choice % 4 == 0));
        } else {
            ForgetCursors();
            root = CreateRoot(handle.model, address);
            view->env = reinterpret_cast<CZrEnv *>(env_create_subenv(handle.Env(), section, path));
        }
        Require((view->env != nullptr) == (root != nullptr), "view");
        if (!root)
            return;
        // A section inside a block belongs to no environment by itself: a view of it has none either.
        Handle *owner = OwnerOf(*root);
        if (IsInnerSection(root)) {
            Require(!view->env->IsSubEnv(), "view of a section inside a block");
            env_close(view->Env(), 0);
            return;
        }
        view->model = ViewOf(owner->model, *root);
        m_views.push_back(std::move(view));
        owner->model.subs.push_back(&m_views.back()->model);
    }

    static ModelNode *CreateRoot(ModelEnv &env, const Address &address) {
        ModelNode *root = env.GetElement(address.section, address.path, true, false);
        if (!root)
            root = env.CreatePath(address.section, address.path, ModelNode::Block);
        // At top level only what the environment holds by itself can be viewed.
        return !env.IsSub() && IsInnerSection(root) ? nullptr : root;
    }

    static ModelEnv ViewOf(ModelEnv &top, ModelNode &root) {
        ModelEnv view;
        view.id = top.id;
        view.delimiter = top.delimiter;
        view.defaults = top.defaults;
        view.parent = &top;
        view.root = &root;
        return view;
    }

    void CloseView(std::size_t at) {
        Handle &view = *m_views[at];
        std::erase(view.model.parent->subs, &view.model);
        Require(env_close(view.Env(), 0) == Zr::ENV_OK, "a view is closed");
        m_views.erase(m_views.begin() + static_cast<std::ptrdiff_t>(at));
    }

    // An environment that others hold stays; else a new one comes in its place.
    void CloseAny() {
        const std::size_t choice = m_input.Byte() % (2 + m_views.size());
        if (choice >= 2)
            return CloseView(choice - 2);
        Handle &top = m_tops[choice];
        ModelEnv &other = m_tops[1 - choice].model;
        const bool isHeld = !top.model.subs.empty() || other.defaults == &top.model;
        if (!isHeld && m_input.Byte() % 4 != 0)
            return;
        ForgetCursors();
        Require(env_close(top.Env(), 0) == (isHeld ? Zr::ENV_IN_USE : Zr::ENV_OK), "result of closing");
        if (isHeld)
            return;
        // The views of the other environment that were opened with this one as their default have lost it.
        for (const auto &view : m_views)
            if (view->model.defaults == &top.model)
                view->model.defaults = nullptr;
        top.model.DeleteSections();
        top.model.defaults = nullptr;
        top.model.delimiter = '@';
        top.env = CZrEnv::CreateEnv(top.model.id, nullptr);
    }

    // Either environment behind the other, never both.
    void Defaults() {
        const std::size_t choice = m_input.Byte() % 4;
        Handle &front = m_tops[choice / 2];
        Handle &behind = m_tops[1 - choice / 2];
        if (choice % 2 == 0) {
            Require(env_detach_default_chain(front.Env()) == (front.model.defaults ? behind.Env() : nullptr), "chain");
            front.model.defaults = nullptr;
            return;
        }
        env_attach_as_last_default(front.Env(), behind.Env());
        if (!behind.model.defaults)
            front.model.defaults = &behind.model;
    }

    void SetDelimiter() {
        Handle &handle = AnyHandle();
        const std::uint8_t choice = m_input.Byte();
        const char delimiter = choice < 128 ? '@' : choice < 160 ? '/' : static_cast<char>(m_input.Byte());
        Require(env_set_delimiter(handle.Env(), delimiter) == handle.model.delimiter, "delimiter");
        if (delimiter != '\0')
            handle.model.delimiter = delimiter;
    }

    // ---- Walks and copies

    static std::string StepPath(const ModelEnv &env, const ModelText &path, const ModelNode &node,
                                const std::vector<ModelNode *> &siblings) {
        int number = 1;
        for (const ModelNode *sibling : siblings) {
            if (sibling == &node)
                break;
            number += sibling->name == node.name ? 1 : 0;
        }
        return (path ? *path + env.delimiter : "") + node.name.value_or("") + env.delimiter + std::to_string(number);
    }

    std::vector<ModelNode *> SiblingsOf(ModelNode &node) {
        std::vector<ModelNode *> siblings;
        const std::vector<NodePtr> &list = node.parent ? node.parent->children : OwnerOf(node)->model.sections;
        for (const NodePtr &sibling : list)
            siblings.push_back(sibling.get());
        return siblings;
    }

    struct Visited {
        ModelText section;
        ModelText path;
        CZrEnvElement *root;
        bool operator==(const Visited &) const = default;
    };

    static void NoteVisit(zr_env sub, const char *section, const char *path, void *user) {
        const auto *view = reinterpret_cast<CZrEnv *>(sub);
        static_cast<std::vector<Visited> *>(user)->push_back({section ? ModelText(section) : std::nullopt,
                                                              path ? ModelText(path) : std::nullopt,
                                                              view ? view->GetSubEnvRootElement() : nullptr});
    }

    void Traverse() {
        Handle &handle = AnyHandle();
        const Address address = AnyAddress(handle);
        const bool direct = m_input.Byte() % 2 != 0;
        if (!IsTold(handle.model))
            return;
        std::vector<Visited> got;
        std::vector<Visited> expected;
        const int result =
            env_traverse(handle.Env(), OrNull(address.section), OrNull(address.path), direct, NoteVisit, &got);
        ModelEnv &env = handle.model;
        ModelNode *first = env.GetPosElement(address.section, address.path, 1, direct, true);
        const bool isEmptyTop = !env.IsSub() && env.sections.empty();
        Require(result == (first || isEmptyTop ? Zr::ENV_OK : Zr::ENV_NOT_FOUND), "result of a walk");
        if (isEmptyTop || !first)
            return Require(got.empty(), "nothing to visit");
        const std::vector<ModelNode *> siblings = SiblingsOf(*first);
        for (const ModelNode *node : siblings) {
            Visited visited{address.section, std::nullopt, nullptr};
            if (address.section || env.IsSub())
                visited.path = StepPath(env, address.path, *node, siblings);
            else
                visited.section = node->name;
            const ModelNode *found = env.GetElement(visited.section, visited.path, direct, false);
            visited.root = found ? found->element : nullptr;
            expected.push_back(visited);
        }
        Require(got == expected, "elements of a walk");
    }

    // What a walk of leaves makes of a view that has no children goes on to the defaults, and is left out.
    static bool CanWalkLeaves(const ModelEnv &env) {
        return IsTold(env) && (!env.IsSub() || !env.defaults || (env.root && !env.root->children.empty()));
    }

    // A section inside a block is passed by. False after a fault, which ends the walk.
    bool WalkLeaves(ModelEnv &env, const ModelText &section, const std::string &prefix, const Visit &visit) {
        std::vector<ModelNode *> siblings;
        for (const NodePtr &child : env.IsSub() ? env.root->children : env.sections)
            siblings.push_back(child.get());
        for (const ModelNode *node : siblings) {
            ModelText stepSection = section;
            ModelText stepPath;
            if (section || env.IsSub())
                stepPath = StepPath(env, std::nullopt, *node, siblings);
            else
                stepSection = node->name;
            ModelNode *found = env.GetElement(stepSection, stepPath, true, false);
            if (!found || found == env.root)
                return false;
            const std::string full =
                prefix + (prefix.empty() ? "" : std::string(1, env.delimiter)) + stepPath.value_or("");
            if (!found->IsBlock()) {
                if (!visit(stepSection, stepPath ? ModelText(full) : std::nullopt, *found))
                    return false;
            } else if (!found->children.empty() && !IsInnerSection(found)) {
                ModelEnv view = ViewOf(OwnerOf(*found)->model, *found);
                if (!WalkLeaves(view, stepSection, full, visit))
                    return false;
            }
        }
        return true;
    }

    int WalkLeaves(ModelEnv &env, const Visit &visit) {
        if (!env.IsSub() && env.sections.empty())
            return Zr::ENV_OK;
        if (env.IsSub() && (!env.root || env.root->children.empty()))
            return Zr::ENV_ERROR;
        return WalkLeaves(env, std::nullopt, "", visit) ? Zr::ENV_OK : Zr::ENV_ERROR;
    }

    void VisitLeaves() {
        Handle &handle = AnyHandle();
        if (!CanWalkLeaves(handle.model))
            return;
        std::vector<Visited> got;
        std::vector<Visited> expected;
        const int result = env_traverse_leafs(handle.Env(), NoteVisit, &got);
        const int expectedResult =
            WalkLeaves(handle.model, [&](const ModelText &section, const ModelText &path, const ModelNode &node) {
                expected.push_back({section, path, node.element});
                return true;
            });
        Require(result == expectedResult, "result of a walk of leaves");
        Require(got == expected, "leaves");
    }

    int SinkInModel(ModelEnv &target, ModelEnv &source, zr_long mode) {
        return WalkLeaves(source, [&](const ModelText &section, const ModelText &path, const ModelNode &node) {
            if (mode < 0 || mode > 3)
                return false;
            ModelText to = path;
            if (mode == 1) {
                const std::size_t last = path->rfind(source.delimiter);
                to = path->substr(0, last == std::string::npos ? 0 : last);
                const std::size_t number = target.CountPath(section, *to, true) + 1;
                to = (*to + source.delimiter + std::to_string(number)).substr(0, 255);
            } else if (mode != 2 && (target.GetElement(section, path, true, true) != nullptr) != (mode == 3)) {
                return true;
            }
            return node.value && to && !to->empty() && StoreInModel(target, section, to, *node.value) == Zr::ENV_OK;
        });
    }

    bool CanCopy(const Handle &target, const Handle &source) const {
        return !IsFull() && &Tops(target) != &Tops(source) && IsTold(target.model) && CanWalkLeaves(source.model);
    }

    static const ModelEnv &Tops(const Handle &handle) {
        return handle.model.parent ? *handle.model.parent : handle.model;
    }

    void Sink() {
        Handle &target = AnyHandle();
        Handle &source = AnyHandle();
        const auto mode = static_cast<zr_long>(m_input.Byte() % 5);
        if (!CanCopy(target, source))
            return;
        ForgetCursors();
        const int result = env_sink(target.Env(), source.Env(), mode);
        Require(result == SinkInModel(target.model, source.model, mode), "result of a sink");
    }

    void CopyBlock() {
        Handle &target = AnyHandle();
        Handle &source = AnyHandle();
        const Address to = AnyAddress(target);
        const Address from = AnyAddress(source);
        const auto mode = static_cast<zr_long>(m_input.Byte() % 4);
        if (!CanCopy(target, source))
            return;
        ModelNode *sourceRoot = source.model.GetElement(from.section, from.path, true, false);
        const ModelNode *there = target.model.GetElement(to.section, to.path, true, false);
        // A section inside a block makes a view of no environment. With defaults behind a root without children the walk
        // is left out, as above.
        if (IsInnerSection(sourceRoot) || IsInnerSection(there) ||
            (sourceRoot && sourceRoot->children.empty() && Tops(source).defaults))
            return;
        ForgetCursors();
        const int result = env_copy_block_to(target.Env(), source.Env(), OrNull(to.section), OrNull(to.path),
                                             OrNull(from.section), OrNull(from.path), mode);
        int expected = Zr::ENV_ERROR;
        ModelNode *targetRoot = sourceRoot ? CreateRoot(target.model, to) : nullptr;
        if (targetRoot) {
            ModelEnv sourceView = ViewOf(source.model.Top(), *sourceRoot);
            ModelEnv targetView = ViewOf(target.model.Top(), *targetRoot);
            // Both views follow what happens to their roots, as open ones do.
            target.model.Top().subs.push_back(&targetView);
            expected = SinkInModel(targetView, sourceView, mode);
            std::erase(target.model.Top().subs, &targetView);
        }
        Require(result == expected, "result of copying a block");
    }

    // ---- Edits of elements in hand

    static ModelNode::Kind AnyKind(std::uint8_t choice) {
        return choice % 8 == 0 ? ModelNode::Section : choice % 2 == 0 ? ModelNode::Block : ModelNode::Data;
    }

    // Some at once, so that names are looked up by an index.
    void Append() {
        const std::uint8_t choice = m_input.Byte();
        ModelNode *block = AnyBlock();
        if (!block || IsFull())
            return;
        for (int i = choice / 64; i >= 0; --i) {
            NodePtr node = NewNode(AnyKind(choice), m_input.Name());
            Require(BlockOf(*block).InsertElement(node->element), "append");
            block->Append(std::move(node));
        }
    }

    void InsertInFront() {
        const std::uint8_t choice = m_input.Byte();
        ModelNode *block = AnyBlock();
        const ModelNode *before = AnyChild(block);
        if (!before || IsFull())
            return;
        NodePtr node = NewNode(AnyKind(choice), m_input.Name());
        Require(BlockOf(*block).InsertElementBefore(node->element, before->element), "insert in front");
        block->InsertBefore(std::move(node), before);
    }

    void Remove() {
        const bool ends = m_input.Byte() % 2 != 0;
        ModelNode *block = AnyBlock();
        ModelNode *child = AnyChild(block);
        if (!child)
            return;
        ForgetCursors();
        if (!ends)
            CloseViewsBelow(*child);
        const bool removed = BlockOf(*block).RemoveElement(child->element, ends);
        Require(removed || block->blurred, "remove");
        if (!removed)
            return;
        if (!ends)
            m_drawer.push_back(block->Take(child));
        else
            EndInModel(*child);
    }

    void EndInModel(ModelNode &node) {
        if (Handle *owner = OwnerOf(node))
            owner->model.ForgetRootsBelow(&node);
        TakeOut(node);
    }

    // Whether a block takes a node as its child, from wherever that is.
    bool Takes(ModelNode &block, ModelNode &node) {
        return !node.IsAtOrAbove(&block) &&
               !(node.kind == ModelNode::Section && !node.parent && OwnerOf(node) != nullptr);
    }

    void Move() {
        ModelNode *block = AnyBlock();
        ModelNode *node = AnyNode();
        if (!block || !node || (node->parent && node->parent->blurred))
            return;
        ForgetCursors();
        const bool expected = node->parent != block && Takes(*block, *node);
        Require(BlockOf(*block).InsertElement(node->element) == expected, "move");
        if (!expected)
            return;
        LeaveTree(*node, OwnerOf(*block));
        block->Append(TakeOut(*node));
    }

    void MoveInFront() {
        ModelNode *block = AnyBlock();
        const ModelNode *before = AnyChild(block);
        ModelNode *node = AnyNode();
        if (!before || !node || (node->parent && node->parent->blurred))
            return;
        ForgetCursors();
        const bool expected = node->parent != block && Takes(*block, *node);
        Require(BlockOf(*block).InsertElementBefore(node->element, before->element) == expected, "move in front");
        if (!expected)
            return;
        LeaveTree(*node, OwnerOf(*block));
        block->InsertBefore(TakeOut(*node), before);
    }

    void ReplaceAny() {
        ModelNode *block = AnyBlock();
        ModelNode *old = AnyChild(block);
        const std::uint8_t choice = m_input.Byte();
        if (!old)
            return;
        ForgetCursors();
        if (choice % 2 == 0) {
            NodePtr node = NewNode(AnyKind(choice / 2), m_input.Name());
            Require(BlockOf(*block).ReplaceElement(old->element, node->element), "replace");
            return ReplaceInModel(*block, *old, std::move(node));
        }
        ModelNode *node = AnyNode();
        if (node->parent && node->parent->blurred)
            return;
        const bool expected = node != old && Takes(*block, *node);
        Require(BlockOf(*block).ReplaceElement(old->element, node->element) == expected, "replace by what is there");
        if (!expected)
            return;
        LeaveTree(*node, OwnerOf(*block));
        ReplaceInModel(*block, *old, TakeOut(*node));
    }

    void ReplaceInModel(ModelNode &block, ModelNode &old, NodePtr node) {
        if (Handle *owner = OwnerOf(block))
            owner->model.ForgetRootsBelow(&old);
        block.Replace(&old, std::move(node));
    }

    void SetName() {
        ModelNode *node = AnyNode();
        const ModelText name = m_input.Name();
        if (!node)
            return;
        const bool expected = CanBear(*node, name);
        Require(node->element->SetName(OrNull(name)) == expected, "name");
        if (expected)
            SetModelName(*node, *name);
    }

    void AddSection() {
        Handle &top = AnyTop();
        const ModelText name = m_input.Name();
        if (IsFull())
            return;
        CZrEnvSection *section = top.env->InsertSection(OrNull(name));
        ModelNode *node = top.model.InsertSection(name);
        Require((section != nullptr) == (node != nullptr), "section");
    }

    // To the end or in front of another, from the other environment, a block or the drawer.
    void MoveSection() {
        Handle &top = AnyTop();
        ModelNode *node = AnyNode();
        const std::uint8_t choice = m_input.Byte();
        if (!node || node->kind != ModelNode::Section || (node->parent && node->parent->blurred))
            return;
        ForgetCursors();
        Handle *owner = OwnerOf(*node);
        std::vector<NodePtr> &sections = top.model.sections;
        const ModelNode *before =
            choice % 2 == 0 || sections.empty() ? nullptr : sections[choice / 2 % sections.size()].get();
        const bool isHere = !node->parent && owner == &top;
        const bool expected = !isHere && (before || node->name);
        const bool isAbove = before && node->IsAtOrAbove(before);
        if (isAbove && !isHere)
            return;
        CZrEnvSection *section = node->element->ToEnvSection();
        CZrEnvSection *anchor = before ? before->element->ToEnvSection() : nullptr;
        Require(top.env->InsertSectionBefore(section, anchor) == expected, "a section moves");
        if (!expected)
            return;
        LeaveTree(*node, nullptr); // also where it moves in its own environment
        NodePtr taken = TakeOut(*node);
        sections.insert(before ? SectionAt(top.model, *before) : sections.end(), std::move(taken));
    }

    void DeleteNode() {
        ModelNode *node = AnyNode();
        if (!node)
            return;
        ForgetCursors();
        Handle *owner = OwnerOf(*node);
        Handle &handle = owner ? *owner : m_tops[0];
        const bool isNowhere = !node->parent && !owner;
        if (isNowhere && node->kind == ModelNode::Section)
            return; // to delete one that stands nowhere spoils the count
        const bool deleted = handle.env->DeleteElement(node->element);
        Require(deleted == !isNowhere || (node->parent && node->parent->blurred), "delete");
        if (deleted)
            EndInModel(*node);
    }

    void SetValue() {
        ModelNode *node = AnyNode();
        const std::string text = m_input.Text();
        if (!node || node->kind != ModelNode::Data)
            return;
        Require(node->element->ToEnvDataElement()->SetString(text.c_str()) == Zr::ENV_OK, "value");
        node->value = text;
    }

    // ---- Texts

    // Any text, or what the other environment writes: its elements lie in memory of another kind.
    void Read() {
        Handle &top = AnyTop();
        const std::uint8_t choice = m_input.Byte();
        const Handle &other = m_tops[&top == &m_tops[0] ? 1 : 0];
        const std::string text = choice % 4 == 0
                                     ? m_input.Text()
                                     : text_test::ReferenceWriter(AsTextTree(other.model), choice % 4 == 1).text;
        ForgetCursors();
        const text_test::ReferenceReader reference(text, false, eEnvReadAuto, "");
        Require(env_read_from_string(text.c_str(), top.Env()) == reference.result, "result of reading");
        top.model.DeleteSections();
        for (const text_test::Node &section : reference.sections)
            top.model.sections.push_back(fuzz::FromTextNode(section));
    }

    void Write() {
        const Handle &top = AnyTop();
        const bool wrap = m_input.Byte() % 2 != 0;
        char *text = env_write_to_string_ex(top.Env(), wrap);
        Require(text_test::ReferenceWriter(AsTextTree(top.model), wrap).text == text, "text");
        env_free_string(text);
    }

    // ---- Questions

    void Get() {
        Handle &handle = AnyHandle();
        const Address address = AnyAddress(handle);
        const bool direct = m_input.Byte() % 2 != 0;
        if (!IsTold(handle.model))
            return;
        ModelNode *node = handle.model.GetElement(address.section, address.path, direct, true);
        const char *text = "untouched";
        const int result =
            env_get_reference(handle.Env(), OrNull(address.section), OrNull(address.path), direct, &text);
        if (!node || node->IsBlock())
            return Require(result == (node ? Zr::ENV_DATA : Zr::ENV_NOT_FOUND), "no value");
        Require(result == IdOf(*node), "id of a value");
        Require(text ? node->value == text : !node->value, "value");
    }

    void GetByNumber() {
        Handle &handle = AnyHandle();
        const Address address = AnyAddress(handle);
        const zr_long number = m_input.Number();
        const bool direct = m_input.Byte() % 2 != 0;
        if (!IsTold(handle.model))
            return;
        ModelNode *node = handle.model.GetPosElement(address.section, address.path, number, direct, true);
        zr_long id = -1;
        const char *name = "untouched";
        const char *text = "untouched";
        const int result = env_get_core(handle.Env(), OrNull(address.section), OrNull(address.path), direct, number,
                                        &id, &name, &text);
        if (!node)
            return Require(result == handle.model.lastError, "no child of that number");
        Require(result == (node->IsBlock() ? Zr::ENV_BLOCK : Zr::ENV_DATA), "kind of a child");
        Require(name ? node->name == name : !node->name, "name of a child");
        Require(node->IsBlock() || (text ? node->value == text : !node->value), "value of a child");
    }

    // What an iteration copies of an element; the buffers are compared to their ends.
    struct Copies {
        std::string name = std::string(NameCapacity, '#');
        std::string text = std::string(TextCapacity, '#');
        bool operator==(const Copies &) const = default;
    };

    static bool CopyInto(std::string &buffer, const ModelText &text) {
        if (!text)
            return true;
        if (text->size() >= buffer.size())
            return false;
        buffer.replace(0, text->size() + 1, text->c_str(), text->size() + 1);
        return true;
    }

    static int Fill(const ModelNode &node, Copies &copies) {
        if (!CopyInto(copies.name, node.name))
            return Zr::ENV_TOO_SMALL;
        if (!node.IsBlock() && !CopyInto(copies.text, node.value))
            return Zr::ENV_TOO_SMALL;
        return node.IsBlock() ? Zr::ENV_BLOCK : Zr::ENV_DATA;
    }

    void First() {
        Handle &handle = AnyHandle();
        const Address address = AnyAddress(handle);
        if (!IsTold(handle.model))
            return;
        handle.cursor = handle.model.GetPosElement(address.section, address.path, 1, true, true);
        handle.hasCursor = true;
        Copies got;
        Copies expected;
        zr_long id = -1;
        const int result = env_get_first_core(handle.Env(), OrNull(address.section), OrNull(address.path), 1, &id,
                                              NameCapacity, got.name.data(), TextCapacity, got.text.data());
        Require(result == (handle.cursor ? Fill(*handle.cursor, expected) : int{Zr::ENV_NOT_FOUND}), "first");
        Require(got == expected, "copies of the first");
        const bool hasId = handle.cursor && result != Zr::ENV_TOO_SMALL;
        Require(id == (hasId ? IdOf(*handle.cursor) : -1), "id of the first");
        GoOn(handle);
    }

    void Next() { GoOn(AnyHandle()); }

    // Several steps at once: an iteration does not outlive most edits.
    void GoOn(Handle &handle) {
        for (int steps = m_input.Byte() % 4; steps >= 0 && handle.hasCursor; --steps) {
            ModelNode *next = nullptr;
            if (handle.cursor) {
                const std::vector<ModelNode *> siblings = SiblingsOf(*handle.cursor);
                const auto at = std::next(std::find(siblings.begin(), siblings.end(), handle.cursor));
                next = at == siblings.end() ? nullptr : *at;
            }
            Copies got;
            Copies expected;
            const int result =
                env_get_next_core(handle.Env(), NameCapacity, got.name.data(), TextCapacity, got.text.data());
            Require(result == (next ? Fill(*next, expected) : int{Zr::ENV_NOT_FOUND}), "next");
            Require(got == expected, "copies of the next");
            handle.cursor = next;
            handle.hasCursor = next != nullptr;
        }
    }

    void ForgetCursors() {
        for (Handle &top : m_tops)
            top.hasCursor = false;
        for (const auto &view : m_views)
            view->hasCursor = false;
    }

    void ListNames() {
        Handle &handle = AnyHandle();
        const Address address = AnyAddress(handle);
        const std::uint8_t choice = m_input.Byte();
        if (!IsTold(handle.model))
            return;
        const std::vector<NodePtr> *list = nullptr;
        if (!handle.model.IsSub() && !address.section) {
            list = &handle.model.sections;
        } else {
            const ModelNode *block = handle.model.GetElement(address.section, address.path, true, true);
            list = block && block->IsBlock() ? &block->children : nullptr;
        }
        std::string names;
        for (std::size_t i = 0; list && i < list->size(); ++i)
            names += (*list)[i]->name.value_or("") + ";";
        const std::size_t capacity = names.size() + choice % 3U;
        std::string out(capacity + 1, '#');
        const int result = env_list_elem_names(handle.Env(), OrNull(address.section), OrNull(address.path), 1, ';',
                                               static_cast<zr_long>(capacity), out.data());
        const bool fits = names.empty() || names.size() < capacity;
        Require(result == (!list ? Zr::ENV_BLOCK : fits ? Zr::ENV_OK : Zr::ENV_TOO_SMALL), "result of names");
        Require(capacity == 0 || out.c_str() == (result == Zr::ENV_OK ? names : ""), "names");
    }

    // ---- After each edit

    void Check() {
        for (Handle &top : m_tops) {
            Fault(Compare(top.model, *top.env));
            const bool builds = m_input.Byte() % 4 == 0; // else most blocks go without an index for a while
            using Indexes = Zr::CZrEnvTreeCheck::Indexes;
            Fault(Zr::CZrEnvTreeCheck::OfEnvironment(*top.env, builds ? Indexes::Build : Indexes::AsTheyAre).what);
            for (const NodePtr &section : top.model.sections)
                Fault(builds ? CompareNames(*section) : "");
        }
        for (const NodePtr &node : m_drawer)
            Fault(Compare(*node, node->element));
        for (const auto &view : m_views) {
            const CZrEnvElement *root = view->env->GetSubEnvRootElement();
            Fault(root == (view->model.root ? view->model.root->element : nullptr) ? "" : "another root of a view");
        }
        for (const std::string &report : fuzz::TakeReports())
            for (const char *fault : {"error ZrEnv|Unexpected nil", "error ZrEnvBlock|Unexpected nil",
                                      "error ZrEnv|unbekannt", "error ZrEnv|NULL-Pointer"})
                Require(!report.starts_with(fault), fault);
    }

    static void Fault(const std::string &what) { Require(what.empty(), what.c_str()); }

    TreeInput &m_input;
    Handle m_tops[2];
    std::vector<std::unique_ptr<Handle>> m_views;
    std::vector<NodePtr> m_drawer; // elements that stand nowhere
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    fuzz::TakeReports();
    TreeInput input(data, size);
    Session session(input);
    for (int steps = 0; steps < 100 && !input.Empty(); ++steps)
        session.Step();
    return 0;
}
