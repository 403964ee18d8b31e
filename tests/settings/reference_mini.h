// Settings held in memory by the told steps and nothing else: lists that are walked, lines read by fio_getstring.
#ifndef TESTS_SETTINGS_REFERENCE_MINI_H
#define TESTS_SETTINGS_REFERENCE_MINI_H

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <list>
#include <optional>
#include <ostream>
#include <string>

#include <zrclb/file_handle.h>
#include <zrclb/mini.h>

#include "platform/files.h"
#include "platform/streams.h"
#include "settings/reference_ini.h"

namespace zr::test {

class ReferenceMini {
public:
    using Text = std::optional<std::string>; // none: null

    struct Entry {
        std::string name, value;
        bool operator==(const Entry &) const = default;
        friend std::ostream &operator<<(std::ostream &stream, const Entry &entry) {
            return stream << "\n" << entry.name << "=" << entry.value;
        }
    };
    struct Section {
        std::string name;
        std::list<Entry> entries = {};
        bool changed = false;
        bool operator==(const Section &) const = default;
        friend std::ostream &operator<<(std::ostream &stream, const Section &section) {
            stream << "\n[" << section.name << "]" << (section.changed ? "*" : "");
            for (const Entry &entry : section.entries)
                stream << entry;
            return stream;
        }
    };

    // What a call with an output answers.
    struct Answer {
        int result = 0;
        std::string text; // with terminators, if it is a list
        int size = 0;
        bool operator==(const Answer &) const = default;
    };

    // Loads the file, if there is one.
    explicit ReferenceMini(std::string path, bool is_read_only = false)
        : m_path(std::move(path)), m_is_read_only(is_read_only) {
        fio_handle *in = fio_open("", m_path.c_str(), 17);
        found = in != nullptr;
        if (!found)
            return;
        std::string name;
        int type = Load(in, "", name);
        while (type != 0) {
            if (!name.empty()) {
                type = Load(in, name, name);
                continue;
            }
            ++nameless;
            do
                type = NextLine(in, name);
            while (type > 1);
        }
        fio_close(in);
    }

    static std::string Given(const Text &name) { return name ? ReferenceIni::Trim(name->substr(0, 255)) : ""; }

    Answer Read(const Text &section, const Text &entry, int size, bool has_buffer = true) {
        if (has_buffer && size < 0)
            return {-1, "", size};
        const Section *at = Find(Given(section));
        if (at == nullptr)
            return {1, "", size};
        const int limit = has_buffer ? size : 9999;
        Answer answer = {0, "", limit};
        if (!entry) {
            for (const Entry &each : at->entries)
                answer.text += each.name + std::string(1, '\0');
            const std::size_t room = limit > 0 ? static_cast<std::size_t>(limit) - 1 : 0;
            answer.result = answer.text.size() > room ? 3 : 0;
            answer.text.resize(std::min(answer.text.size(), room));
            answer.size = static_cast<int>(answer.text.size());
            return answer;
        }
        const Entry *value = FindIn(*at, *entry);
        if (value == nullptr)
            return {2, "", size};
        answer.text = value->value.substr(0, static_cast<std::size_t>(limit));
        if (static_cast<int>(value->value.size()) > limit)
            answer.result = 3;
        else
            answer.size = static_cast<int>(value->value.size());
        return answer;
    }

    std::string GetString(const std::string &section, const std::string &entry) {
        const Section *at = Find(section);
        if (at == nullptr)
            at = LoadOne(section);
        const Entry *value = at != nullptr ? FindIn(*at, entry) : nullptr;
        return value != nullptr ? value->value : "";
    }

    int Write(const Text &section, const Text &entry, const Text &value) {
        if (!entry)
            return 2;
        if (!value)
            return 3;
        const std::string name = Given(section);
        Section *at = Find(name);
        if (at == nullptr)
            at = LoadOne(name);
        if (at == nullptr)
            at = Add({name, {}});
        const std::string entry_name = ReferenceIni::Trim(*entry);
        if (entry_name.empty())
            return 2;
        Entry *target = FindIn(*at, entry_name);
        if (target == nullptr)
            target = &at->entries.emplace_back(Entry{entry_name, ""});
        target->value = *value;
        at->changed = true;
        return 0;
    }

    int DeleteEntry(const Text &section, const Text &entry) {
        if (!entry)
            return 2;
        if (m_is_read_only)
            return 4;
        Section *at = Find(Given(section));
        if (at == nullptr)
            return OnFile(
                [&](auto in, auto out) { return ReferenceIni().DeleteEntry(in, out, Given(section), *entry); });
        const Entry *target = FindIn(*at, *entry);
        if (target == nullptr)
            return 2;
        at->entries.remove_if([&](const Entry &each) { return &each == target; });
        return 0;
    }

    int DeleteSection(const Text &section) {
        if (!section)
            return 2;
        if (m_is_read_only)
            return 4;
        const std::string name = Given(section);
        const bool was_there = Unload(name) == 0;
        const int result = OnFile([&](auto in, auto out) { return ReferenceIni().DeleteSection(in, out, name); });
        return was_there ? 0 : result;
    }

    int RenameEntry(const Text &section, const Text &old_entry, const Text &new_entry) {
        if (!old_entry)
            return 2;
        if (m_is_read_only)
            return 4;
        const std::string name = Given(new_entry);
        if (name.empty())
            return 5;
        Section *at = Find(Given(section));
        if (at == nullptr)
            return OnFile([&](auto in, auto out) {
                return ReferenceIni().RenameEntry(in, out, Given(section), *old_entry, InFile(name));
            });
        Entry *target = FindIn(*at, *old_entry);
        if (target == nullptr)
            return 2;
        target->name = name;
        return 0;
    }

    int RenameSection(const Text &old_section, const Text &new_section) {
        if (!old_section)
            return 2;
        if (m_is_read_only)
            return 4;
        const std::string name = Given(new_section);
        if (name.empty())
            return 5;
        Section *at = Find(Given(old_section));
        if (at != nullptr)
            at->name = name;
        const int result = OnFile(
            [&](auto in, auto out) { return ReferenceIni().RenameSection(in, out, Given(old_section), InFile(name)); });
        return at != nullptr ? 0 : result;
    }

    int Unload(const std::string &section) {
        const Section *at = Find(section);
        if (at == nullptr)
            return 1;
        sections.remove_if([&](const Section &each) { return &each == at; });
        return 0;
    }

    Answer Sections(int size, char delimiter) const { return Joined(sections, size, delimiter); }
    Answer Entries(const Text &section, int size, char delimiter) {
        if (!section)
            return {3, "", 0};
        const Section *at = Find(Given(section));
        return at != nullptr ? Joined(at->entries, size, delimiter) : Answer{1, "", 0};
    }

    // 1, or 0 for a file that is for reading only.
    int Update() const {
        if (m_is_read_only)
            return 0;
        std::FILE *out = platform::OpenText(m_path.c_str(), "w");
        if (out == nullptr)
            return 0;
        const auto line_feed = [out] {
            if (std::ftell(out) != 0)
                std::fputc('\n', out);
        };
        for (const Section &section : sections) {
            if (!section.name.empty()) {
                line_feed();
                line_feed();
                std::fprintf(out, "[%s]", section.name.c_str());
            }
            for (const Entry &entry : section.entries) {
                line_feed();
                char line[2048];
                std::snprintf(line, sizeof line, "%s=%s", entry.name.c_str(), entry.value.c_str());
                std::fputs(line, out);
            }
        }
        std::fclose(out);
        return 1;
    }

    Section *Find(const std::string &name) {
        for (Section &section : sections) {
            if (section.name == name)
                return &section;
        }
        return nullptr;
    }

    // Rewrites a file as the other family does: from one stream to another, which then is copied over it.
    template <class Rewrite>
    static int RewriteFile(const std::string &path, bool may_be_new, const Rewrite &rewrite) {
        std::FILE *in = platform::OpenText(path.c_str(), "r");
        if (in == nullptr && !may_be_new)
            return -1;
        const std::string new_path = path + ".new";
        const int result = rewrite(in, platform::OpenText(new_path.c_str(), "w"));
        std::FILE *from = platform::OpenBinary(new_path.c_str(), "r");
        std::FILE *to = platform::OpenBinary(path.c_str(), "w");
        for (int c; (c = std::fgetc(from)) != EOF;)
            std::fputc(c, to);
        std::fclose(from);
        std::fclose(to);
        platform::RemoveFile(new_path.c_str());
        return result;
    }

    std::list<Section> sections;
    bool found = false; // the file could be opened
    int malformed = 0;  // lines reported
    int nameless = 0;   // headers reported

private:
    // 0 at the end, 1 for a header with its name, 2 for another line, 3 for a comment, 4 for an empty line.
    static int NextLine(fio_handle *in, std::string &line) {
        char buffer[2048];
        if (fio_getstring(in, 2047, buffer) != 0)
            return 0;
        line = ReferenceIni::Trim(buffer);
        if (line.empty())
            return 4;
        if (line[0] == ';')
            return 3;
        if (line[0] != '[')
            return 2;
        line = ReferenceIni::Trim(line.substr(1, line.find(']') - 1));
        return 1;
    }

    // Loads one section; what ended it, with the name of the header if it was one.
    int Load(fio_handle *in, const std::string &name, std::string &next_name) {
        Section section = {name, {}};
        std::string line;
        int type;
        while ((type = NextLine(in, line)) > 1) {
            const std::size_t sign = line.find('=');
            if (type == 2 && sign == std::string::npos)
                ++malformed;
            else if (type == 2)
                section.entries.push_back({ReferenceIni::Trim(line.substr(0, sign)), line.substr(sign + 1)});
        }
        Add(section);
        next_name = line;
        return type;
    }

    Section *LoadOne(const std::string &name) {
        fio_handle *in = fio_open("", m_path.c_str(), 17);
        if (in == nullptr)
            return nullptr;
        std::string line;
        int type = 1;
        while (!name.empty() && type != 0 && ((type = NextLine(in, line)) != 1 || line != name)) {
        }
        if (type != 0)
            Load(in, name, line);
        fio_close(in);
        return type != 0 ? Find(name) : nullptr;
    }

    Section *Add(const Section &section) {
        return &*sections.insert(section.name.empty() ? sections.begin() : sections.end(), section);
    }

    static Entry *FindIn(Section &section, const std::string &name) {
        for (Entry &entry : section.entries) {
            if (entry.name == name)
                return &entry;
        }
        return nullptr;
    }
    static const Entry *FindIn(const Section &section, const std::string &name) {
        return FindIn(const_cast<Section &>(section), name);
    }

    // What the file gets of a new name.
    static std::string InFile(const std::string &name) { return ReferenceIni::Trim(name.substr(0, 79)); }

    template <class Rewrite>
    int OnFile(const Rewrite &rewrite) const {
        return RewriteFile(m_path, false, rewrite);
    }

    // The text is what is in the buffer, empty if it was not touched.
    template <class Records>
    static Answer Joined(const Records &records, int size, char delimiter) {
        Answer answer;
        int length = 0;
        for (const auto &record : records) {
            const bool first = length == 0;
            length += static_cast<int>(record.name.size()) + 1;
            if (length > size)
                return {3, answer.text, 0};
            answer.text += (first ? "" : std::string(1, delimiter)) + record.name;
        }
        return answer;
    }

    std::string m_path;
    bool m_is_read_only;
};

} // namespace zr::test

#endif
