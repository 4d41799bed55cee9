#include "files/ErrorText.h"

#include "base/Errors.h"
#include "base/Suggestion.h"
#include "base/Terminal.h"
#include "files/SourceExcerpt.h"
#include "xslt/Uri.h"

#include <filesystem>

namespace {

std::string placeText(const vexa::Location& where, const FileNames& names) {
    std::string text = names.nameOf(where.uri);
    for (const std::size_t number : {where.line, columnOf(where)}) {
        if (number != 0) {
            text += ":" + std::to_string(number);
        }
    }
    return text;
}

/** The limit's name begins its text. */
bool isAbout(const vexa::Error& error, const char* limit) {
    return error.text().rfind(std::string("the ") + limit + " limit", 0) == 0;
}

std::string limitText(const vexa::Error& error, const Limits& limits) {
    if (isAbout(error, "time")) {
        return timeLimitText(limits);
    }
    if (isAbout(error, "memory")) {
        return "memory limit of " + std::to_string(limits.maxMemory) +
               " MiB exceeded (--max-memory)";
    }
    if (isAbout(error, "output")) {
        return outputLimitText(limits);
    }
    return error.text() + " (--max-depth)";
}

/** A file that is missing may be a mistyped name. */
std::string suggestion(const vexa::Error& error, const FileNames& names) {
    const auto path = pathOfFileUri(error.where().uri);
    if (error.kind() != vexa::ErrorKind::Input || error.where().line != 0 || !path) {
        return "";
    }
    const std::string near = nearestFile(*path);
    if (near.empty()) {
        return "";
    }
    // Written as the mistyped name was.
    const std::filesystem::path given = names.nameOf(error.where().uri);
    return didYouMean((given.parent_path() / std::filesystem::path(near).filename()).string());
}

} // namespace

std::size_t columnOf(const vexa::Location& where) {
    const auto path = pathOfFileUri(where.uri);
    return path && where.column > 1 ? columnInCharacters(*path, where.line, where.column)
                                    : where.column;
}

std::string errorText(const vexa::Error& error, const FileNames& names, const Limits& limits) {
    const std::string cause = error.kind() == vexa::ErrorKind::Limit
                                  ? limitText(error, limits)
                                  : error.text() + suggestion(error, names);
    return oneLine(placeText(error.where(), names) + ": " +
                   (cause.empty() ? "the engine failed without an error message" : cause));
}

std::string errorExcerpt(const vexa::Error& error) {
    const auto path = pathOfFileUri(error.where().uri);
    const std::string excerpt =
        path ? sourceExcerpt(*path, error.where().line, columnOf(error.where()),
                             terminalColumns(errorDescriptor()))
             : "";
    return excerpt.empty() ? excerpt : "\n" + excerpt;
}

std::string messageText(const vexa::Diagnostic& diagnostic, const FileNames& names) {
    if (diagnostic.severity == vexa::Severity::Message) {
        return diagnostic.text;
    }
    return oneLine(placeText(diagnostic.where, names) + ": warning: " + diagnostic.text);
}
