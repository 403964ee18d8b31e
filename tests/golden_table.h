// Reads a table of measured answers from tests/golden: tab separated, one header line, escapes in the fields.
#ifndef TESTS_GOLDEN_TABLE_H
#define TESTS_GOLDEN_TABLE_H

#include <cstddef>
#include <cstdio>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

class GoldenTable {
public:
    // One answer: its fields by column name, as bytes ("\xHH" and "\\" resolved; "\N", no value, as it stands).
    using Row = std::map<std::string, std::string>;

    // Throws where the table is missing or damaged: a test without its data must not pass.
    explicit GoldenTable(const std::string &name) {
        const std::string text = Load(std::string(ZR_GOLDEN_DIR) + "/" + name);
        std::vector<std::string> columns;
        for (std::size_t start = 0; start < text.size();) {
            const std::size_t end = text.find('\n', start);
            std::vector<std::string> fields = Split(text.substr(start, end - start));
            start = end == std::string::npos ? text.size() : end + 1;
            if (columns.empty()) {
                columns = fields;
                continue;
            }
            if (fields.size() != columns.size())
                throw std::runtime_error("golden table " + name + ": bad row");
            Row row;
            for (std::size_t i = 0; i < fields.size(); ++i)
                row[columns[i]] = Resolve(fields[i]);
            m_rows.push_back(row);
        }
        if (m_rows.empty())
            throw std::runtime_error("golden table " + name + ": no rows");
    }

    const std::vector<Row> &Rows() const { return m_rows; }

private:
    static std::string Load(const std::string &path) {
        std::FILE *file = std::fopen(path.c_str(), "rb");
        if (file == nullptr)
            throw std::runtime_error("golden table missing: " + path);
        std::string text;
        for (int c = std::fgetc(file); c != EOF; c = std::fgetc(file)) {
            if (c != '\r')
                text += static_cast<char>(c);
        }
        std::fclose(file);
        return text;
    }

    static std::vector<std::string> Split(const std::string &line) {
        std::vector<std::string> fields(1);
        for (const char c : line) {
            if (c == '\t')
                fields.emplace_back();
            else
                fields.back() += c;
        }
        return fields;
    }

    static std::string Resolve(const std::string &field) {
        if (field == "\\N")
            return field;
        std::string bytes;
        for (std::size_t i = 0; i < field.size(); ++i) {
            if (field[i] != '\\') {
                bytes += field[i];
            } else if (i + 1 < field.size() && field[i + 1] == 'x') {
                bytes += static_cast<char>(std::stoi(field.substr(i + 2, 2), nullptr, 16));
                i += 3;
            } else {
                bytes += field[++i];
            }
        }
        return bytes;
    }

    std::vector<Row> m_rows;
};

#endif
