#include "Outcome.h"

#include "Check.h"

Outcome failure(const vexa::Error& error) {
    require(*error.what() != '\0', "what() is never empty");
    if (error.kind() == vexa::ErrorKind::Limit) {
        return {Outcome::End::OutOfResources, error.what()};
    }
    std::string text = std::to_string(static_cast<int>(error.kind())) + ' ' + error.what() + '\n';
    for (const vexa::Diagnostic& diagnostic : error.diagnostics()) {
        text += std::to_string(static_cast<int>(diagnostic.severity)) + ' ' + diagnostic.where.uri +
                ':' + std::to_string(diagnostic.where.line) + ':' +
                std::to_string(diagnostic.where.column) + ": " + diagnostic.text + '\n';
    }
    const bool isUsage = error.kind() == vexa::ErrorKind::Usage;
    return {isUsage ? Outcome::End::Usage : Outcome::End::Failure, text};
}
