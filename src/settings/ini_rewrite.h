// Writing a settings file anew: from its lines into a temporary file, which in the end is copied over it.
//
// Lines are put without an end; the line feed comes in front of the next one, unless nothing was put yet.
#ifndef ZR_SETTINGS_INI_REWRITE_H
#define ZR_SETTINGS_INI_REWRITE_H

#include <string_view>

#include "platform/files.h"
#include "settings/ini_copy.h" // for those who write the temporary file themselves
#include "settings/ini_lines.h"
#include "settings/ini_output.h"

namespace zr::settings {

// What a line is.
enum class LineKind {
    end,    // of the file
    header, // the text is the section's name
    other   // the text is the trimmed line
};

// An entry line taken apart, the name trimmed. False for a line without "=", which is reported.
bool SplitEntry(std::string_view line, std::string_view &name, std::string_view &value);

// One rewrite. Texts given out are valid until the next line is read. Threads: one at a time; different ones are
// independent.
class IniRewrite {
public:
    enum class Missing {
        fails, // without the file there is nothing to do
        is_new // the file comes to be
    };

    IniRewrite() = default;
    ~IniRewrite() { Abandon(); }
    IniRewrite(const IniRewrite &) = delete;
    IniRewrite &operator=(const IniRewrite &) = delete;

    // Opens the file and a temporary one. `path` must live as long as this object. A file that is there and can't be
    // read fails too: it must not be taken for an empty one.
    bool Open(const char *path, Missing missing);

    // The next line that is no comment. Comments are put on the way, or with `drop_comments` not.
    LineKind Next(std::string_view &text, bool drop_comments = false);

    // The next header; what stands in front of it is put. False at the end of the file.
    bool NextHeader(std::string_view &name);

    // Goes behind the header that equals `section`, which is put too if `put_found`, and all headers in front of it.
    // False at the end.
    bool FindSection(std::string_view section, bool put_found);

    void Put(std::string_view text) { m_out.Put(text); }
    void PutLineFeed() { // unless nothing was put yet
        if (HasPut())
            m_out.PutLineFeed();
    }
    void PutHeader(std::string_view name) {
        Put("[");
        Put(name);
        Put("]");
    }
    void PutEntry(std::string_view name, std::string_view value) {
        Put(name);
        Put("=");
        Put(value);
    }

    // What stands in front of a header: a line feed, and a second one unless this is the first of all headers and
    // entries.
    void PutSeparator();

    // A line feed, and all that is left of the file as it stands.
    void PutRest();

    bool HasPut() const { return m_out.Size() != 0; }

    // Copies the temporary file over the file and removes it: 0, -1 if it could not be made whole, in which case
    // nothing is copied, else the system's code.
    int Finish();

private:
    void PutLines(std::string_view lines);
    void Abandon();

    const char *m_path = nullptr;
    IniLines m_in;
    IniOutput m_out;
    bool m_no_header_yet = true; // neither a header nor an entry in front of one was put
    char m_temporary[platform::path_size] = {};
};

} // namespace zr::settings

#endif
