#include "text_file.h"

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace bench {

void WriteTexts(const std::wstring& path, const std::vector<std::wstring>& texts) {
    std::ofstream file(std::filesystem::path(path), std::ios::binary);
    for (const std::wstring& text : texts) {
        const auto units = static_cast<std::uint32_t>(text.size());
        file.write(reinterpret_cast<const char*>(&units), sizeof(units));
        file.write(reinterpret_cast<const char*>(text.data()),
                   static_cast<std::streamsize>(text.size() * sizeof(wchar_t)));
    }
    file.close();
    if (!file) {
        throw std::runtime_error("the documents cannot be written");
    }
}

std::vector<std::wstring> ReadTexts(const std::wstring& path) {
    constexpr std::uint32_t kMostUnits = 16U * 1024 * 1024;
    std::ifstream file(std::filesystem::path(path), std::ios::binary);
    std::vector<std::wstring> texts;
    std::uint32_t units = 0;
    while (file.read(reinterpret_cast<char*>(&units), sizeof(units))) {
        if (units > kMostUnits) {
            throw std::runtime_error("the file with the documents is damaged");
        }
        std::wstring text(units, L'\0');
        if (!file.read(reinterpret_cast<char*>(text.data()),
                       static_cast<std::streamsize>(units * sizeof(wchar_t)))) {
            throw std::runtime_error("the file with the documents ends early");
        }
        texts.push_back(std::move(text));
    }
    if (texts.empty()) {
        throw std::runtime_error("there are no documents");
    }
    return texts;
}

}  // namespace bench
