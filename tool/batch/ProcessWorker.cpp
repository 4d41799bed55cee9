#include "BatchWork.h"
#include "Worker.h"

#include "../ChildProcess.h"
#include "../CrashNotes.h"
#include "../EngineSession.h"
#include "../Failure.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <new>
#include <sys/wait.h>
#include <unistd.h>

namespace {

void workInSession(const Batch& batch, const WorkerChannel& channel) {
    const Limits& limits = batch.options.common.limits;
    const EngineSession session;
    const BatchFiles files(batch);
    reachOnly(limits, files.named());
    tellEngineExceptions(limits, batch.options.stylesheet, [&] { doJobs(batch, channel); });
}

[[noreturn]] void work(const Batch& batch, const WorkerChannel& channel) {
    try {
        workInSession(batch, channel);
    } catch (const std::bad_alloc&) {
        channel.send(Report::Kind::GivenUp, lackOfMemory(batch.options.common.limits));
    } catch (const std::exception& failure) {
        channel.send(Report::Kind::GivenUp, failure.what());
    }
    std::exit(EXIT_DONE);
}

class ProcessWorker : public Worker {
public:
    explicit ProcessWorker(const Batch& batch) : m_batch(batch), m_notes(shareCrashNotes()) {}
    ~ProcessWorker() override { ProcessWorker::stop(); }

    void start(WorkerChannel channel) override {
        new (&m_notes) CrashNotes{};
        const pid_t parent = getpid();
        m_nProcess = fork();
        if (m_nProcess < 0) {
            throw Failure(m_batch.options.stylesheet,
                          "no process can be made for it: " + systemReason(errno));
        }
        if (m_nProcess == 0) {
            becomeChild(m_batch.options.common.limits, m_notes, parent);
            work(m_batch, channel);
        }
    }

    void stop() override {
        if (m_nProcess > 0) {
            kill(m_nProcess, SIGKILL);
            ProcessWorker::end();
        }
    }

    std::string end() override {
        int status = 0;
        if (m_nProcess <= 0 || waitpid(m_nProcess, &status, 0) != m_nProcess) {
            return "";
        }
        m_nProcess = 0;
        removeUnfinishedFile(m_notes.unfinishedFile);
        const bool endedByItself = WIFEXITED(status) && WEXITSTATUS(status) == EXIT_DONE;
        return endedByItself ? "" : endReason(status, m_notes, m_batch.options.common.limits);
    }

private:
    const Batch& m_batch;
    /** In memory that is given back when this process ends. */
    CrashNotes& m_notes;
    pid_t m_nProcess = 0;
};

} // namespace

std::unique_ptr<Worker> makeProcessWorker(const Batch& batch) {
    return std::make_unique<ProcessWorker>(batch);
}
