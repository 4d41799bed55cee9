#include "BatchWork.h"

#include "../CrashNotes.h"
#include "../EngineRun.h"
#include "../EngineSession.h"
#include "../ErrorRoute.h"

#include <vexa/VEXAXslTransformer.h>

#include <exception>
#include <malloc.h>
#include <memory>
#include <mutex>
#include <streambuf>

namespace {

/** Sends what the engine prints in this thread, while it lives. */
class MessageBuffer : private std::streambuf {
public:
    explicit MessageBuffer(const WorkerChannel& channel)
        : m_channel(channel), m_pBefore(redirectErrors(this)) {}
    MessageBuffer(const MessageBuffer&) = delete;
    MessageBuffer& operator=(const MessageBuffer&) = delete;
    ~MessageBuffer() override {
        MessageBuffer::sync();
        redirectErrors(m_pBefore);
    }

private:
    int_type overflow(int_type character) override {
        if (!traits_type::eq_int_type(character, traits_type::eof())) {
            m_strText += traits_type::to_char_type(character);
        }
        return traits_type::not_eof(character);
    }

    std::streamsize xsputn(const char* text, std::streamsize length) override {
        m_strText.append(text, static_cast<std::size_t>(length));
        return length;
    }

    int sync() override {
        if (!m_strText.empty()) {
            m_channel.send(Report::Kind::Message, m_strText);
            m_strText.clear();
        }
        return 0;
    }

    const WorkerChannel& m_channel;
    std::streambuf* m_pBefore;
    std::string m_strText;
};

/** Of the whole process: how much one thread takes nobody knows. */
std::size_t memoryInUse() {
    // Where another allocator has taken its place, the system's own sets itself up at the first
    // call.
    static std::mutex oneAtATime;
    const std::lock_guard lock(oneAtATime);
    const auto memory = mallinfo2();
    return memory.uordblks + memory.hblkhd;
}

/** Does jobs, with one transformer for many. */
class JobRunner {
public:
    explicit JobRunner(const Batch& batch)
        : m_batch(batch), m_stylesheet(batch.options.stylesheet) {}

    /** @return Done or Failed */
    Report run(const BatchJob& job);

private:
    void transform(const BatchJob& job);
    VEXAXslTransformer& transformer();
    bool isWornOut() const;

    const Batch& m_batch;
    InputName m_stylesheet;
    std::unique_ptr<VEXAXslTransformer> m_pTransformer;
    unsigned m_nUses = 0;
    std::size_t m_nMemoryBefore = 0;
};

Report JobRunner::run(const BatchJob& job) {
    try {
        tellEngineExceptions(m_batch.options.common.limits, job.source, [&] { transform(job); });
        return {Report::Kind::Done, ""};
    } catch (const std::exception& failure) {
        m_pTransformer.reset();
        const std::string text = failure.what();
        const bool isAboutSource = text.rfind(job.source + ": ", 0) == 0;
        return {Report::Kind::Failed, isAboutSource ? text : job.source + ": " + text};
    }
}

void JobRunner::transform(const BatchJob& job) {
    const Source source(job.source);
    source.checkReadable();
    transformToFile(transformer(), m_stylesheet, source, job.output, m_batch.options.common.quiet);
}

bool JobRunner::isWornOut() const {
    constexpr unsigned MOST_USES = 20;
    constexpr std::size_t MOST_GROWTH = std::size_t{32} * 1024 * 1024;
    return m_nUses == MOST_USES || memoryInUse() > m_nMemoryBefore + MOST_GROWTH;
}

/** Renewed now and then: a transformer keeps something of every transform until it goes. */
VEXAXslTransformer& JobRunner::transformer() {
    if (!m_pTransformer || isWornOut()) {
        m_pTransformer.reset();
        m_nMemoryBefore = memoryInUse();
        m_pTransformer = std::make_unique<VEXAXslTransformer>();
        setParameters(*m_pTransformer, m_batch.parameters);
        m_nUses = 0;
    }
    ++m_nUses;
    return *m_pTransformer;
}

} // namespace

void doJobs(const Batch& batch, const WorkerChannel& channel) {
    const MessageBuffer messages(channel);
    JobRunner runner(batch);
    do {
        channel.send(Report::Kind::Ready);
        const auto job = channel.nextJob();
        if (!job) {
            return;
        }
        const Report report = runner.run(batch.jobs[*job]);
        channel.send(report.kind, report.text);
    } while (!hasLackedMemory());
}
