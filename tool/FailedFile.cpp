#include "FailedFile.h"

#include "Failure.h"

#include <regex>

namespace {

/** The system id in "(Occurred in entity 'ID', at line ...)"; empty where the engine knows none. */
std::string entityOf(const std::string& reason) {
    constexpr const char* BEGIN = "(Occurred in entity '";
    const auto begin = reason.rfind(BEGIN);
    if (begin == std::string::npos) {
        return "";
    }
    const auto idBegin = begin + std::string(BEGIN).size();
    return reason.substr(idBegin, reason.find("', at line", idBegin) - idBegin);
}

bool contains(const std::string& text, const std::string& part) {
    return !part.empty() && text.find(part) != std::string::npos;
}

/**
 * A source that was read as a stream has no system id: the engine then knows a line, but no entity.
 * A document that could not be opened at all is at line 0.
 */
bool isAboutNamelessSource(const std::string& reason) {
    return contains(reason, "(Occurred in an unknown entity, at line ") &&
           !contains(reason, "at line 0,");
}

bool isAboutOutput(const std::string& reason, const TransformDocuments& documents) {
    return contains(reason, documents.writePath) || contains(reason, "OutputStream");
}

} // namespace

std::string failedFile(const std::string& reason, const TransformDocuments& documents) {
    const std::string entity = entityOf(reason);
    if (documents.stylesheet.isSystemId(entity)) {
        return documents.stylesheet.asTyped();
    }
    const InputName* const source = documents.source.document();
    if (source && source->isSystemId(entity)) {
        return source->asTyped();
    }
    if (!entity.empty()) {
        return displayName(entity);
    }
    if (isAboutOutput(reason, documents)) {
        return documents.output;
    }
    if (isAboutNamelessSource(reason) || (source && contains(reason, source->uri()))) {
        return documents.source.name();
    }
    return documents.stylesheet.asTyped();
}

std::string readableReason(std::string reason, const TransformDocuments& documents) {
    const auto path =
        documents.writePath.empty() ? std::string::npos : reason.find(documents.writePath);
    if (path != std::string::npos) {
        reason.replace(path, documents.writePath.size(), documents.output);
    }
    std::smatch number;
    if (std::regex_search(reason, number, std::regex("\\(errno\\) is ([0-9]+)"))) {
        reason.insert(static_cast<std::size_t>(number.position() + number.length()),
                      ", \"" + systemReason(std::stoi(number[1])) + "\"");
    }
    return reason;
}
