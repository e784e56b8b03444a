#include <velmocore/net/SynchronousDownload.h>

#include <atomic>

#include "net/DownloadTask.h"
#include "net/LoadErrors.h"

namespace velmo {
namespace {

std::atomic<std::size_t> allocatedDownloads = 0;
std::atomic<std::size_t> runningDownloads = 0;

}  // namespace

SynchronousDownload::SynchronousDownload(const URLRequest& request,
                                         const DownloadDelegate* delegate)
    : task_(std::make_unique<detail::DownloadTask>(delegate, this)) {
    task_->start(detail::HttpLoader::ofThisThread(), request, detail::CookieJar::shared());
    ++allocatedDownloads;
}

SynchronousDownload::~SynchronousDownload() { --allocatedDownloads; }

std::size_t SynchronousDownload::numberOfDownloads() noexcept { return allocatedDownloads; }
std::size_t SynchronousDownload::numberOfRunningDownloads() noexcept { return runningDownloads; }

void SynchronousDownload::run() noexcept {
    ++runningDownloads;
    task_->_running = true;
    task_->_done = false;
    try {
        const auto loader = detail::HttpLoader::ofThisThread();
        do {
            // What is there already is not waited for.
            if (task_->_connection && !task_->_connection->hasNews())
                loader->step(detail::DownloadTask::PollInterval);
        } while (task_->poll());
    } catch (...) {
        if (!task_->_error)
            task_->_error = detail::urlError(URLErrorUnknown, u"ended by an exception");
    }
    task_->_connection.reset();
    task_->_running = false;
    --runningDownloads;
}

void SynchronousDownload::cancel() { task_->cancel(); }
void SynchronousDownload::cancelWithError(const std::optional<Error>& error) {
    task_->cancelWithError(error);
}
bool SynchronousDownload::running() const noexcept { return task_->_running; }
bool SynchronousDownload::done() const noexcept { return task_->_done; }

const URLRequest& SynchronousDownload::request() const noexcept { return task_->_request; }
const URLConnection* SynchronousDownload::connection() const noexcept {
    return task_->_connection.get();
}
const std::optional<Data>& SynchronousDownload::resourceData() const noexcept {
    return task_->_resourceData;
}
const std::optional<URLResponse>& SynchronousDownload::response() const noexcept {
    return task_->_response;
}
const std::optional<Error>& SynchronousDownload::error() const noexcept { return task_->_error; }

void SynchronousDownload::setRequest(const URLRequest& request) { task_->setRequest(request); }
void SynchronousDownload::setResponse(const std::optional<URLResponse>& response) {
    task_->setResponse(response);
}
void SynchronousDownload::setError(const std::optional<Error>& error) { task_->_error = error; }

DownloadedResponse downloadSynchronousResponse(const URLRequest& request,
                                               const DownloadDelegate* delegate) {
    if (request.isAbsent()) return {};
    SynchronousDownload download(request, delegate);
    download.run();
    detail::DownloadTask& task = *download.task_;
    return {std::move(task._resourceData), std::move(task._response), std::move(task._request),
            std::move(task._error)};
}

}  // namespace velmo
