// The tree as JSON, and back.
//
//   document = { "zrenv": 1, "sections": [ section ... ] }
//   section  = { "name": text, "children": [ element ... ] }
//   element  = { "name": text, "value": text or null }          a data element
//            | { "name": text, "children": [ element ... ] }    a block
#include "env_json.h"

#include <algorithm>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "json.h"
#include "tree_walk.h"

namespace zrtool {

namespace {

constexpr std::size_t deepestIndent = 32; // levels; below it the indentation would outgrow the data

void NewLine(std::string &out, std::size_t level) {
    out += '\n';
    out.append(2 * std::min(level, deepestIndent), ' ');
}

void WriteHead(std::string &out, const Zr::CZrEnvElement &elem) {
    out += "{\"name\": ";
    AppendJsonString(out, NameOf(elem));
    const Zr::CZrEnvDataElement *data = elem.ToEnvDataElement();
    if (data == nullptr) {
        out += ", \"children\": [";
        return;
    }
    out += ", \"value\": ";
    if (data->GetString() == nullptr)
        out += "null";
    else
        AppendJsonString(out, data->GetString());
    out += '}';
}

// Reads the document. Elements under construction stand on a stack: the object of an element is a frame, and its block,
// once "children" has been met, takes the elements that end inside it.
class Builder {
public:
    Builder(std::string_view text, Zr::CZrEnv &env) : m_json(text), m_env(env) {}
    void Run();

private:
    struct Frame {
        std::size_t offset = 0;
        std::size_t nameOffset = 0;
        std::optional<std::string> name;
        bool hasValue = false;
        std::optional<std::string> value;
        std::unique_ptr<Zr::CZrEnvBlock> block;
    };

    void Expect(JsonEvent event, const char *wanted);
    void Sections();
    void Member(Frame &frame);
    void Items();
    void EndElement();
    void EndSection(Frame &frame);
    [[noreturn]] void Fail(const std::string &text) const { throw JsonFault(m_json.Offset(), text); }

    JsonReader m_json;
    Zr::CZrEnv &m_env;
    std::vector<Frame> m_frames; // the first is a section
};

void Builder::Expect(JsonEvent event, const char *wanted) {
    if (m_json.Next() != event)
        Fail(std::string("expected ") + wanted);
}

void Builder::Run() {
    bool version = false;
    bool sections = false;
    Expect(JsonEvent::BeginObject, "an object");
    for (;;) {
        const JsonEvent event = m_json.Next();
        if (event == JsonEvent::EndObject)
            break;
        if (m_json.Text() == "zrenv" && !version) {
            version = true;
            if (m_json.Next() != JsonEvent::Number || m_json.Text() != "1")
                Fail("this form of the document is not known, expected 1");
        } else if (m_json.Text() == "sections" && !sections) {
            sections = true;
            Expect(JsonEvent::BeginArray, "the array of sections");
            Sections();
        } else {
            Fail("unexpected or repeated member");
        }
    }
    if (!version)
        Fail("member \"zrenv\" is missing");
    if (!sections)
        Fail("member \"sections\" is missing");
    m_json.Next(); // only the end may follow
}

// Everything between the brackets of "sections", whatever its depth.
void Builder::Sections() {
    for (;;) {
        if (m_frames.empty()) {
            const JsonEvent event = m_json.Next();
            if (event == JsonEvent::EndArray)
                return;
            if (event != JsonEvent::BeginObject)
                Fail("expected a section's object");
            m_frames.emplace_back();
            m_frames.back().offset = m_json.Offset();
        }
        if (m_json.Next() == JsonEvent::EndObject)
            EndElement();
        else
            Member(m_frames.back());
    }
}

void Builder::Member(Frame &frame) {
    const std::string key = m_json.Text();
    if (key == "name" && !frame.name) {
        Expect(JsonEvent::String, "a text");
        frame.nameOffset = m_json.Offset();
        frame.name = m_json.Text();
    } else if (key == "value" && m_frames.size() > 1 && !frame.hasValue && !frame.block) {
        const JsonEvent event = m_json.Next();
        if (event != JsonEvent::String && event != JsonEvent::Null)
            Fail("expected a text or null");
        frame.hasValue = true;
        if (event == JsonEvent::String)
            frame.value = m_json.Text();
    } else if (key == "children" && !frame.hasValue && !frame.block) {
        Expect(JsonEvent::BeginArray, "the array of children");
        if (m_frames.size() == 1)
            frame.block = std::make_unique<Zr::CZrEnvSection>("");
        else
            frame.block = std::make_unique<Zr::CZrEnvBlock>("block");
        Items();
    } else {
        Fail("unexpected or repeated member");
    }
}

// At the start of an item of "children", or behind one: opens the next element, or ends the array.
void Builder::Items() {
    const JsonEvent event = m_json.Next();
    if (event == JsonEvent::EndArray)
        return;
    if (event != JsonEvent::BeginObject)
        Fail("expected an element's object");
    m_frames.emplace_back();
    m_frames.back().offset = m_json.Offset();
}

void Builder::EndElement() {
    Frame frame = std::move(m_frames.back());
    m_frames.pop_back();
    if (!frame.name)
        throw JsonFault(frame.offset, "member \"name\" is missing");
    if (!frame.block && !frame.hasValue)
        throw JsonFault(frame.offset, m_frames.empty() ? "member \"children\" is missing"
                                                       : "member \"value\" or \"children\" is missing");
    if (m_frames.empty())
        return EndSection(frame);
    if (!Zr::CZrEnv::CheckElementName(frame.name->c_str(), '\0'))
        throw JsonFault(frame.nameOffset, "no name for an element: empty, or with an equal sign");
    Zr::CZrEnvBlock &parent = *m_frames.back().block;
    if (frame.block) {
        frame.block->SetName(frame.name->c_str());
        parent.InsertElement(frame.block.release());
    } else {
        const char *value = frame.value ? frame.value->c_str() : nullptr;
        parent.InsertElement(new Zr::CZrEnvDataElement(frame.name->c_str(), value));
    }
    Items();
}

void Builder::EndSection(Frame &frame) {
    if (!frame.block->SetName(frame.name->c_str()))
        throw JsonFault(frame.nameOffset, "no name for a section: it holds a closing bracket");
    m_env.InsertSection(frame.block->ToEnvSection());
    frame.block.release();
}

} // namespace

std::string ToJson(const Zr::CZrEnv &env) {
    std::string out = "{\n  \"zrenv\": 1,\n  \"sections\": [";
    TreeWalk walk(env);
    bool first = true; // nothing stands yet between the innermost brackets
    for (TreeWalk::Step step = walk.Next(); step != TreeWalk::Step::End; step = walk.Next()) {
        if (step == TreeWalk::Step::Leave) {
            if (!first)
                NewLine(out, walk.Level() + 2);
            out += "]}";
            first = false;
            continue;
        }
        if (!first)
            out += ',';
        NewLine(out, walk.Level() + 2);
        WriteHead(out, *walk.Element());
        first = walk.Element()->ToEnvBlock() != nullptr;
    }
    out += first ? "]\n}\n" : "\n  ]\n}\n";
    return out;
}

void FromJson(std::string_view text, Zr::CZrEnv &env) {
    Builder(text, env).Run();
}

} // namespace zrtool
