#pragma once

// The values of a JSON text by their paths, for tests that compare with what other readers found.

#include <charconv>
#include <cstdint>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>

/// Reads a text whose objects and arrays come out as one map: the value of "b" in the second element of "a"
/// has the path "a.1.b". Texts keep their UTF-8; numbers and words are their text. Raises for what is no
/// JSON.
class JsonValues {
  public:
    explicit JsonValues(std::string_view text) : m_rest(text) { ReadValue(""); }

    [[nodiscard]] bool Has(const std::string& path) const { return m_values.contains(path); }
    [[nodiscard]] const std::string& Text(const std::string& path) const { return m_values.at(path); }
    /// A number in decimal, or in hexadecimal as a text that begins with "0x".
    [[nodiscard]] std::int64_t Number(const std::string& path) const {
        std::string_view digits = m_values.at(path);
        const bool isHex = digits.starts_with("0x");
        digits.remove_prefix(isHex ? 2 : 0);
        std::int64_t number = 0;
        if (std::from_chars(digits.data(), digits.data() + digits.size(), number, isHex ? 16 : 10).ec !=
            std::errc()) {
            throw std::runtime_error("no number at " + path);
        }
        return number;
    }
    /// The elements of an array.
    [[nodiscard]] std::size_t Count(const std::string& path) const { return m_counts.at(path); }
    [[nodiscard]] bool HasArray(const std::string& path) const { return m_counts.contains(path); }

  private:
    static std::string Below(const std::string& path, const std::string& name) {
        return path.empty() ? name : path + "." + name;
    }
    char Next() {
        const std::size_t at = m_rest.find_first_not_of(" \t\r\n");
        if (at == std::string_view::npos) {
            throw std::runtime_error("the text ends too early");
        }
        m_rest.remove_prefix(at);
        return m_rest.front();
    }
    void Expect(char expected) {
        if (Next() != expected) {
            throw std::runtime_error(std::string("expected ") + expected);
        }
        m_rest.remove_prefix(1);
    }
    /// True if a list goes on, false at its end, which is taken.
    bool GoesOn(char end, bool isFirst) {
        if (Next() == end) {
            m_rest.remove_prefix(1);
            return false;
        }
        if (!isFirst) {
            Expect(',');
        }
        return true;
    }
    void ReadValue(const std::string& path) {
        switch (Next()) {
            case '{':
                Expect('{');
                for (bool isFirst = true; GoesOn('}', isFirst); isFirst = false) {
                    const std::string name = ReadText();
                    Expect(':');
                    ReadValue(Below(path, name));
                }
                return;
            case '[': {
                Expect('[');
                std::size_t count = 0;
                for (; GoesOn(']', count == 0); ++count) {
                    ReadValue(Below(path, std::to_string(count)));
                }
                m_counts[path] = count;
                return;
            }
            case '"':
                m_values[path] = ReadText();
                return;
            default: {
                const std::size_t end = m_rest.find_first_of(",]} \t\r\n");
                m_values[path] = m_rest.substr(0, end);
                m_rest.remove_prefix(end == std::string_view::npos ? m_rest.size() : end);
            }
        }
    }
    std::string ReadText() {
        Expect('"');
        std::string text;
        for (; m_rest.at(0) != '"'; m_rest.remove_prefix(1)) {
            if (m_rest.front() == '\\') {
                text += m_rest.front();
                m_rest.remove_prefix(1);
            }
            text += m_rest.at(0);
        }
        m_rest.remove_prefix(1);
        return text;
    }

    std::string_view m_rest;
    std::map<std::string, std::string> m_values;
    std::map<std::string, std::size_t> m_counts;
};
