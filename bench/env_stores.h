// The data store and its peers, each asked for the same work: one class for each library.
//
// Read and ReadFile make the tree, End ends it, Value looks one target up, Write gives the size of the text that it
// makes. Ask puts the way to a target into the form of the library, before the time is taken.
#ifndef ZR_BENCH_ENV_STORES_H
#define ZR_BENCH_ENV_STORES_H

#include <cstdlib>
#include <cstring>
#include <sstream>
#include <string>
#include <vector>

#include <boost/property_tree/info_parser.hpp>
#include <glib.h>
#include <pugixml.hpp>
#include <rapidjson/document.h>
#include <rapidjson/pointer.h>
#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>
#include <zrclb/zrclb.h>

#include "model_text.h"

namespace bench {

// The steps from `first` to `last`, joined.
inline std::string Joined(const std::vector<std::string> &steps, std::size_t first, std::size_t last, char delimiter) {
    std::string path;
    for (std::size_t i = first; i < last; ++i)
        path += (i == first ? "" : std::string(1, delimiter)) + steps[i];
    return path;
}

inline void Require(bool done) {
    if (!done)
        std::abort();
}

// What a look-up asks for: one text or two, in the form of each library.
struct Question {
    std::string head;
    std::string tail;
};

struct Store {
    zr_env env = nullptr;
    static const std::string &Text(const ModelText &model) { return model.env; }
    static Question Ask(const std::vector<std::string> &steps) {
        return {steps[0], Joined(steps, 1, steps.size(), '@')};
    }
    static Question AskName(const std::vector<std::string> &steps) { return {steps[0], steps.back()}; }
    void Read(const std::string &text) {
        env = env_open(1, nullptr);
        Require(env_read_from_string(text.c_str(), env) == 0);
    }
    void ReadFile(const std::string &path) {
        env = env_open(1, nullptr);
        Require(env_read_file(path.c_str(), env) == 0);
    }
    void End() { env_close(env, 0); }
    double Value(const Question &question) {
        double value = 0;
        env_get_double(env, question.head.c_str(), question.tail.c_str(), 1, &value);
        return value;
    }
    double ValueOfName(const Question &question) {
        double value = 0;
        env_get_double(env, question.head.c_str(), question.tail.c_str(), 0, &value);
        return value;
    }
    std::size_t Write() {
        char *text = env_write_to_string_ex(env, 0);
        const std::size_t size = std::strlen(text);
        env_free_string(text);
        return size;
    }
    void WriteFile(const std::string &path) { Require(env_write_file_ex(path.c_str(), env, 0) == 1); }
};

struct Pugi {
    pugi::xml_document *document = nullptr;
    struct Sink : pugi::xml_writer {
        std::string text;
        void write(const void *data, std::size_t size) override { text.append(static_cast<const char *>(data), size); }
    };
    static const std::string &Text(const ModelText &model) { return model.xml; }
    static Question Ask(const std::vector<std::string> &steps) {
        return {"model/" + Joined(steps, 0, steps.size(), '/'), ""};
    }
    static Question AskName(const std::vector<std::string> &steps) { return {"model/" + steps[0], steps.back()}; }
    void Read(const std::string &text) {
        document = new pugi::xml_document;
        Require(document->load_buffer(text.data(), text.size()));
    }
    void ReadFile(const std::string &path) {
        document = new pugi::xml_document;
        Require(document->load_file(path.c_str()));
    }
    void End() { delete document; }
    double Value(const Question &question) {
        return document->first_element_by_path(question.head.c_str()).text().as_double();
    }
    // The nearest level first, as the data store searches.
    double ValueOfName(const Question &question) {
        std::vector<pugi::xml_node> blocks{document->first_element_by_path(question.head.c_str())};
        for (std::size_t next = 0; next < blocks.size(); ++next)
            for (pugi::xml_node node = blocks[next].first_child(); node; node = node.next_sibling()) {
                if (std::strcmp(node.name(), question.tail.c_str()) == 0)
                    return node.text().as_double();
                if (node.first_child().type() == pugi::node_element)
                    blocks.push_back(node);
            }
        return 0;
    }
    std::size_t Write() {
        Sink sink;
        document->save(sink, "  ");
        return sink.text.size();
    }
    void WriteFile(const std::string &path) { Require(document->save_file(path.c_str(), "  ")); }
};

struct KeyFile {
    GKeyFile *file = nullptr;
    static const std::string &Text(const ModelText &model) { return model.key_file; }
    static Question Ask(const std::vector<std::string> &steps) {
        return {Joined(steps, 0, steps.size() - 1, '/'), steps.back()};
    }
    void Read(const std::string &text) {
        file = g_key_file_new();
        Require(g_key_file_load_from_data(file, text.data(), text.size(), G_KEY_FILE_NONE, nullptr));
    }
    void End() { g_key_file_free(file); }
    double Value(const Question &question) {
        return g_key_file_get_double(file, question.head.c_str(), question.tail.c_str(), nullptr);
    }
    std::size_t Write() {
        gsize size = 0;
        g_free(g_key_file_to_data(file, &size, nullptr));
        return size;
    }
};

struct PropertyTree {
    boost::property_tree::ptree *tree = nullptr;
    static const std::string &Text(const ModelText &model) { return model.info; }
    static Question Ask(const std::vector<std::string> &steps) { return {Joined(steps, 0, steps.size(), '.'), ""}; }
    void Read(const std::string &text) {
        tree = new boost::property_tree::ptree;
        std::istringstream stream(text);
        boost::property_tree::read_info(stream, *tree);
    }
    void End() { delete tree; }
    double Value(const Question &question) { return tree->get<double>(question.head); }
    std::size_t Write() {
        std::ostringstream text;
        boost::property_tree::write_info(text, *tree);
        return text.str().size();
    }
};

struct RapidJson {
    rapidjson::Document *document = nullptr;
    static const std::string &Text(const ModelText &model) { return model.json; }
    static Question Ask(const std::vector<std::string> &steps) {
        return {"/" + Joined(steps, 0, steps.size(), '/'), ""};
    }
    void Read(const std::string &text) {
        document = new rapidjson::Document;
        Require(!document->Parse(text.data(), text.size()).HasParseError());
    }
    void End() { delete document; }
    double Value(const Question &question) {
        return rapidjson::Pointer(question.head.data(), question.head.size()).Get(*document)->GetDouble();
    }
    std::size_t Write() {
        rapidjson::StringBuffer buffer;
        rapidjson::PrettyWriter<rapidjson::StringBuffer> writer(buffer);
        writer.SetIndent(' ', 2);
        document->Accept(writer);
        return buffer.GetSize();
    }
};

} // namespace bench

#endif
