#include "batch/BatchReport.h"

#include "files/ErrorJson.h"
#include "files/InputArgument.h"
#include "files/OutputPlace.h"

#include <algorithm>
#include <climits>
#include <utility>

namespace {

/** The members of an object, without its braces. */
template <typename Add>
std::string members(Add add) {
    JsonText json;
    json.begin();
    add(json);
    json.end();
    const std::string text = json.text();
    return text.substr(1, text.size() - 2);
}

} // namespace

BatchReport::BatchReport(const std::string& file) {
    if (!file.empty()) {
        m_file.emplace(file == STANDARD_STREAM ? "/dev/stdout" : writablePath(file),
                       [](std::string text, const vexa::Location& where) {
                           throw vexa::Error(vexa::ErrorKind::Output, std::move(text), where);
                       });
    }
}

void BatchReport::commit() {
    if (m_file) {
        write();
        m_file->commit();
        m_file.reset();
    }
}

/** In pieces for which a pipe has room when it has room at all: its reader may wait. */
void BatchReport::write() {
    for (std::size_t i = 0; i < m_buffer.size() && m_wait(m_file->descriptor()); i += PIPE_BUF) {
        m_file->write(m_buffer.data() + i, std::min<std::size_t>(PIPE_BUF, m_buffer.size() - i));
    }
    m_buffer.clear();
}

void BatchReport::add(const BatchJob& job, const std::string& outcome) {
    constexpr std::size_t BUFFER_SIZE = std::size_t{64} * 1024;
    if (!m_file) {
        return;
    }
    m_buffer += "{" + members([&](JsonText& json) {
                    json.member("source", job.source);
                    json.member("output", job.output);
                }) +
                "," + outcome + "}\n";
    if (m_buffer.size() >= BUFFER_SIZE) {
        write();
    }
}

void BatchReport::addSkipped(const BatchJob& job) {
    add(job, R"("ok":true,"skipped":true)");
}

std::string doneOutcome(double milliseconds) {
    return members([&](JsonText& json) {
        json.member("ok", true);
        json.milliseconds(milliseconds);
    });
}

std::string failedOutcome(double milliseconds, const vexa::Error& error) {
    return members([&](JsonText& json) {
        json.member("ok", false);
        json.milliseconds(milliseconds);
        addError(json, error);
    });
}

std::string lostOutcome(double milliseconds, const std::string& kind, const std::string& cause) {
    return members([&](JsonText& json) {
        json.member("ok", false);
        json.milliseconds(milliseconds);
        addError(json, kind, cause, {});
    });
}
