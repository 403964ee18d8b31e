// Values of the registry, from the file that takes its place. Whatever the file holds, a call reads it once from the start, with no
// more memory than that of one line.
#include "platform/registry.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/files.h"
#include "platform/posix/posix_paths.h"
#include "platform/posix/posix_user.h"

namespace zr::platform {

namespace {

using posix::PathBuffer;

constexpr std::size_t line_limit = 2000;

std::string_view NameOf(RegistryHive hive) {
    switch (hive) {
    case RegistryHive::classes_root:
        return "HKEY_CLASSES_ROOT";
    case RegistryHive::current_user:
        return "HKEY_CURRENT_USER";
    default:
        return "HKEY_LOCAL_MACHINE";
    }
}

// The file, in the host's form. The variable takes a path of the host or one in the library's form.
bool RegistryFile(PathBuffer &out) {
    if (const char *named = std::getenv("ZR_REGISTRY"); named != nullptr && named[0] != 0)
        return posix::ToHost(named, out, sizeof out);
    constexpr char below[] = "/zr/registry.ini";
    if (!posix::BaseFolder("XDG_CONFIG_HOME", "/.config", out) || std::strlen(out) + sizeof below > sizeof out)
        return false;
    std::strcat(out, below);
    return true;
}

// Null for what is no regular file: reading a pipe could wait for ever.
std::FILE *OpenRegistry() {
    PathBuffer path;
    if (!RegistryFile(path))
        return nullptr;
    const int descriptor = open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    struct stat status;
    if (descriptor < 0)
        return nullptr;
    std::FILE *file = fstat(descriptor, &status) == 0 && S_ISREG(status.st_mode) ? fdopen(descriptor, "r") : nullptr;
    if (file == nullptr)
        close(descriptor);
    return file;
}

char Small(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

bool SameName(std::string_view a, std::string_view b) {
    if (a.size() != b.size())
        return false;
    for (std::size_t i = 0; i < a.size(); ++i)
        if (Small(a[i]) != Small(b[i]))
            return false;
    return true;
}

std::string_view Trimmed(std::string_view text) {
    constexpr std::string_view blanks = " \t\r";
    const std::size_t first = text.find_first_not_of(blanks);
    if (first == std::string_view::npos)
        return text.substr(0, 0);
    return text.substr(first, text.find_last_not_of(blanks) + 1 - first);
}

// The next line without its end and outer blanks, up to its first zero byte and its limit; false at the end of the file.
bool NextLine(std::FILE *file, char (&buffer)[line_limit], std::string_view &line) {
    std::size_t length = 0;
    int c = getc_unlocked(file);
    if (c == EOF)
        return false;
    for (; c != EOF && c != '\n'; c = getc_unlocked(file))
        if (length < line_limit)
            buffer[length++] = static_cast<char>(c);
    line = std::string_view(buffer, length);
    line = Trimmed(line.substr(0, line.find('\0')));
    return true;
}

// Whether `line` is the header "[HIVE\key]".
bool IsKey(std::string_view line, std::string_view hive, std::string_view key) {
    line = Trimmed(line.substr(1, line.find(']') - 1));
    return line.size() == hive.size() + 1 + key.size() && SameName(line.substr(0, hive.size()), hive) &&
           line[hive.size()] == '\\' && SameName(line.substr(hive.size() + 1), key);
}

// Finds the value; its text lies in `buffer`.
bool Find(std::FILE *file, RegistryHive hive, std::string_view key, std::string_view name, char (&buffer)[line_limit],
          std::string_view &value) {
    bool in_key = false;
    std::string_view line;
    while (NextLine(file, buffer, line)) {
        if (line.empty() || line[0] == ';' || line[0] == '#')
            continue;
        const std::size_t equals = line.find('=');
        if (line[0] == '[') {
            in_key = IsKey(line, NameOf(hive), key);
        } else if (in_key && equals != std::string_view::npos && SameName(Trimmed(line.substr(0, equals)), name)) {
            value = Trimmed(line.substr(equals + 1));
            return true;
        }
    }
    return false;
}

} // namespace

bool backend::ReadRegistryText(RegistryHive hive, const char *key, const char *name, char *out, std::size_t size) {
    if (out == nullptr || size == 0)
        return false;
    out[0] = 0;
    std::FILE *file = key != nullptr ? OpenRegistry() : nullptr;
    if (file == nullptr)
        return false;
    const bool unnamed = name == nullptr || name[0] == 0;
    char buffer[line_limit];
    std::string_view value;
    const bool found = Find(file, hive, key, unnamed ? "@" : name, buffer, value) && value.size() < size;
    std::fclose(file);
    if (found) {
        std::memcpy(out, value.data(), value.size());
        out[value.size()] = 0;
    }
    return found;
}

} // namespace zr::platform
