// Setters and getters of the file name value in any order: against the plain reference, and against the value's own
// tests.
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>

#include <zrclb/file_name.hpp>
#include <zrclb/report.h>

#include "byte_input.h"
#include "files/reference_file_name.h"

namespace {

using fuzz::Require;
using zr::test::ReferenceFileName;
using Text = ReferenceFileName::Text;

// The input as short texts.
class Input : public fuzz::ByteInput {
public:
    using ByteInput::ByteInput;

    // Up to 15 characters: any, or only such as matter in paths.
    std::string Short(bool any) {
        static constexpr char alphabet[] = "ab.\\/:C* ?\xE4\t;x.\\";
        std::string text;
        for (int count = Byte() % 16; count > 0; --count) {
            const std::uint8_t byte = Byte();
            text += any ? static_cast<char>(byte != 0 ? byte : 'a') : alphabet[byte % 16];
        }
        return text;
    }
};

class Run {
public:
    Run(const std::uint8_t *data, std::size_t size) : m_input(data, size) {}

    void Play() {
        while (!m_input.Empty()) {
            const std::uint8_t step = m_input.Byte();
            Step(step % 12);
            CompareParts();
            if (step >= 128) // not always, so that several changes meet one built path
                CompareResults();
        }
        CompareResults();
    }

private:
    // A text to give to a setter: one of the object's own, null, or one from the input. Long ones lie around limits.
    const char *NextText(std::string &held) {
        const std::uint8_t kind = m_input.Byte();
        switch (kind % 8) {
        case 0:
            return nullptr;
        case 1:
            held = m_input.Short(true);
            break;
        case 2:
            held = std::string(240 + m_input.Byte() % 24, 'a');
            held += m_input.Short(false);
            break;
        case 3:
            held = m_input.Short(false);
            held += std::string(200U + m_input.Byte(), "a\\/."[kind / 8 % 4]);
            held += m_input.Short(false);
            break;
        case 4:
            return OwnText(m_input.Byte());
        case 5:
            held = std::string(700U + 40U * m_input.Byte(), "a\\"[kind / 8 % 2]);
            break;
        default:
            held = m_input.Short(false);
            break;
        }
        return held.c_str();
    }

    const char *OwnText(std::uint8_t which) const {
        switch (which % 8) {
        case 0:
            return m_file.GetFileName(false);
        case 1:
            return m_file.GetFileName(true);
        case 2:
            return m_file.GetExt();
        case 3:
            return m_file.GetDir(false);
        case 4:
            return m_file.GetDir(true);
        case 5:
            return m_file.GetDrive();
        case 6:
            return m_file.GetPath();
        default:
            return m_file.GetLastDir();
        }
    }

    static Text Copied(const char *text) { return text != nullptr ? Text(text) : Text(); }

    void Expect(bool result, bool expected, bool may_spoil) {
        Require(result == expected, "result of a setter");
        m_all_good = m_all_good && result && !may_spoil;
    }

    void Step(int operation) {
        std::string held[4];
        const char *text[4] = {};
        Text copy[4];
        const int count = operation == 10 ? 4 : operation == 5 ? 2 : 1;
        for (int i = 0; i < count; ++i) {
            text[i] = NextText(held[i]);
            copy[i] = Copied(text[i]);
        }
        // A directory without its last backslash has no room; what is added runs into its last element.
        const bool cramped = !m_model.dir.empty() && m_model.dir.back() != '\\';
        switch (operation) {
        case 0:
            Expect(m_file.SetFileName(text[0], true), m_model.SetFileName(copy[0], true), false);
            break;
        case 1:
            Expect(m_file.SetFileName(text[0], false), m_model.SetFileName(copy[0], false), false);
            break;
        case 2:
            Expect(m_file.SetExt(text[0]), m_model.SetExt(copy[0]), false);
            break;
        case 3:
            Expect(m_file.SetDir(text[0]), m_model.SetDir(copy[0]), false);
            break;
        case 4:
            Expect(m_file.SetDrive(text[0]), m_model.SetDrive(copy[0]), false);
            break;
        case 5:
            Expect(m_file.ReplaceDir(text[0], text[1]), m_model.ReplaceDir(copy[0], copy[1]), true);
            break;
        case 6:
            Expect(m_file.AddDir(text[0]), m_model.AddDir(copy[0]), cramped);
            break;
        case 7:
            Expect(m_file.FNToDir(text[0]), m_model.FNToDir(copy[0]), cramped);
            break;
        case 8:
            Expect(m_file.RemoveLastDir(), m_model.RemoveLastDir(), true);
            break;
        case 9:
            CompareTests(text[0], copy[0]);
            break;
        case 10:
            m_file = CZrFileName(text[0], text[1], text[2], text[3]);
            m_model = ReferenceFileName(copy[0], copy[1], copy[2], copy[3]);
            m_all_good = m_model.Error() == 0;
            break;
        default:
            CompareCompact(static_cast<zr_ulong>(m_input.Byte()) * 2);
            break;
        }
        if (m_model.ext == ".") // from "..", which is taken, though what is stored is not valid
            m_all_good = false;
    }

    void CompareParts() const {
        Require(m_file.GetFileName(false) == m_model.name, "name");
        Require(m_file.GetExt() == m_model.ext, "extension");
        Require(m_file.GetDir(false) == m_model.dir, "directory");
        Require(m_file.GetDrive() == m_model.drive, "drive");
    }

    void CompareResults() const {
        const std::string path = m_model.Path();
        Require(m_file.GetPath() == path, "path");
        Require(m_file.GetFileName(true) == m_model.FileName(true), "name with extension");
        Require(m_file.GetDir(true) == m_model.Dir(true), "directory with drive");
        Require(m_file.GetLastDir() == m_model.LastDir(), "last directory");
        Require(static_cast<int>(m_file.GetError()) == m_model.Error(), "error");
        Require(!m_all_good || m_file.GetError() == ZR_FILE_NAME_OK || m_file.GetError() == ZR_FILE_NAME_BAD_PATH,
                "no bad part after setters that all were content");
        Require(m_file.FileNameValid() == ReferenceFileName::NameValid(m_model.name), "name valid");
        Require(m_file.ExtValid() == ReferenceFileName::ExtValid(m_model.ext), "extension valid");
        Require(m_file.DirValid() == ReferenceFileName::DirValid(m_model.dir), "directory valid");
        Require(m_file.DriveValid() == ReferenceFileName::DriveValid(m_model.drive), "drive valid");
        Require(m_file.PathValid() == ReferenceFileName::PathValid(path), "path valid");
        CompareCompact(260);
        CompareCompact(1000);
        if (Divisible())
            TakeApart();
    }

    // Whether the path tells where each of its valid parts begins and ends.
    bool Divisible() const {
        const auto fits = [](const std::string &part, bool valid) { return part.empty() || valid; };
        return m_file.PathValid() && fits(m_model.name, m_file.FileNameValid()) &&
               fits(m_model.ext, m_file.ExtValid()) && fits(m_model.dir, m_file.DirValid()) &&
               fits(m_model.drive, m_file.DriveValid()) && m_model.ext.find('.') == std::string::npos &&
               (!m_model.ext.empty() || m_model.name.find('.') == std::string::npos) &&
               (m_model.drive.empty() || m_model.dir.starts_with('\\')) &&
               (m_model.dir.empty() || m_model.dir.ends_with('\\'));
    }

    void TakeApart() const {
        CZrFileName again;
        Require(again.SetFileName(m_file.GetPath(), true) == !m_model.name.empty(), "the path is taken");
        Require(again.GetFileName(false) == m_model.name, "name from the path");
        Require(again.GetExt() == (m_model.name.empty() ? "" : m_model.ext), "extension from the path");
        Require(again.GetDir(false) == m_model.dir, "directory from the path");
        Require(again.GetDrive() == m_model.drive, "drive from the path");
        Require(std::strcmp(again.GetPath(), m_file.GetPath()) == 0, "path from the path");
    }

    void CompareCompact(zr_ulong width) const {
        const std::string path = m_model.Path();
        const std::string compact = m_file.GetCompactPath(width);
        Require(width == 0 ? compact.empty() : compact.size() < width, "width of the compact path");
        Require(path.size() + 1 >= width || compact == path, "the compact path is the whole one");
    }

    static void CompareTests(const char *text, const Text &copy) {
        const std::string plain = copy.value_or("");
        Require(CZrFileName::FileNameValid(text) == ReferenceFileName::NameValid(plain), "test of a name");
        Require(CZrFileName::ExtValid(text) == ReferenceFileName::ExtValid(plain), "test of an extension");
        Require(CZrFileName::DirValid(text) == ReferenceFileName::DirValid(plain), "test of a directory");
        Require(CZrFileName::DriveValid(text) == ReferenceFileName::DriveValid(plain), "test of a drive");
        Require(CZrFileName::PathValid(text) == ReferenceFileName::PathValid(plain), "test of a path");
    }

    Input m_input;
    CZrFileName m_file;
    ReferenceFileName m_model;
    bool m_all_good = true;
};

} // namespace

// Each step is a byte for the operation and what its texts need.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    zr_error_onoff(0); // reports are the tests' business
    Run(data, size).Play();
    return 0;
}
