#include "BatchWork.h"
#include "Worker.h"

#include "../Failure.h"

#include <exception>
#include <system_error>
#include <thread>

namespace {

void work(const Batch& batch, const WorkerChannel& channel) {
    try {
        doJobs(batch, channel);
    } catch (const std::exception& failure) {
        channel.send(Report::Kind::GivenUp, failure.what());
    }
}

class ThreadWorker : public Worker {
public:
    explicit ThreadWorker(const Batch& batch) : m_batch(batch) {}
    ~ThreadWorker() override { ThreadWorker::end(); }

    void start(WorkerChannel channel) override {
        try {
            m_thread =
                std::thread([this, channel = std::move(channel)] { work(m_batch, channel); });
        } catch (const std::system_error& error) {
            throw Failure(m_batch.options.stylesheet,
                          "no thread can be made for it: " + systemReason(error.code().value()));
        }
    }

    void stop() override {}

    std::string end() override {
        if (m_thread.joinable()) {
            m_thread.join();
        }
        return "";
    }

private:
    const Batch& m_batch;
    std::thread m_thread;
};

} // namespace

std::unique_ptr<Worker> makeThreadWorker(const Batch& batch) {
    return std::make_unique<ThreadWorker>(batch);
}
