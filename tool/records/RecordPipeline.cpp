#include "records/RecordPipeline.h"

#include "base/Errors.h"

#include <iostream>
#include <poll.h>
#include <utility>

namespace {

/** Of results that wait for those before them. */
constexpr std::size_t MOST_WAITING_BYTES = std::size_t{4} * 1024 * 1024;

/** Of records that wait for one before them. */
constexpr std::size_t MOST_IN_FLIGHT = 10'000;

/** Packed: its length is to fit into 32 bits. */
constexpr std::uint64_t LARGEST_RECORD = std::uint64_t{2} * 1024 * 1024 * 1024;

/** Small records are given to a process some at a time, so that it need not wait for the next. */
constexpr std::size_t RECORDS_AHEAD = 16;

/** @param descriptor -1 for what need not be waited for */
bool isReadable(int descriptor) {
    pollfd source{descriptor, POLLIN, 0};
    return descriptor < 0 || poll(&source, 1, 0) != 0;
}

/** Without the name of the source, which stands before it anyway. */
std::string reason(const std::string& source, const std::string& error) {
    const std::string begin = oneLine(source) + ": ";
    return error.rfind(begin, 0) == 0 ? error.substr(begin.size()) : error;
}

} // namespace

RecordPipeline::RecordPipeline(Settings settings, vexa::Records& records, RecordOutput& output,
                               WorkerPool::Work work, Describe describe)
    : m_settings(std::move(settings)), m_records(records), m_output(output),
      m_describe(std::move(describe)), m_progress(m_settings.showsProgress && m_settings.size != 0),
      m_pool({m_settings.name, m_settings.limits, m_settings.jobs, RECORDS_AHEAD}, std::move(work),
             {[this](const WorkerPool::Job& job, Report report) {
                  take(job.number, std::move(report));
              },
              [this](const WorkerPool::Job& job, const ChildProcess::End& end,
                     double /*milliseconds*/) {
                  take(job.number, {Report::Kind::Failed, end.cause(m_settings.limits), ""});
              },
              [this](const WorkerPool::Job& job) {
                  return job.number == m_inFlight.front().number ||
                         m_waitingBytes < MOST_WAITING_BYTES;
              },
              [this] { m_output.flush(); }}) {
    m_tally.bytes = m_settings.size;
}

bool RecordPipeline::run() {
    m_pool.start();
    while (!m_isAtEnd || !m_pool.isDone()) {
        if (canRead()) {
            if (m_inFlight.empty()) {
                m_output.flush(); // the next record may be long in coming
            }
            read();
        } else {
            m_pool.wait(hasRoom() ? m_settings.waitsFor : -1, m_progress.interval());
        }
        m_tally.bytesRead = m_records.bytesRead();
        m_progress.draw(m_tally);
    }
    m_pool.finish();
    m_progress.clear();
    if (!m_end.empty()) {
        printError(m_end);
    }
    return m_end.empty();
}

bool RecordPipeline::hasRoom() const {
    return !m_isAtEnd && m_pool.hasRoom() && m_waitingBytes < MOST_WAITING_BYTES &&
           m_inFlight.size() < MOST_IN_FLIGHT;
}

/** While results are to be expected, nothing is to keep from passing them on. */
bool RecordPipeline::canRead() const {
    return hasRoom() && (m_inFlight.empty() || isReadable(m_settings.waitsFor));
}

void RecordPipeline::read() {
    std::optional<std::string> packed;
    std::string failure;
    const std::uint64_t before = m_records.count();
    try {
        packed = m_records.nextPacked();
    } catch (const vexa::Error& error) {
        failure = m_describe(error);
    }
    m_isAtEnd = m_records.count() == before;
    if (m_isAtEnd) {
        m_end = failure;
        return;
    }
    m_inFlight.push_back({m_records.count(), m_records.line(), {}});
    if (packed && packed->size() > LARGEST_RECORD) {
        take(m_records.count(), {Report::Kind::Failed, "the record is too large", ""});
    } else if (packed) {
        m_pool.add({m_records.count(), std::move(*packed)});
    } else {
        take(m_records.count(), {Report::Kind::Failed, failure, ""});
    }
}

void RecordPipeline::take(std::uint64_t number, Report report) {
    Record& record = m_inFlight[static_cast<std::size_t>(number - m_inFlight.front().number)];
    if (report.kind == Report::Kind::Failed) {
        report.text = placeOf(record) + reason(m_settings.name, report.text);
    }
    record.isDone = report.kind != Report::Kind::Message;
    m_waitingBytes += report.text.size();
    record.waiting.push_back(std::move(report));
    deliverWaiting();
}

void RecordPipeline::deliver(const Report& report) {
    if (report.kind == Report::Kind::Done) {
        ++m_tally.done;
        m_output.add(report.text);
        return;
    }
    m_progress.clear();
    if (report.kind == Report::Kind::Failed) {
        ++m_tally.failed;
        printError(report.text);
    } else {
        std::cerr << namedLines(m_settings.name, report.text);
    }
}

/** All that is next. */
void RecordPipeline::deliverWaiting() {
    while (!m_inFlight.empty()) {
        Record& first = m_inFlight.front();
        for (; !first.waiting.empty(); first.waiting.pop_front()) {
            m_waitingBytes -= first.waiting.front().text.size();
            deliver(first.waiting.front());
        }
        if (!first.isDone) {
            return;
        }
        m_inFlight.pop_front();
    }
}

/** "SOURCE:LINE: record N: " */
std::string RecordPipeline::placeOf(const Record& record) const {
    return oneLine(m_settings.name) + ":" + std::to_string(record.line) + ": record " +
           std::to_string(record.number) + ": ";
}
