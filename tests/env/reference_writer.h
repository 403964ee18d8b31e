// The writer of the text format in its plainest form: one character at a time, nesting by recursion. What the library's
// writer gives is compared with this.
#ifndef ZR_TESTS_ENV_REFERENCE_WRITER_H
#define ZR_TESTS_ENV_REFERENCE_WRITER_H

#include <string>

#include "env/text_tree.h"

namespace text_test {

class ReferenceWriter {
public:
    std::string text; // with CR LF at each line's end, as a string has it and as a text stream puts it into a file

    ReferenceWriter(const Tree &tree, bool wrapLines) : wrap(wrapLines) {
        if (!wrap)
            for (const char c : std::string("__ZR_ENV_READ_MODE__=NOT_WRAPPED\n"))
                Put(c);
        for (const Node &section : tree)
            PutElement(section);
    }

private:
    void Put(char c) {
        if (c == '\n')
            Put('\r');
        text += c;
        lastChar = c;
    }
    void PutText(const std::string &from) {
        for (const char c : from) {
            if (c == '\n') {
                PutText("<<\\n>>");
                continue;
            }
            if (c == '\r') {
                PutText("<<\\r>>");
                continue;
            }
            Put(c);
            ++column;
            if (!wrap || (indent + column) % 90 != wrapOffset)
                continue;
            if (lastChar != '\\') {
                Put('\\');
                Put('\n');
                wrapOffset = 0;
            } else {
                ++wrapOffset;
            }
        }
    }
    void PutIndent() {
        for (int i = 1; i < indent; ++i)
            Put(' ');
        wrapOffset = 0;
        column = 0;
    }
    void PutLineEnd() {
        if (lastChar == '\\')
            Put('\\');
        Put('\n');
    }
    void PutElement(const Node &node) {
        if (!node.name)
            return;
        if (node.kind == Node::Data) {
            if (!node.value)
                return;
            PutIndent();
            PutText(*node.name);
            PutText(" =");
            PutText(*node.value);
            PutLineEnd();
            return;
        }
        PutIndent();
        if (node.kind == Node::Section)
            PutText("[");
        PutText(*node.name);
        PutText(node.kind == Node::Section ? "]" : " ={");
        PutLineEnd();
        indent += 2;
        for (const Node &child : node.children)
            PutElement(child);
        indent -= 2;
        if (node.kind == Node::Block) {
            PutIndent();
            PutText("}");
            PutLineEnd();
        }
    }

    bool wrap;
    char lastChar = 0;
    int indent = 1;
    int wrapOffset = 0;
    int column = 0;
};

} // namespace text_test

#endif
