// A settings file in a folder of the test, a handle on it, and what there is to see of both.
#ifndef TESTS_SETTINGS_MINI_FIXTURE_H
#define TESTS_SETTINGS_MINI_FIXTURE_H

#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include <zrclb/mini.h>

#include "frame/counted_allocation.h"
#include "settings/installation_fixture.h"
#include "settings/reference_mini.h"

class MiniFixture : public InstallationFixture {
protected:
    using Reference = zr::test::ReferenceMini;
    using Text = Reference::Text;

    void SetUp() override {
        InstallationFixture::SetUp();
        std::filesystem::create_directory(m_folder.Folder() / "temporary");
        s_temporary = Path("temporary\\");
        zr::platform::services.temp_folder = [](char *out, std::size_t size) { return Give(s_temporary, out, size); };
        m_path = Path("test.ini");
        m_blocks = zr::frame::heap_block_count;
    }

    void TearDown() override {
        mini_close_ex(&m_handle);
        EXPECT_EQ(zr::frame::heap_block_count, m_blocks);
        EXPECT_TRUE(std::filesystem::is_empty(m_folder.Folder() / "temporary")); // no call leaves a file
        InstallationFixture::TearDown();
    }

    // The file on the disk: each line feed is CR LF there.
    static std::string Stored(const std::string &text) {
        std::string bytes;
        for (const char c : text)
            bytes += c == '\n' ? std::string("\r\n") : std::string(1, c);
        return bytes;
    }

    // Opens the file with these bytes.
    mini_file *Open(const std::string &bytes, zr_long flags = 0) {
        m_folder.Write("test.ini", bytes);
        return Reopen(flags);
    }
    mini_file *Reopen(zr_long flags = 0) {
        mini_close_ex(&m_handle);
        m_handle = mini_open(nullptr, m_path.c_str(), flags);
        return m_handle;
    }

    std::string Bytes() const { return m_folder.Read("test.ini"); }
    bool FileExists() const { return std::filesystem::exists(m_folder.Folder() / "test.ini"); }

    static const char *OrNull(const Text &text) { return text ? text->c_str() : nullptr; }

    // In a buffer that has not a byte more than told.
    Reference::Answer Read(const Text &section, const Text &entry, int size) {
        std::vector<char> buffer(static_cast<std::size_t>(size) + 1, '~');
        zr_long length = size;
        Reference::Answer answer;
        answer.result = mini_read_string(m_handle, OrNull(section), OrNull(entry), buffer.data(), &length);
        answer.size = static_cast<int>(length);
        const bool stored = answer.result == 0 || answer.result == 3;
        if (stored && !entry) {
            answer.text.assign(buffer.data(), static_cast<std::size_t>(length));
            EXPECT_EQ(buffer[static_cast<std::size_t>(length)], 0);
        } else if (stored) {
            answer.text = buffer.data();
        } else {
            EXPECT_EQ(buffer, std::vector<char>(buffer.size(), '~'));
        }
        return answer;
    }

    // The value, which must be there.
    std::string Value(const Text &section, const std::string &entry) {
        const Reference::Answer answer = Read(section, entry, 5000);
        EXPECT_EQ(answer.result, 0);
        EXPECT_EQ(static_cast<std::size_t>(answer.size), answer.text.size());
        return answer.text;
    }

    int ResultOf(const Text &section, const std::string &entry) { return Read(section, entry, 5000).result; }

    // All names with a comma between them, from a buffer that holds a minus sign before.
    std::string Sections(zr_long size = 1000, int expected = 0) {
        std::string buffer(1000, 0);
        buffer[0] = '-';
        EXPECT_EQ(mini_get_sections(m_handle, buffer.data(), size, ','), expected);
        return buffer.c_str();
    }
    std::string Entries(const char *section, zr_long size = 1000, int expected = 0) {
        std::string buffer(1000, 0);
        buffer[0] = '-';
        EXPECT_EQ(mini_get_entries(m_handle, section, buffer.data(), size, ','), expected);
        return buffer.c_str();
    }

    // What the records hold, with their links.
    std::list<Reference::Section> Content() const { return ContentOf(m_handle); }
    static std::list<Reference::Section> ContentOf(const mini_file *handle) {
        std::list<Reference::Section> sections;
        const list_element *last = nullptr;
        for (const list_element *element = handle->sections.first; element != nullptr; element = element->next) {
            const auto *section = reinterpret_cast<const mini_section *>(element);
            EXPECT_TRUE(section->state == 0 || section->state == 1) << section->state;
            sections.push_back({section->name, {}, section->state != 0});
            const list_element *last_entry = nullptr;
            for (const list_element *each = section->entries.first; each != nullptr; each = each->next) {
                const auto *entry = reinterpret_cast<const mini_entry *>(each);
                sections.back().entries.push_back({entry->name, entry->value});
                EXPECT_EQ(each->prev, last_entry);
                last_entry = each;
            }
            EXPECT_EQ(section->entries.last, last_entry);
            EXPECT_EQ(static_cast<std::size_t>(section->entries.count), sections.back().entries.size());
            EXPECT_EQ(element->prev, last);
            last = element;
        }
        EXPECT_EQ(handle->sections.last, last);
        EXPECT_EQ(static_cast<std::size_t>(handle->sections.count), sections.size());
        return sections;
    }

    static inline std::string s_temporary;
    std::string m_path;
    mini_file *m_handle = nullptr;
    zr_long m_blocks = 0; // of the heap, before the test
};

#endif
