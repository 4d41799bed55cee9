#include "files/ReportFile.h"

#include "files/InputArgument.h"
#include "files/OutputPlace.h"

#include "xslt/AtomicFile.h"

#include <utility>

std::string reportPath(const std::string& name) {
    return name == STANDARD_STREAM ? "/dev/stdout" : writablePath(name);
}

void writeReport(const std::string& name, const std::string& text) {
    AtomicFile file(reportPath(name), [](std::string cause, const vexa::Location& where) {
        throw vexa::Error(vexa::ErrorKind::Output, std::move(cause), where);
    });
    file.write(text.data(), text.size());
    file.commit();
}
