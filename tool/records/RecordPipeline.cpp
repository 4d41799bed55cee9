#include "records/RecordPipeline.h"

#include "base/Errors.h"

#include <algorithm>
#include <iostream>
#include <poll.h>
#include <utility>

namespace {

/** Of results that wait for those before them. */
constexpr std::size_t MOST_WAITING_BYTES = std::size_t{4} * 1024 * 1024;

/** Of the source, in one chunk. A record may be larger. */
constexpr std::uint64_t CHUNK_BYTES = std::uint64_t{256} * 1024;

/** How many chunks there may be for each process: those that are done wait for their turn. */
constexpr std::size_t CHUNKS_PER_JOB = 4;

/** @param descriptor -1 for what need not be waited for */
bool isReadable(int descriptor) {
    pollfd source{descriptor, POLLIN, 0};
    return descriptor < 0 || poll(&source, 1, 0) != 0;
}

} // namespace

RecordPipeline::RecordPipeline(Settings settings, vexa::Records& records, RecordOutput& output,
                               Work work, Describe describe)
    : m_settings(std::move(settings)), m_records(records), m_output(output),
      m_work(std::move(work)), m_describe(std::move(describe)),
      m_progress(m_settings.showsProgress && m_settings.size != 0) {
    m_tally.bytes = m_settings.size;
}

bool RecordPipeline::run() {
    while (canRead() || !m_chunks.empty()) {
        if (canRead()) {
            readChunk();
        } else {
            wait();
        }
        m_tally.bytesRead = m_records.bytesRead();
        m_progress.draw(m_tally);
    }
    m_progress.clear();
    if (!m_end.empty()) {
        printError(m_end);
    }
    return m_end.empty();
}

bool RecordPipeline::hasRoom() const {
    const auto running = std::count_if(m_chunks.begin(), m_chunks.end(), [](const auto& chunk) {
        return chunk->process.isRunning();
    });
    return !m_isAtEnd && static_cast<std::size_t>(running) < m_settings.jobs &&
           m_chunks.size() < m_settings.jobs * CHUNKS_PER_JOB &&
           m_waitingBytes < MOST_WAITING_BYTES;
}

/** While results are to be expected, nothing is to keep from passing them on. */
bool RecordPipeline::canRead() const {
    return hasRoom() && (m_chunks.empty() || isReadable(m_settings.waitsFor));
}

void RecordPipeline::readChunk() {
    auto chunk = std::make_unique<Chunk>();
    const std::uint64_t before = m_records.bytesRead();
    const std::size_t most = recordsAtOnce();
    while (read(*chunk) && chunk->records.size() < most &&
           m_records.bytesRead() - before < CHUNK_BYTES && isReadable(m_settings.waitsFor)) {
    }
    if (!chunk->records.empty()) {
        m_chunks.push_back(std::move(chunk));
        start(*m_chunks.back());
    }
}

/** @return whether there may be more */
bool RecordPipeline::read(Chunk& chunk) {
    SourceRecord record{};
    try {
        auto document = m_records.next();
        m_isAtEnd = !document;
        if (document) {
            record.document = std::move(*document);
        }
    } catch (const vexa::Error& error) {
        record.failure = m_describe(error);
        m_isAtEnd = error.kind() != vexa::ErrorKind::Limit;
        m_end = m_isAtEnd ? record.failure : "";
    }
    if (!m_isAtEnd) {
        record.number = m_records.count();
        record.line = m_records.line();
        chunk.records.push_back(std::move(record));
    }
    return !m_isAtEnd;
}

/**
 * So many that a process has something to do for a while, and the others have something, too. The
 * first ones are few; where it is slow to start a process, there are some in each all the same.
 */
std::size_t RecordPipeline::recordsAtOnce() {
    constexpr double WHILE = 0.1;
    constexpr std::size_t SOME = 32;
    const double seconds = std::chrono::duration<double>(Clock::now() - m_begin).count();
    const double rate = static_cast<double>(m_tally.finished()) / seconds;
    return std::max(std::min(++m_chunkCount, SOME), static_cast<std::size_t>(WHILE * rate));
}

/** For those that are not finished. */
void RecordPipeline::start(Chunk& chunk) {
    Connection connection = openConnection();
    chunk.channel = std::move(connection.schedulersEnd);
    chunk.process.start([&] {
        std::for_each(chunk.records.begin() + static_cast<std::ptrdiff_t>(chunk.finished),
                      chunk.records.end(),
                      [&](const SourceRecord& record) { m_work(record, connection.workersEnd); });
        return EXIT_DONE;
    });
    chunk.process.setTimeLimit(m_settings.limits.maxSeconds);
}

/** Until a process has something to tell or is late, or there is something to read. */
void RecordPipeline::wait() {
    std::vector<pollfd> sources;
    for (const auto& chunk : m_chunks) {
        // Only here it is heard: for what it takes elsewhere it cannot help.
        chunk->process.postponeDeadline(Clock::now() - m_lastHeard);
        sources.push_back({mayReceive(*chunk) ? chunk->channel.descriptor() : -1, POLLIN, 0});
    }
    sources.push_back({hasRoom() ? m_settings.waitsFor : -1, POLLIN, 0});
    const Clock::time_point begin = Clock::now();
    poll(sources.data(), sources.size(), millisecondsToWait());
    m_lastHeard = Clock::now();
    for (std::size_t i = 0; i < m_chunks.size(); ++i) {
        Chunk& chunk = *m_chunks[i];
        if (sources[i].revents != 0) {
            receiveFrom(chunk);
        } else if (sources[i].fd < 0) {
            chunk.process.postponeDeadline(m_lastHeard - begin);
        }
        chunk.process.killIfLate();
    }
    deliverWaiting();
    m_output.flush();
}

int RecordPipeline::millisecondsToWait() const {
    constexpr std::chrono::milliseconds LONGEST = std::chrono::minutes(1);
    Clock::duration left = std::min<Clock::duration>(LONGEST, m_progress.interval());
    for (const auto& chunk : m_chunks) {
        if (const auto& deadline = chunk->process.deadline()) {
            left = std::clamp(*deadline - Clock::now(), Clock::duration::zero(), left);
        }
    }
    return static_cast<int>(std::chrono::ceil<std::chrono::milliseconds>(left).count());
}

/** The others may send some results ahead. */
bool RecordPipeline::mayReceive(const Chunk& chunk) const {
    return chunk.process.isRunning() &&
           (&chunk == m_chunks.front().get() || m_waitingBytes < MOST_WAITING_BYTES);
}

void RecordPipeline::receiveFrom(Chunk& chunk) {
    std::vector<Report> reports;
    const bool isThere = chunk.channel.receiveAll(reports);
    for (Report& report : reports) {
        take(chunk, std::move(report));
    }
    if (!isThere) {
        takeEnd(chunk);
    }
}

void RecordPipeline::take(Chunk& chunk, Report report) {
    if (report.kind == Report::Kind::Failed) {
        report.text = placeOf(chunk.records[chunk.finished]) + report.text;
    }
    if (report.kind != Report::Kind::Message) {
        ++chunk.finished;
        chunk.process.setTimeLimit(chunk.isDone() ? 0 : m_settings.limits.maxSeconds);
    }
    if (&chunk == m_chunks.front().get()) {
        deliver(report);
    } else {
        m_waitingBytes += report.text.size();
        chunk.waiting.push_back(std::move(report));
    }
}

/** The process is gone. Another takes its place for the records that are left. */
void RecordPipeline::takeEnd(Chunk& chunk) {
    const ChildProcess::End end = chunk.process.wait();
    if (!chunk.isDone()) {
        take(chunk, {Report::Kind::Failed, end.cause(m_settings.limits), ""});
    }
    if (!chunk.isDone()) {
        start(chunk);
    }
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

/** Ends chunks that are done, and prints what those behind them have waiting. */
void RecordPipeline::deliverWaiting() {
    while (!m_chunks.empty()) {
        Chunk& first = *m_chunks.front();
        for (; !first.waiting.empty(); first.waiting.pop_front()) {
            m_waitingBytes -= first.waiting.front().text.size();
            deliver(first.waiting.front());
        }
        if (first.process.isRunning()) {
            return;
        }
        m_chunks.pop_front();
    }
}

/** "SOURCE:LINE: record N: " */
std::string RecordPipeline::placeOf(const SourceRecord& record) const {
    return oneLine(m_settings.name) + ":" + std::to_string(record.line) + ": record " +
           std::to_string(record.number) + ": ";
}
