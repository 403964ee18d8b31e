// Files of the environment format as the verbs see them.
#include "env_file.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <new>

#include "env/tree_check.h"
#include "reports.h"
#include "tree_walk.h"

namespace zrtool {

namespace {

constexpr std::string_view modeWord = "__ZR_ENV_READ_MODE__";

[[noreturn]] void FailAt(const std::string &path, Place place, const std::string &text) {
    throw Failure(BadData, path + ":" + std::to_string(place.line) + ":" + std::to_string(place.column) + ": " + text);
}

// A fold joins a line with the next one: one backslash and blanks, or a backslash alone, before the line feed; several
// backslashes right before it are none.
bool EndsInFold(std::string_view line) {
    const std::size_t last = line.find_last_not_of(' ');
    if (last == std::string_view::npos || line[last] != '\\')
        return false;
    return last + 1 < line.size() || last == 0 || line[last - 1] != '\\';
}

// The value in quotes, shortened.
std::string Quoted(const Session &session, const char *text) {
    constexpr std::size_t most = 40;
    const std::string_view whole = text;
    return "'" + session.ToUser(whole.substr(0, most)) + (whole.size() > most ? "...'" : "'");
}

std::string ValueLoss(const Session &session, const Zr::CZrEnvElement &was, const Zr::CZrEnvElement &is) {
    const Zr::CZrEnvDataElement *before = was.ToEnvDataElement();
    const Zr::CZrEnvDataElement *after = is.ToEnvDataElement();
    if (before == nullptr && after == nullptr)
        return "";
    const std::string place = session.ToUser(PlaceOf(was));
    if (before == nullptr || after == nullptr)
        return place + ": a value and a block are mistaken for one another";
    if (before->GetString() == nullptr)
        return place + ": an element without a value is lost";
    if (std::strcmp(ValueOf(was), ValueOf(is)) == 0)
        return "";
    return place + ": the value " + Quoted(session, before->GetString()) + " becomes " + Quoted(session, ValueOf(is));
}

std::string FirstDifference(const Session &session, const Zr::CZrEnv &before, const Zr::CZrEnv &after) {
    TreeWalk was(before);
    TreeWalk is(after);
    for (;;) {
        const TreeWalk::Step step = was.Next();
        const TreeWalk::Step other = is.Next();
        if (step == TreeWalk::Step::End && other == TreeWalk::Step::End)
            return "";
        if (step != other || (step == TreeWalk::Step::Enter && was.Level() != is.Level())) {
            const Zr::CZrEnvElement *where = was.Element() != nullptr ? was.Element() : is.Element();
            return session.ToUser(PlaceOf(*where)) + ": elements are lost or added here";
        }
        if (step == TreeWalk::Step::Leave)
            continue;
        if (std::strcmp(NameOf(*was.Element()), NameOf(*is.Element())) != 0)
            return session.ToUser(PlaceOf(*was.Element())) + ": in its place " +
                   Quoted(session, NameOf(*is.Element())) + " is read";
        std::string loss = ValueLoss(session, *was.Element(), *is.Element());
        if (!loss.empty())
            return loss;
    }
}

} // namespace

Chain::~Chain() {
    for (Zr::CZrEnv *env : m_envs)
        Zr::CZrEnv::DestroyEnv(env, false); // from the front: each holds the one behind it
}

Zr::CZrEnv &Chain::Add() {
    m_envs.reserve(m_envs.size() + 1);
    Zr::CZrEnv *env = Zr::CZrEnv::CreateEnv(static_cast<zr_long>(m_envs.size()), nullptr);
    if (env == nullptr)
        throw std::bad_alloc();
    if (!m_envs.empty())
        Front().AttachAsLastDefault(env);
    m_envs.push_back(env);
    return *env;
}

std::string ReadBytes(const std::string &path) {
    const auto fail = [&](const char *what) {
        const int reason = errno;
        throw Failure(InputOutput, path + ": " + what + (reason == 0 ? "" : std::string(": ") + std::strerror(reason)));
    };
    errno = 0;
    const std::unique_ptr<std::FILE, int (*)(std::FILE *)> stream(std::fopen(path.c_str(), "rb"), std::fclose);
    if (!stream)
        fail("cannot be opened for reading");
    std::string bytes;
    std::array<char, 65536> block;
    errno = 0;
    while (const std::size_t got = std::fread(block.data(), 1, block.size(), stream.get()))
        bytes.append(block.data(), got);
    if (std::ferror(stream.get()) != 0)
        fail("cannot be read");
    return bytes;
}

std::string TextOf(std::string_view bytes) {
    std::string text;
    const std::string_view kept = bytes.substr(0, bytes.find('\x1A'));
    text.reserve(kept.size());
    for (std::size_t i = 0; i < kept.size(); ++i) {
        if (kept[i] != '\r' || i + 1 == kept.size() || kept[i + 1] != '\n')
            text += kept[i];
    }
    return text;
}

bool IsNotWrapped(std::string_view text) {
    return text.starts_with(modeWord);
}

bool FindUnkept(std::string_view text, Place &place, const char *&what) {
    const bool folds = !IsNotWrapped(text);
    bool folded = false;
    bool inSection = false;
    std::size_t line = 0;
    for (std::size_t at = 0; at < text.size();) {
        const std::string_view now = text.substr(at, text.find('\n', at) - at);
        at += now.size() + 1;
        ++line;
        const std::size_t first = now.find_first_not_of(" \t");
        const bool comment = !folded && first != std::string_view::npos && now[first] == ';';
        folded = folds && !comment && EndsInFold(now);
        if (first == std::string_view::npos || (line == 1 && !folds))
            continue;
        if (!comment && (inSection || now[first] == '[')) {
            inSection = true;
            continue;
        }
        place = {line, first + 1};
        what = comment ? "comments are lost when the file is written"
                       : "text in front of the first section is lost when the file is written";
        return true;
    }
    return false;
}

bool FindCut(std::string_view bytes, Place &place) {
    const std::size_t mark = bytes.find('\x1A');
    if (mark == std::string_view::npos || bytes.find_first_not_of("\x1A \t\r\n", mark) == std::string_view::npos)
        return false;
    place = PlaceAt(bytes, mark);
    return true;
}

void WarnOfCut(const Session &session, const std::string &path, std::string_view bytes) {
    Place place;
    if (FindCut(bytes, place))
        session.err << path << ':' << place.line << ':' << place.column
                    << ": warning: text behind byte 0x1A is lost when the file is written\n";
}

void ReadText(const Session &session, const std::string &path, const std::string &text, Zr::CZrEnv &env) {
    const std::size_t zero = text.find('\0');
    if (zero != std::string::npos)
        FailAt(path, PlaceAt(text, zero), "a byte of value zero");
    const ReportListener reports;
    if (env.ReadString(text.c_str(), Zr::eEnvReadAuto) == Zr::ENV_OK)
        return;
    zr_long line = 0;
    zr_long column = 0;
    if (env.GetErrorPosition(line, column) != Zr::ENV_OK)
        throw Failure(BadData, path + ": " + session.ToUser(reports.Text()));
    FailAt(path, {static_cast<std::size_t>(line), static_cast<std::size_t>(column)}, session.ToUser(reports.Text()));
}

std::string ReadEnvironment(const Session &session, const std::string &path, Zr::CZrEnv &env) {
    std::string bytes = ReadBytes(path);
    ReadText(session, path, TextOf(bytes), env);
    return bytes;
}

void CheckTree(const Session &session, const std::string &path, const Zr::CZrEnv &env) {
    const auto fault = Zr::CZrEnvTreeCheck::OfEnvironment(env, Zr::CZrEnvTreeCheck::Indexes::Build);
    if (!fault)
        return;
    const std::string place = fault.pWhere != nullptr ? PlaceOf(*fault.pWhere) + ": " : "";
    throw Failure(BadData, path + ": the tree in memory is unsound: " + session.ToUser(place + fault.what));
}

std::string WriteText(const Zr::CZrEnv &env, bool wrap) {
    const ReportListener reports;
    // Writing changes nothing in the tree, though the library's interface does not say so.
    const std::unique_ptr<char, void (*)(char *)> text(const_cast<Zr::CZrEnv &>(env).WriteString(wrap),
                                                       Zr::CZrEnv::FreeString);
    if (!text || !reports.Text().empty())
        throw Failure(InputOutput, "the text cannot be made: " + reports.Text());
    return text.get();
}

ReadBack::ReadBack(const Session &session, const Zr::CZrEnv &env, bool wrap) : m_text(WriteText(env, wrap)) {
    const ReportListener reports;
    Zr::CZrEnv &again = m_chain.Add();
    if (again.ReadString(TextOf(m_text).c_str(), Zr::eEnvReadAuto) != Zr::ENV_OK) {
        m_fault = "its text cannot be read again: " + session.ToUser(reports.Text());
        m_loss = m_fault;
    } else {
        m_loss = FirstDifference(session, env, again);
    }
}

} // namespace zrtool
