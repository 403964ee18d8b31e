// The tool's JSON: what is accepted, what is refused and where, and that a tree comes back whole.
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <zrclb/env.hpp>

#include "code_page.h"
#include "env_file.h"
#include "env_json.h"
#include "json.h"

namespace {

using namespace zrtool;

// All events as letters, texts and numbers behind theirs.
std::string Events(const std::string &text) {
    JsonReader reader(text);
    std::string events;
    for (;;) {
        switch (reader.Next()) {
        case JsonEvent::BeginObject:
            events += '{';
            break;
        case JsonEvent::EndObject:
            events += '}';
            break;
        case JsonEvent::BeginArray:
            events += '[';
            break;
        case JsonEvent::EndArray:
            events += ']';
            break;
        case JsonEvent::Key:
            events += "k" + reader.Text() + " ";
            break;
        case JsonEvent::String:
            events += "s" + reader.Text() + " ";
            break;
        case JsonEvent::Number:
            events += "n" + reader.Text() + " ";
            break;
        case JsonEvent::True:
            events += 'T';
            break;
        case JsonEvent::False:
            events += 'F';
            break;
        case JsonEvent::Null:
            events += 'N';
            break;
        case JsonEvent::End:
            return events;
        }
    }
}

// "LINE:COLUMN text" of the fault, or "none".
std::string FaultOf(const std::string &text) {
    try {
        Events(text);
    } catch (const JsonFault &fault) {
        const Place place = PlaceAt(text, fault.offset);
        return std::to_string(place.line) + ":" + std::to_string(place.column) + " " + fault.what();
    }
    return "none";
}

std::string TreeFault(const std::string &text) {
    Chain chain;
    try {
        FromJson(text, chain.Add());
    } catch (const JsonFault &fault) {
        const Place place = PlaceAt(text, fault.offset);
        return std::to_string(place.line) + ":" + std::to_string(place.column) + " " + fault.what();
    }
    return "none";
}

std::string Document(const std::string &sections) {
    return "{\"zrenv\": 1, \"sections\": [" + sections + "]}";
}

TEST(JsonReader, SoundTexts_GiveTheirEvents) {
    EXPECT_EQ(Events("{}"), "{}");
    EXPECT_EQ(Events(" [ ] "), "[]");
    EXPECT_EQ(Events("[[],[{}]]"), "[[][{}]]");
    EXPECT_EQ(Events("{\"a\":1,\"b\":[true,false,null]}\n"), "{ka n1 kb [TFN]}");
    EXPECT_EQ(Events("\t[0,-1,1.5,2e3,2E-3,1.25e+7]"), "[n0 n-1 n1.5 n2e3 n2E-3 n1.25e+7 ]");
    EXPECT_EQ(Events("\"\""), "s ");
    EXPECT_EQ(Events("\"a\\\"b\\\\c\\/d\\b\\f\\n\\r\\t\""), "sa\"b\\c/d\b\f\n\r\t ");
    EXPECT_EQ(Events("\"\\u0041\\u00e4\\u20AC\""), "sA\xE4\x80 ");
    EXPECT_EQ(Events("\"\xC3\xA4\xE2\x82\xAC\""), "s\xE4\x80 ");
    EXPECT_EQ(Events("\"\x7F\""), "s\x7F ");
}

TEST(JsonReader, MalformedTexts_AreFaultsWithTheirPlace) {
    EXPECT_EQ(FaultOf(""), "1:1 text ends too early, expected a value");
    EXPECT_EQ(FaultOf("{\"a\":1,}"), "1:8 unexpected character, expected a name in quotes");
    EXPECT_EQ(FaultOf("[1,]"), "1:4 unexpected character, expected a value");
    EXPECT_EQ(FaultOf("[1 2]"), "1:4 unexpected character, expected ',' or ']'");
    EXPECT_EQ(FaultOf("[1}"), "1:3 unexpected character, expected ',' or ']'");
    EXPECT_EQ(FaultOf("{\"a\" 1}"), "1:6 unexpected character, expected ':'");
    EXPECT_EQ(FaultOf("{a:1}"), "1:2 unexpected character, expected a name in quotes");
    EXPECT_EQ(FaultOf("[]\n[]"), "2:1 unexpected character, expected the end");
    EXPECT_EQ(FaultOf("\xEF\xBB\xBF[]"), "1:1 unexpected character, expected a value");
    EXPECT_EQ(FaultOf("\n\n  \"a\nb\""), "3:5 control character in a string");
    EXPECT_EQ(FaultOf("[\"ab"), "1:2 string without end");
    EXPECT_EQ(FaultOf("[\"ab\\"), "1:2 string without end");
    EXPECT_EQ(FaultOf("\"\\x41\""), "1:2 unknown escape");
    EXPECT_EQ(FaultOf("\"\\u12G4\""), "1:2 malformed \\u escape");
    EXPECT_EQ(FaultOf("\"\\ud800\""), "1:2 half of a surrogate pair");
    EXPECT_EQ(FaultOf("\"\\udc00\\ud800\""), "1:2 half of a surrogate pair");
    EXPECT_EQ(FaultOf("\"\\ud83d\\ude00\""), "1:2 a character that code page 1252 lacks");
    EXPECT_EQ(FaultOf("\"\\u0000\""), "1:2 a text cannot hold the character zero");
    EXPECT_EQ(FaultOf("\"\\u0080\""), "1:2 a character that code page 1252 lacks");
    EXPECT_EQ(FaultOf("\"\xE4\""), "1:2 not UTF-8");
    EXPECT_EQ(FaultOf("\"\xC0\x80\""), "1:2 not UTF-8");
    EXPECT_EQ(FaultOf("\"\xED\xA0\x80\""), "1:2 not UTF-8");
    EXPECT_EQ(FaultOf("\"\xF4\x90\x80\x80\""), "1:2 not UTF-8");
    EXPECT_EQ(FaultOf(std::string("[1,\0]", 5)), "1:4 unexpected character, expected a value");
    for (const char *text :
         {"01", "-", "1.", ".5", "+1", "1e", "1e+", "0x1", "NaN", "tru", "nul", "TRUE", "'a'", "/**/1"})
        EXPECT_NE(FaultOf(text), "none") << text;
}

TEST(JsonReader, EveryPrefixOfASoundText_IsAFault) {
    const std::string text = "{\"a\":[1.5e+2,\"x\\u0041\\n\xC3\xA4\",true,false,null,{}],\"b\":{\"c\":[]}}";
    ASSERT_EQ(FaultOf(text), "none");
    for (std::size_t length = 0; length < text.size(); ++length)
        EXPECT_NE(FaultOf(text.substr(0, length)), "none") << length;
}

TEST(CodePage, EveryByte_HasOnePointOfItsOwn) {
    for (unsigned value = 0; value < 256; ++value) {
        unsigned char back = 0;
        ASSERT_TRUE(ByteOfPoint(PointOfByte(static_cast<unsigned char>(value)), back)) << value;
        EXPECT_EQ(back, value);
    }
}

TEST(EnvJson, Document_HasTheDescribedForm) {
    Chain chain;
    Zr::CZrEnv &env = chain.Add();
    ASSERT_EQ(env.ReadString("[A]\n x =1\n b ={\n y =a\"\xE4\n }\n x =\n[B]\n", eEnvReadAuto), Zr::ENV_OK);
    EXPECT_EQ(ToJson(env), "{\n"
                           "  \"zrenv\": 1,\n"
                           "  \"sections\": [\n"
                           "    {\"name\": \"A\", \"children\": [\n"
                           "      {\"name\": \"x\", \"value\": \"1\"},\n"
                           "      {\"name\": \"b\", \"children\": [\n"
                           "        {\"name\": \"y\", \"value\": \"a\\\"\\u00E4\"}\n"
                           "      ]},\n"
                           "      {\"name\": \"x\", \"value\": \"\"}\n"
                           "    ]},\n"
                           "    {\"name\": \"B\", \"children\": []}\n"
                           "  ]\n"
                           "}\n");
    Chain empty;
    EXPECT_EQ(ToJson(empty.Add()), "{\n  \"zrenv\": 1,\n  \"sections\": []\n}\n");
}

TEST(EnvJson, OrderNamesakesMissingValuesAndAllBytes_ComeBack) {
    Chain chain;
    Zr::CZrEnv &env = chain.Add();
    std::string all;
    for (int value = 1; value < 256; ++value)
        all += static_cast<char>(value);
    ASSERT_EQ(env.SetString("S", "all", all.c_str()), Zr::ENV_OK);
    ASSERT_EQ(env.SetString("S", "x@1", "first"), Zr::ENV_OK);
    ASSERT_EQ(env.SetString("S", "b@y", ""), Zr::ENV_OK);
    ASSERT_EQ(env.SetString("S", "x@3", "third"), Zr::ENV_OK); // makes a second x, which is the last
    ASSERT_NE(env.InsertSection("S"), nullptr);
    ASSERT_NE(env.InsertSection(""), nullptr);
    ASSERT_TRUE(env.GetSection("S")->InsertElement(new Zr::CZrEnvDataElement("void", static_cast<char *>(nullptr))));
    const std::string json = ToJson(env);
    EXPECT_NE(json.find("{\"name\": \"void\", \"value\": null}"), std::string::npos) << json;

    Chain other;
    Zr::CZrEnv &back = other.Add();
    FromJson(json, back);
    EXPECT_EQ(ToJson(back), json);
    EXPECT_EQ(back.GetString("S", "all"), all);
    EXPECT_STREQ(back.GetString("S", "x@2"), "third");
    std::vector<std::string> names;
    EXPECT_EQ(back.GetSectionNames(names), Zr::ENV_OK);
    EXPECT_EQ(names, (std::vector<std::string>{"S", "S", ""}));
}

TEST(EnvJson, MembersInAnyOrder_AreUnderstood) {
    Chain chain;
    Zr::CZrEnv &env = chain.Add();
    FromJson("{\"sections\":[{\"children\":[{\"children\":[{\"value\":\"1\",\"name\":\"x\"}],\"name\":\"b\"}],"
             "\"name\":\"A\"}],\"zrenv\":1}",
             env);
    EXPECT_STREQ(env.GetString("A", "b@x"), "1");
}

TEST(EnvJson, DocumentsOfAnotherForm_AreFaultsWithTheirPlace) {
    EXPECT_EQ(TreeFault(Document("")), "none");
    EXPECT_EQ(TreeFault("[]"), "1:1 expected an object");
    EXPECT_EQ(TreeFault("{}"), "1:2 member \"zrenv\" is missing");
    EXPECT_EQ(TreeFault("{\"zrenv\":1}"), "1:11 member \"sections\" is missing");
    EXPECT_EQ(TreeFault("{\"zrenv\":2,\"sections\":[]}"), "1:10 this form of the document is not known, expected 1");
    EXPECT_EQ(TreeFault("{\"zrenv\":1,\"zrenv\":1,\"sections\":[]}"), "1:12 unexpected or repeated member");
    EXPECT_EQ(TreeFault("{\"zrenv\":1,\"sections\":[],\"more\":1}"), "1:26 unexpected or repeated member");
    EXPECT_EQ(TreeFault("{\"zrenv\":1,\"sections\":{}}"), "1:23 expected the array of sections");
    const std::vector<std::string> bad = {
        "1",
        "[]",
        "{}",
        "{\"name\":\"A\"}",
        "{\"children\":[]}",
        "{\"name\":1,\"children\":[]}",
        "{\"name\":null,\"children\":[]}",
        "{\"name\":\"A]\",\"children\":[]}",
        "{\"name\":\"A\",\"name\":\"B\",\"children\":[]}",
        "{\"name\":\"A\",\"children\":[],\"children\":[]}",
        "{\"name\":\"A\",\"value\":\"1\"}",
        "{\"name\":\"A\",\"children\":null}",
        "{\"name\":\"A\",\"children\":[1]}",
        "{\"name\":\"A\",\"children\":[{}]}",
        "{\"name\":\"A\",\"children\":[{\"name\":\"x\"}]}",
        "{\"name\":\"A\",\"children\":[{\"value\":\"1\"}]}",
        "{\"name\":\"A\",\"children\":[{\"name\":\"\",\"value\":\"1\"}]}",
        "{\"name\":\"A\",\"children\":[{\"name\":\"x=y\",\"value\":\"1\"}]}",
        "{\"name\":\"A\",\"children\":[{\"name\":\"x\",\"value\":1}]}",
        "{\"name\":\"A\",\"children\":[{\"name\":\"x\",\"value\":true}]}",
        "{\"name\":\"A\",\"children\":[{\"name\":\"x\",\"value\":\"1\",\"value\":\"2\"}]}",
        "{\"name\":\"A\",\"children\":[{\"name\":\"x\",\"value\":\"1\",\"children\":[]}]}",
        "{\"name\":\"A\",\"children\":[{\"name\":\"x\",\"children\":[],\"value\":null}]}",
        "{\"name\":\"A\",\"children\":[{\"name\":\"x\",\"value\":\"1\",\"unit\":\"m\"}]}",
    };
    for (const std::string &section : bad)
        EXPECT_NE(TreeFault(Document(section)), "none") << section;
    EXPECT_EQ(TreeFault(Document("\n{\"name\":\"A\",\"children\":[\n {\"name\":\"a=b\",\"value\":null}]}")),
              "3:10 no name for an element: empty, or with an equal sign");
}

TEST(EnvJson, DeepNesting_IsReadAndWrittenWithoutRecursion) {
    constexpr int depth = 100000;
    std::string json = "{\"zrenv\":1,\"sections\":[{\"name\":\"S\",\"children\":[";
    for (int i = 0; i < depth; ++i)
        json += "{\"name\":\"b\",\"children\":[";
    json += "{\"name\":\"x\",\"value\":\"deep\"}";
    for (int i = 0; i < depth; ++i)
        json += "]}";
    json += "]}]}";
    Chain chain;
    Zr::CZrEnv &env = chain.Add();
    FromJson(json, env);
    const Zr::CZrEnvElement *elem = env.GetElement("S", "x", false, false);
    ASSERT_NE(elem, nullptr);
    EXPECT_STREQ(elem->ToEnvDataElement()->GetString(), "deep");

    Chain other;
    Zr::CZrEnv &back = other.Add();
    const std::string written = ToJson(env);
    FromJson(written, back);
    EXPECT_EQ(ToJson(back), written);
    // A fault at the bottom gives everything above it back.
    EXPECT_NE(TreeFault(json.substr(0, json.size() / 2)), "none");
}

} // namespace
