#include "profile/Profile.h"

#include "base/Json.h"
#include "profile/Coverage.h"
#include "profile/PageParts.h"

#include "xslt/Uri.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <map>
#include <string_view>

namespace {

const char* nameOf(const vexa::Instruction& instruction) {
    switch (instruction.kind) {
    case vexa::Instruction::Kind::Function:
        return "function";
    case vexa::Instruction::Kind::Variable:
        return "variable";
    case vexa::Instruction::Kind::AttributeSet:
        return "attribute set";
    default:
        return instruction.where.line == 0 ? "built-in" : "template";
    }
}

std::string readText(const std::string& uri) {
    const auto path = pathOfFileUri(uri);
    if (!path) {
        return "";
    }
    std::ifstream file(*path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/** What the page reads. */
class PageData {
public:
    explicit PageData(const Profile& profile) : m_profile(profile), m_data(profile.data) {
        for (const std::string& uri : profile.modules) {
            m_modules.emplace(uri, m_modules.size());
        }
    }

    std::string text() {
        m_json.begin();
        m_json.member("title", m_profile.title);
        m_json.member("version", std::string(PROGRAM_VERSION));
        m_json.member("outcome", m_profile.outcome);
        number("compile", m_profile.compile);
        number("parse", m_profile.parse);
        number("transform", m_profile.transform);
        number("instructions", m_data.sum().instructions);
        addModules();
        addRoutines();
        addTree();
        addLines();
        m_json.end();
        return m_json.text();
    }

private:
    void number(const char* key, std::uint64_t value) {
        m_json.name(key);
        m_json.writer().Uint64(value);
    }
    /** -1 where there is none. */
    void index(const char* key, const std::size_t* value) {
        m_json.name(key);
        m_json.writer().Int64(value ? static_cast<std::int64_t>(*value) : -1);
    }
    template <typename Items, typename Add>
    void array(const char* key, const Items& items, Add add) {
        m_json.name(key);
        m_json.writer().StartArray();
        for (const auto& item : items) {
            m_json.begin();
            add(item);
            m_json.end();
        }
        m_json.writer().EndArray();
    }
    const std::size_t* moduleOf(const vexa::Location& where) const {
        const auto found = m_modules.find(where.uri);
        return where.line == 0 || found == m_modules.end() ? nullptr : &found->second;
    }

    void addModules() {
        array("modules", m_profile.modules, [&](const std::string& uri) {
            m_json.member("name", m_profile.fileOf(uri));
            m_json.member("text", readText(uri));
        });
    }
    void addRoutines() {
        const auto routines = m_profile.routines();
        array("routines", routines, [&](std::size_t routine) {
            m_places.emplace(routine, m_places.size());
            const vexa::Instruction& instruction = m_data.instructions()[routine];
            const Profiler::Entry& entry = m_data.entries()[routine];
            m_json.member("name", m_profile.nameOf(routine));
            m_json.member("kind", std::string(nameOf(instruction)));
            index("module", moduleOf(instruction.where));
            number("line", instruction.where.line);
            number("calls", entry.calls);
            number("own", m_data.ownOf(routine).nanoseconds);
            number("total", entry.total.nanoseconds);
            number("ownSteps", m_data.ownOf(routine).instructions);
            number("totalSteps", entry.total.instructions);
        });
    }
    void addTree() {
        array("tree", m_data.tree(), [&](const Profiler::Node& node) {
            number("routine", m_places.at(node.routine));
            index("parent", node.parent == Profiler::NONE ? nullptr : &node.parent);
            number("calls", node.calls);
            number("own", node.own.nanoseconds);
            number("ownSteps", node.own.instructions);
        });
    }
    void addLines() {
        struct Line {
            std::uint64_t calls = 0;
            Cost own;
        };
        std::vector<std::map<std::size_t, Line>> modules(m_modules.size());
        for (std::size_t i = 0; i < m_data.entries().size(); ++i) {
            const vexa::Location& where = m_data.instructions()[i].where;
            if (const std::size_t* const module = moduleOf(where)) {
                Line& line = modules[*module][where.line];
                line.calls = std::max(line.calls, m_data.entries()[i].calls);
                line.own += m_data.entries()[i].own;
            }
        }
        auto& writer = m_json.writer();
        m_json.name("lines");
        writer.StartArray();
        for (const auto& lines : modules) {
            writer.StartArray();
            for (const auto& [number, line] : lines) {
                writer.StartArray();
                writer.Uint64(number);
                writer.Uint64(line.calls);
                writer.Uint64(line.own.nanoseconds);
                writer.Uint64(line.own.instructions);
                writer.EndArray();
            }
            writer.EndArray();
        }
        writer.EndArray();
    }

    const Profile& m_profile;
    const Profiler& m_data;
    JsonText m_json;
    std::map<std::string, std::size_t> m_modules;
    /** Of the routines that were called, in the page's order. */
    std::map<std::size_t, std::size_t> m_places;
};

std::string escaped(const std::string& text, char character, const char* escape) {
    std::string result;
    for (const char c : text) {
        if (c == character) {
            result += escape;
        } else {
            result += c;
        }
    }
    return result;
}

} // namespace

std::string profilePage(const Profile& profile) {
    const std::map<std::string_view, std::string> parts{
        {"@TITLE@", escaped(escaped(profile.title, '&', "&amp;"), '<', "&lt;")},
        {"@STYLE@", PROFILE_CSS},
        {"@SCRIPT@", PROFILE_JS},
        // In HTML a script ends where "</script" begins.
        {"@DATA@", escaped(PageData(profile).text(), '<', "\\u003c")}};
    std::string page;
    std::string_view rest = PROFILE_HTML;
    for (auto at = rest.find('@'); at != std::string_view::npos; at = rest.find('@')) {
        page += rest.substr(0, at);
        const auto length = rest.find('@', at + 1) + 1 - at;
        page += parts.at(rest.substr(at, length));
        rest.remove_prefix(at + length);
    }
    return page.append(rest);
}
