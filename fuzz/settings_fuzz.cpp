// Calls of ini_ and mini_ in any order on one file: against the plain references, step by step, on a file of their own.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <list>
#include <optional>
#include <string>
#include <vector>

#include <zrclb/ini.h>
#include <zrclb/mini.h>
#include <zrclb/report.h>

#include "byte_input.h"
#include "platform/temp_folder.h"
#include "settings/reference_ini.h"
#include "settings/reference_mini.h"

namespace {

using fuzz::Require;
using zr::test::ReferenceIni;
using zr::test::ReferenceMini;
using Text = ReferenceMini::Text;

// The input as names, texts and files.
class Input : public fuzz::ByteInput {
public:
    using ByteInput::ByteInput;

    std::string Bytes(std::size_t count) {
        std::string bytes;
        for (; count > 0 && !Empty(); --count)
            bytes += static_cast<char>(Byte());
        return bytes;
    }

    // Of a few names, so that they meet; or any.
    Text Name() {
        const std::uint8_t kind = Byte();
        static const std::vector<Text> names = {{}, "", " ", "A", " A ", "B", "a", "b", "a ", "=", "]"};
        if (kind < 200)
            return names[kind % names.size()];
        if (kind < 230)
            return std::string(kind == 200 ? 2040U : 70U + kind % 16, 'n') + Plain(kind % 4);
        return Plain(kind % 8);
    }

    // Without NUL.
    std::string Plain(std::size_t count) {
        std::string text = Bytes(count);
        std::replace(text.begin(), text.end(), '\0', '0');
        return text;
    }

    // A file from pieces that matter to its format.
    std::string File() {
        static const std::vector<std::string> pieces = {"[A]\r\n",
                                                        "[B]\n",
                                                        "[ A ] x\n",
                                                        "[]\n",
                                                        "[\r\n",
                                                        "a=1\r\n",
                                                        "a = 2\n",
                                                        "b=3",
                                                        "\n",
                                                        "\r",
                                                        ";c\n",
                                                        "bad\n",
                                                        "=",
                                                        "\x1A",
                                                        std::string(1, '\0'),
                                                        std::string(2040, 'v'),
                                                        "[",
                                                        "]",
                                                        " ",
                                                        "A"};
        std::string bytes;
        for (int count = Byte() % 32; count > 0 && !Empty(); --count) {
            const std::uint8_t piece = Byte();
            bytes += piece < 240 ? pieces[piece % pieces.size()] : Bytes(piece % 16);
        }
        return bytes;
    }
};

const char *OrNull(const Text &text) {
    return text ? text->c_str() : nullptr;
}

// The bytes of a file; none if it isn't there.
std::optional<std::string> BytesOf(const std::string &path) {
    std::ifstream file(path, std::ios::binary);
    if (!file)
        return {};
    return std::string(std::istreambuf_iterator<char>(file), {});
}

class Run {
public:
    Run(const std::uint8_t *data, std::size_t size) : m_input(data, size), m_model(m_model_path) {
        std::remove(m_path.c_str());
        std::remove(m_model_path.c_str());
        if (m_input.Byte() % 8 != 0)
            PutFile();
        Reopen(false);
    }
    ~Run() { mini_close_ex(&m_handle); }
    Run(const Run &) = delete;
    Run &operator=(const Run &) = delete;

    void Play() {
        for (int steps = 0; !m_input.Empty() && steps < 200; ++steps) {
            Step(m_input.Byte() % 20);
            Compare();
        }
    }

private:
    void PutFile() {
        const std::string bytes = m_input.File();
        for (const std::string &path : {m_path, m_model_path})
            std::ofstream(path, std::ios::binary) << bytes;
    }

    void Reopen(bool is_read_only) {
        m_handle = mini_open(nullptr, m_path.c_str(), is_read_only ? MINI_READONLY : 0);
        m_model = ReferenceMini(m_model_path, is_read_only);
        if (is_read_only && !m_model.found) {
            Require(m_handle == nullptr, "no handle for reading without a file");
            Reopen(false);
        }
        Require(m_handle != nullptr, "a handle");
    }

    void Close(bool updates) {
        Require((updates ? mini_close(&m_handle) : mini_close_ex(&m_handle)) == 1, "closed");
        Require(m_handle == nullptr, "no handle behind closing");
        if (updates)
            m_model.Update();
    }

    void Step(int operation) {
        if (operation < 6)
            StepOnFile(operation);
        else if (operation < 13)
            StepInMemory(operation);
        else
            StepOfHandle(operation);
    }

    void StepOnFile(int operation) {
        const Text section = m_input.Name(), first = m_input.Name(), second = m_input.Name();
        const std::string entry = first.value_or("a"), other = second.value_or("b");
        const char *const file = m_path.c_str(), *const given = OrNull(section);
        const std::string name = ReferenceIni::Trim(other.substr(0, 79));
        const auto on_model = [](bool may_be_new, const auto &rewrite) {
            return ReferenceMini::RewriteFile(m_model_path, may_be_new, rewrite);
        };
        int result = 0, expected = 0;
        switch (operation) {
        case 0:
            result = ini_write_string(file, given, entry.c_str(), other.c_str());
            expected =
                on_model(true, [&](auto in, auto out) { return ReferenceIni().Write(in, out, section, entry, other); });
            break;
        case 1:
            result = ini_delete_entry(file, given, entry.c_str());
            expected =
                on_model(false, [&](auto in, auto out) { return ReferenceIni().DeleteEntry(in, out, section, entry); });
            break;
        case 2:
            result = ini_delete_section(file, given);
            expected =
                on_model(false, [&](auto in, auto out) { return ReferenceIni().DeleteSection(in, out, section); });
            break;
        case 3:
            result = ini_rename_section(file, given, other.c_str());
            expected = name.empty() ? 5 : on_model(false, [&](auto in, auto out) {
                return ReferenceIni().RenameSection(in, out, section, name);
            });
            break;
        case 4:
            result = ini_rename_entry(file, given, entry.c_str(), other.c_str());
            expected = name.empty() ? 5 : on_model(false, [&](auto in, auto out) {
                return ReferenceIni().RenameEntry(in, out, section, entry, name);
            });
            break;
        default:
            ReadFile(section, first);
        }
        Require(result == expected, "result on the file");
    }

    void ReadFile(const Text &section, const Text &entry) {
        const int size = m_input.Byte();
        std::vector<char> buffer(static_cast<std::size_t>(size) + 1);
        zr_long length = size;
        const int result = ini_read_string(m_path.c_str(), OrNull(section), OrNull(entry), buffer.data(), &length);
        const auto expected = ReferenceIni().Read(m_model_path, section, entry, size);
        Require(result == expected.result && length == expected.size, "reading the file");
        CompareText(result, buffer, length, expected.text, !entry);
    }

    static void CompareText(int result, const std::vector<char> &buffer, zr_long length, const std::string &expected,
                            bool is_list) {
        if (result != 0 && result != 3)
            return;
        const std::string text =
            is_list ? std::string(buffer.data(), static_cast<std::size_t>(length)) : std::string(buffer.data());
        Require(text == expected, "text that was read");
    }

    void StepInMemory(int operation) {
        const Text section = m_input.Name(), first = m_input.Name(), second = m_input.Name();
        const char *const given = OrNull(section), *const entry = OrNull(first), *const other = OrNull(second);
        int result = 0, expected = 0;
        switch (operation) {
        case 6:
        case 7:
            result = mini_write_string(m_handle, given, entry, other);
            expected = m_model.Write(section, first, second);
            break;
        case 8:
            result = mini_delete_entry(m_handle, given, entry);
            expected = m_model.DeleteEntry(section, first);
            break;
        case 9:
            result = mini_delete_section(m_handle, given);
            expected = m_model.DeleteSection(section);
            break;
        case 10:
            result = mini_rename_entry(m_handle, given, entry, other);
            expected = m_model.RenameEntry(section, first, second);
            break;
        case 11:
            result = mini_rename_section(m_handle, given, other);
            expected = m_model.RenameSection(section, second);
            break;
        default:
            ReadMemory(section, first);
        }
        Require(result == expected, "result in memory");
    }

    void ReadMemory(const Text &section, const Text &entry) {
        const int size = m_input.Byte();
        std::vector<char> buffer(static_cast<std::size_t>(size) + 1);
        zr_long length = size;
        const bool has_buffer = size % 8 != 0;
        const int result =
            mini_read_string(m_handle, OrNull(section), OrNull(entry), has_buffer ? buffer.data() : nullptr, &length);
        const auto expected = m_model.Read(section, entry, size, has_buffer);
        Require(result == expected.result && length == expected.size, "reading memory");
        if (has_buffer)
            CompareText(result, buffer, length, expected.text, !entry);
    }

    void StepOfHandle(int operation) {
        const Text section = m_input.Name(), entry = m_input.Name();
        const std::string name = section.value_or("B");
        switch (operation) {
        case 13:
            Require(mini_get_string(m_handle, name.c_str(), entry.value_or("a").c_str(), nullptr, nullptr) ==
                        m_model.GetString(name, entry.value_or("a")),
                    "text in memory");
            break;
        case 14:
            Require(mini_unload_one_section(m_handle, name.c_str()) == m_model.Unload(name), "unloading one");
            break;
        case 15:
            Require(mini_unload_all_sections(m_handle) == 0, "unloading all");
            m_model.sections.clear();
            break;
        case 16:
            Require(mini_update_file(m_handle) == m_model.Update(), "update");
            break;
        case 17:
            Close(m_input.Byte() % 2 != 0);
            Reopen(m_input.Byte() % 4 == 0);
            break;
        case 18:
            List(section);
            break;
        default:
            PutFile(); // as somebody else would
        }
    }

    void List(const Text &section) {
        const int size = m_input.Byte();
        std::vector<char> buffer(static_cast<std::size_t>(size) + 1);
        auto expected = m_model.Sections(size, '|');
        Require(mini_get_sections(m_handle, buffer.data(), size, '|') == expected.result, "listing sections");
        Require(buffer.data() == expected.text, "names of sections");
        std::fill(buffer.begin(), buffer.end(), '\0');
        expected = m_model.Entries(section, size, '|');
        Require(mini_get_entries(m_handle, OrNull(section), buffer.data(), size, '|') == expected.result,
                "listing entries");
        Require(buffer.data() == expected.text, "names of entries");
        const std::string name = section.value_or("A");
        Require(mini_section_exists(m_handle, name.c_str()) == (m_model.Find(name) != nullptr ? 1 : 0), "existence");
    }

    void Compare() const {
        Require(BytesOf(m_path) == BytesOf(m_model_path), "the file");
        auto model = m_model.sections.begin();
        for (const list_element *element = m_handle->sections.first; element != nullptr; element = element->next) {
            const auto *const section = reinterpret_cast<const mini_section *>(element);
            Require(model != m_model.sections.end() && model->name == section->name, "sections in memory");
            auto entry = model->entries.begin();
            for (const list_element *each = section->entries.first; each != nullptr; each = each->next, ++entry) {
                const auto *const record = reinterpret_cast<const mini_entry *>(each);
                Require(entry != model->entries.end() && entry->name == record->name && entry->value == record->value,
                        "entries in memory");
            }
            Require(entry == model->entries.end(), "all entries in memory");
            ++model;
        }
        Require(model == m_model.sections.end(), "all sections in memory");
    }

    static inline const TempFolder m_folder;
    static inline const std::string m_path = m_folder.Path("real.ini"), m_model_path = m_folder.Path("model.ini");

    Input m_input;
    mini_file *m_handle = nullptr;
    ReferenceMini m_model;
};

} // namespace

// Each step is a byte for the operation and what its texts need.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    zr_error_onoff(0); // reports are the tests' business
    Run(data, size).Play();
    return 0;
}
