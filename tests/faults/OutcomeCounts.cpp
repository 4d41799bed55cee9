#include "OutcomeCounts.h"

#include <fstream>
#include <iomanip>
#include <istream>
#include <ostream>

namespace {

#if defined(__x86_64__)
constexpr const char* FILE_NAME = "/counts-amd64.txt";
#elif defined(__i386__)
constexpr const char* FILE_NAME = "/counts-i386.txt";
#else
constexpr const char* FILE_NAME = "/counts-unknown.txt";
#endif

constexpr const char* HEADING = "# Outcomes of the allocation sweep; see OutcomeCounts.h.\n"
                                "# reported  died  lost memory  wrong  operation\n";

std::string compare(const char* what, std::size_t count, std::size_t stored) {
    return "  " + std::to_string(count) + ' ' + what + ", stored: " + std::to_string(stored) + '\n';
}

} // namespace

std::optional<CountTable> readStoredCounts() {
    std::ifstream file(std::string(STORED_COUNTS_FOLDER) + FILE_NAME);
    if (!file) {
        return std::nullopt;
    }
    CountTable table;
    while (file >> std::ws) {
        if (file.peek() == '#') {
            file.ignore(1000, '\n');
            continue;
        }
        OutcomeCounts counts;
        std::string name;
        file >> counts.reported >> counts.deaths >> counts.losses >> counts.wrong >> std::ws;
        if (std::getline(file, name)) {
            table[name] = counts;
        }
    }
    return table;
}

void writeCounts(const CountTable& table, const std::vector<std::string>& names) {
    std::ofstream file(std::string(NEW_COUNTS_FOLDER) + FILE_NAME);
    file << HEADING;
    for (const std::string& name : names) {
        const OutcomeCounts& counts = table.at(name);
        file << std::setw(10) << counts.reported << std::setw(6) << counts.deaths << std::setw(13)
             << counts.losses << std::setw(7) << counts.wrong << "  " << name << '\n';
    }
}

std::string describeWorse(const OutcomeCounts& counts, const OutcomeCounts& stored) {
    std::string text;
    if (counts.points() < stored.points()) {
        text += compare("failure points", counts.points(), stored.points());
    }
    if (counts.deaths > stored.deaths) {
        text += compare("deaths in the engine", counts.deaths, stored.deaths);
    }
    if (counts.losses > stored.losses) {
        text += compare("losses in the engine", counts.losses, stored.losses);
    }
    if (counts.wrong > stored.wrong) {
        text += compare("wrong behaviours of the engine", counts.wrong, stored.wrong);
    }
    return text;
}
