// Files of the environment format as the verbs see them: read, checked, written back as they came.
#ifndef ZRTOOL_ENV_FILE_H
#define ZRTOOL_ENV_FILE_H

#include <string>
#include <string_view>
#include <vector>

#include <zrclb/env.hpp>

#include "json.h"
#include "session.h"

namespace zrtool {

// Environments that live as long as this object. The first is the one in front; each further one stands behind it as a
// default.
class Chain {
public:
    Chain() = default;
    ~Chain();
    Chain(const Chain &) = delete;
    Chain &operator=(const Chain &) = delete;

    // A new, empty environment at the end of the chain; its id is its number, from 0.
    Zr::CZrEnv &Add();
    Zr::CZrEnv &Front() { return *m_envs.front(); }

private:
    std::vector<Zr::CZrEnv *> m_envs;
};

// The bytes of a file, as they are; any file that the host can open and read to its end. Failure with InputOutput.
std::string ReadBytes(const std::string &path);

// What a text stream delivers of these bytes: CR LF becomes LF, and 0x1A ends the text.
std::string TextOf(std::string_view bytes);

// True when the text starts with a mode line, so that its backslashes are plain characters.
bool IsNotWrapped(std::string_view text);

// The first comment of the text, or the first text in front of all sections: what no writing keeps. False without any.
bool FindUnkept(std::string_view text, Place &place, const char *&what);

// Reads a text into an empty environment. Failure with BadData, its message "FILE:LINE:COLUMN: text", when the text is
// wrong; `path` is for the message only.
void ReadText(const Session &session, const std::string &path, const std::string &text, Zr::CZrEnv &env);

// True when text stands behind the first byte 0x1A, which ends the reading; `place` is that byte's.
bool FindCut(std::string_view bytes, Place &place);

// Warns of such text: the file that is written does not have it.
void WarnOfCut(const Session &session, const std::string &path, std::string_view bytes);

// ReadBytes, TextOf and ReadText in one, with the bytes as the result.
std::string ReadEnvironment(const Session &session, const std::string &path, Zr::CZrEnv &env);

// Looks at every link, count and index of the tree in memory. Failure with BadData, naming the place in the tree, when one is
// wrong; `path` is for the message only.
void CheckTree(const Session &session, const std::string &path, const Zr::CZrEnv &env);

// The environment's text in the format's own line ends. Failure with InputOutput when the library could not make all
// of it.
std::string WriteText(const Zr::CZrEnv &env, bool wrap);

// A tree written to a text, and that text read again: what a file keeps of the tree.
class ReadBack {
public:
    ReadBack(const Session &session, const Zr::CZrEnv &env, bool wrap);

    const std::string &Text() const { return m_text; }
    // Why the text cannot be read; empty when it can.
    const std::string &Fault() const { return m_fault; }
    // The first difference in words, with its place, or the fault; empty when the tree comes back as it was.
    const std::string &Loss() const { return m_loss; }
    // What was read.
    Zr::CZrEnv &Env() { return m_chain.Front(); }

private:
    Chain m_chain;
    std::string m_text;
    std::string m_fault;
    std::string m_loss;
};

} // namespace zrtool

#endif
