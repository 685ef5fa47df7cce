// SPDX-License-Identifier: MIT
#include "tools/import/worker.hpp"

#include <fmt/format.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <exception>
#include <fcntl.h>
#include <new>
#include <poll.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Import {
namespace {

// AddressSanitizer reserves terabytes of addresses and would not live under a limit, and its
// reports may go to a file.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool sanitized = true;
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
constexpr bool sanitized = true;
#else
constexpr bool sanitized = false;
#endif
#else
constexpr bool sanitized = false;
#endif

void limit(__rlimit_resource what, rlim_t value) {
    const rlimit both{value, value};
    setrlimit(what, &both);
}

[[noreturn]] void work(int pipe, const Options& options,
                       const std::function<void(Channel&)>& function) {
    const rlimit seconds{options.seconds, options.seconds + 5};
    setrlimit(RLIMIT_CPU, &seconds);
    limit(RLIMIT_CORE, 0);
    if (!sanitized) {
        limit(RLIMIT_AS, rlim_t{options.megabytes} << 20);
        // A word on standard error, where that is a file, fails then and does no more.
        limit(RLIMIT_FSIZE, 0);
        std::signal(SIGXFSZ, SIG_IGN);
    }
    // Nothing in a file may make us wait for a keyboard.
    if (const int nothing = open("/dev/null", O_RDONLY | O_CLOEXEC); nothing >= 0)
        dup2(nothing, STDIN_FILENO);

    Channel channel(pipe);
    try {
        function(channel);
        channel.Done();
    } catch (const std::bad_alloc&) {
        channel.Error(fmt::format("it takes more than {} MiB of memory", options.megabytes));
    } catch (const std::exception& exception) {
        channel.Error(exception.what());
    }
    _exit(0);
}

/// Takes the frames apart that the worker sends: a letter, 8 bytes of length, the payload.
class Frames {
public:
    Frames(WorkerResult& result, const std::function<void(const std::string&)>& progress)
        : mResult(result), mProgress(progress) {}

    void Append(const char* bytes, std::size_t size) {
        mBuffer.append(bytes, size);
        std::size_t at = 0;
        std::uint64_t length = 0;
        while (mBuffer.size() - at >= head) {
            std::memcpy(&length, mBuffer.data() + at + 1, sizeof length);
            if (mBuffer.size() - at - head < length)
                break;
            take(mBuffer[at], mBuffer.substr(at + head, length));
            at += head + length;
        }
        mBuffer.erase(0, at);
    }
    bool Done() const { return mDone; }

private:
    static constexpr std::size_t head = 1 + sizeof(std::uint64_t);

    void take(char kind, std::string payload) {
        if (kind == 'P') {
            mProgress(payload);
        } else if (kind == 'R') {
            mResult.report += payload;
        } else if (kind == 'E') {
            mResult.error = payload;
        } else if (kind == 'F') {
            const std::size_t end = payload.find('\0');
            mResult.files.push_back({payload.substr(0, end), payload.substr(end + 1)});
        } else if (kind == 'D') {
            mDone = true;
        }
    }

    WorkerResult& mResult;
    const std::function<void(const std::string&)>& mProgress;
    std::string mBuffer;
    bool mDone = false;
};

/// Reads until the worker closes its end. False: it did not in time.
bool receive(int pipe, Frames& frames, unsigned int seconds) {
    // Twice the time that it may compute: the rest is waiting for disks.
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(2 * seconds + 10);
    std::string buffer(1 << 16, '\0');
    for (;;) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
            end - std::chrono::steady_clock::now());
        pollfd wait{pipe, POLLIN, 0};
        const int ready = left.count() <= 0 ? 0 : poll(&wait, 1, static_cast<int>(left.count()));
        if (ready == 0)
            return false;
        if (ready < 0 && errno == EINTR)
            continue;
        const ssize_t got = read(pipe, buffer.data(), buffer.size());
        if (got > 0)
            frames.Append(buffer.data(), static_cast<std::size_t>(got));
        else if (got == 0 || errno != EINTR)
            return true;
    }
}

std::string howItEnded(int status, bool inTime, const Options& options) {
    if (!inTime || (WIFSIGNALED(status) && WTERMSIG(status) == SIGXCPU))
        return fmt::format("it takes more than {} seconds", options.seconds);
    if (WIFSIGNALED(status))
        return fmt::format("the importer crashed (signal {})", WTERMSIG(status));
    return fmt::format("the importer broke off (status {})", WEXITSTATUS(status));
}

} // namespace

void Channel::send(char kind, const std::string& payload) {
    const std::uint64_t length = payload.size();
    std::string frame(1, kind);
    frame.append(reinterpret_cast<const char*>(&length), sizeof length);
    frame += payload;
    for (std::size_t at = 0; at < frame.size();) {
        const ssize_t sent = write(mPipe, frame.data() + at, frame.size() - at);
        if (sent < 0 && errno == EINTR)
            continue;
        // Without a reader there is nobody to tell.
        if (sent <= 0)
            _exit(1);
        at += static_cast<std::size_t>(sent);
    }
}

void Channel::File(const OutputFile& file) {
    send('F', file.path + '\0' + file.bytes);
}

WorkerResult RunWorker(const Options& options, const std::function<void(Channel&)>& function,
                       const std::function<void(const std::string&)>& progress) {
    WorkerResult result;
    int ends[2];
    if (pipe2(ends, O_CLOEXEC) != 0)
        return {std::string("no pipe: ") + std::strerror(errno), {}, {}};
    const pid_t worker = fork();
    if (worker < 0) {
        close(ends[0]);
        close(ends[1]);
        return {std::string("no process: ") + std::strerror(errno), {}, {}};
    }
    if (worker == 0) {
        close(ends[0]);
        work(ends[1], options, function);
    }
    close(ends[1]);
    Frames frames(result, progress);
    const bool inTime = receive(ends[0], frames, options.seconds);
    close(ends[0]);
    if (!inTime)
        kill(worker, SIGKILL);
    int status = 0;
    while (waitpid(worker, &status, 0) < 0 && errno == EINTR) {
    }
    if (result.error.empty() && !frames.Done())
        result.error = howItEnded(status, inTime, options);
    return result;
}

} // namespace Import
