// SPDX-License-Identifier: GPL-3.0-or-later
#include "formats/exchange/import_process.h"

#include "formats/exchange/import_child.h"
#include "workbench/state.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <time.h>
#include <unistd.h>
#include <utility>

namespace polyfab {
namespace {

/// More than this is no mesh but a bomb. The editor holds the whole stream for a moment.
constexpr std::size_t maxStream = std::size_t{2} << 30;

/// Milliseconds between two looks at the Escape key.
constexpr int lookEvery = 50;

struct Descriptor {
    ~Descriptor() { close(); }
    void close() {
        if (number >= 0) ::close(std::exchange(number, -1));
    }
    int number = -1;
};

/// A process that does not outlive this record.
struct Process {
    ~Process() { end(); }
    /// Ends it if it still runs, and gives the status that waitpid gives.
    int end() {
        int status = 0;
        if (id <= 0) return status;
        ::kill(id, SIGKILL);
        return wait();
    }
    int wait() {
        int status = 0;
        while (::waitpid(id, &status, 0) < 0 && errno == EINTR) {
        }
        id = -1;
        return status;
    }
    pid_t id = -1;
};

/// False when it can't be started.
bool start(const std::vector<std::string>& args, int input, int output, Process& process) {
    std::vector<const char*> words = {exchangeProgram.c_str(), exchangeArgument};
    for (const std::string& arg : args) words.push_back(arg.c_str());
    words.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    if (input >= 0) {
        posix_spawn_file_actions_adddup2(&actions, input, STDIN_FILENO);
    } else {
        posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, "/dev/null", O_RDONLY, 0);
    }
    posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    const int error = ::posix_spawn(&process.id, exchangeProgram.c_str(), &actions, nullptr,
                                    const_cast<char* const*>(words.data()), environ);
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0) process.id = -1;
    return error == 0;
}

/// Knows when a process has done nothing for too long: it computes hardly anything and `moved` is
/// not called.
class Watch {
  public:
    explicit Watch(pid_t id) : known(::clock_getcpuclockid(id, &clock) == 0) { moved(); }
    void moved() {
        since = Time::now();
        used = computed();
    }
    bool isOver() {
        constexpr double least = 0.01; // seconds; a process that polls takes less
        if (computed() - used > least) moved();
        return std::chrono::duration<double>(Time::now() - since).count() > exchangePatience;
    }

  private:
    using Time = std::chrono::steady_clock;
    double computed() const {
        timespec time{};
        if (!known || ::clock_gettime(clock, &time) != 0) return 0;
        return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
    }

    clockid_t clock{};
    bool known;
    Time::time_point since;
    double used = 0; ///< seconds of the processor, when it moved last
};

/// Reads to the end of the pipe. Returns "" or why it gave up.
std::string collect(int pipe, Watch watch, std::vector<char>& output) {
    std::vector<char> piece(std::size_t{1} << 16);
    for (;;) {
        if (abortRequested()) return "stopped by the Escape key";
        if (watch.isOver()) return "it waited too long for something that did not come";
        pollfd wanted = {pipe, POLLIN, 0};
        if (::poll(&wanted, 1, lookEvery) <= 0) continue;
        const ssize_t count = ::read(pipe, piece.data(), piece.size());
        if (count == 0) return "";
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return "the pipe broke";
        watch.moved();
        output.insert(output.end(), piece.begin(), piece.begin() + count);
        if (output.size() > maxStream) return "the mesh is too large";
    }
}

/// How a process ended that did not do its work; "" when it did.
std::string ending(int status) {
    if (WIFEXITED(status)) {
        return WEXITSTATUS(status) == 0 ? "" : "the process for other formats failed";
    }
    const int signal = WTERMSIG(status);
    if (signal == SIGXCPU) return "it took too long";
    if (signal == SIGKILL) return "the process for other formats was killed: out of memory?";
    const char* const name = ::sigabbrev_np(signal);
    return std::string("the process for other formats crashed (SIG")
           + (name != nullptr ? name : std::to_string(signal)) + ")";
}

} // namespace

std::string runExchangeProcess(const std::vector<std::string>& args, int input,
                               std::vector<char>& output) {
    int ends[2];
    if (::pipe2(ends, O_CLOEXEC) != 0) return "no pipe can be made";
    const Descriptor reading{ends[0]};
    Descriptor writing{ends[1]};
    Process process;
    if (!start(args, input, writing.number, process)) return "no process can be started";
    writing.close(); // the child's end is the only one now, so that its end is the stream's
    const std::string stopped = collect(reading.number, Watch(process.id), output);
    return stopped.empty() ? ending(process.wait()) : stopped;
}

} // namespace polyfab
