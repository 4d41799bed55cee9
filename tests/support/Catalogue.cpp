#include "Catalogue.h"

#include "TestFiles.h"

#include <regex>
#include <sstream>

namespace fs = std::filesystem;

namespace {

const std::string FOLDER = projectFile("src/platform/resources/catalogue/");

} // namespace

std::set<std::string> catalogueLanguages() {
    std::set<std::string> languages;
    for (const auto& entry : fs::directory_iterator(FOLDER)) {
        languages.insert(entry.path().stem().string());
    }
    return languages;
}

std::map<unsigned long, std::string> catalogueTexts(const std::string& language) {
    const std::regex entry("\\s*([0-9A-F]{8})\\s*\\{\\s*\"([^\"]*)\"\\s*\\}\\s*");
    std::map<unsigned long, std::string> texts;
    std::istringstream file(readFile(FOLDER + language + ".txt"));
    std::smatch match;
    for (std::string line; std::getline(file, line);) {
        if (std::regex_match(line, match, entry)) {
            texts[std::stoul(match[1], nullptr, 16)] = match[2];
        }
    }
    return texts;
}
