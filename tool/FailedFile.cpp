#include "FailedFile.h"

#include "Failure.h"

#include <filesystem>
#include <regex>

namespace {

/**
 * The system id in the "(ID, line -1, column -1)" at the end of an in-memory report. No regular
 * expression: the library's would overflow the stack over a long text.
 */
std::string entityOfInMemoryReport(const std::string& reason) {
    const auto column = reason.rfind(", column ");
    const auto line = column == std::string::npos ? column : reason.rfind(", line ", column);
    if (line == std::string::npos || line == 0) {
        return "";
    }
    const auto word = reason.find_last_of(" \t\r\n", line - 1) + 1;
    const auto bracket = reason.find('(', word);
    return bracket < line ? reason.substr(bracket + 1, line - bracket - 1) : "";
}

/**
 * The system id in "(Occurred in entity 'ID', at line ...)", or in an in-memory report; empty where
 * the engine knows none.
 */
std::string entityOf(const std::string& reason) {
    constexpr const char* BEGIN = "(Occurred in entity '";
    const auto begin = reason.rfind(BEGIN);
    if (begin != std::string::npos) {
        const auto idBegin = begin + std::string(BEGIN).size();
        return reason.substr(idBegin, reason.find("', at ", idBegin) - idBegin);
    }
    return entityOfInMemoryReport(reason);
}

/** A stream has no base, so its entities are named relative to the folder it was read in. */
std::string entityName(const std::string& systemId) {
    const std::string name = displayName(systemId);
    std::error_code ignored;
    const bool isName = name.find("://") == std::string::npos;
    return isName ? std::filesystem::absolute(name, ignored).string() : name;
}

bool isAboutOutput(const std::string& reason) {
    static const std::regex outputException(
        "^(\nXSLException Type is: )?Xalan(File|Std)OutputStream\\w*Exception");
    return std::regex_search(reason, outputException);
}

} // namespace

std::string failedFile(const std::string& reason, const TransformDocuments& documents,
                       bool isAboutSource) {
    if (isAboutOutput(reason)) {
        return documents.output;
    }
    const std::string entity = entityOf(reason);
    const InputName* const source = documents.source.document();
    if (documents.stylesheet.isSystemId(entity)) {
        return documents.stylesheet.asTyped();
    }
    if (source && source->isSystemId(entity)) {
        return source->asTyped();
    }
    if (!entity.empty()) {
        return entityName(entity);
    }
    return isAboutSource ? documents.source.name() : documents.stylesheet.asTyped();
}

std::string readableReason(std::string reason, const TransformDocuments& documents) {
    const std::string written = "file: " + documents.writePath + ".";
    const auto path = reason.find(written);
    if (isAboutOutput(reason) && path != std::string::npos) {
        reason.replace(path, written.size(), "file: " + documents.output + ".");
    }
    static const std::regex errorNumber("(\\(errno\\) is |error code is ')([0-9]+)'?");
    std::smatch number;
    if (isAboutOutput(reason) && std::regex_search(reason, number, errorNumber)) {
        reason.insert(static_cast<std::size_t>(number.position() + number.length()),
                      ", \"" + systemReason(std::stoi(number[2])) + "\"");
    }
    return reason;
}
