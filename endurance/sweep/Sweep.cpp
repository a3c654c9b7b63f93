// SPDX-License-Identifier: MIT
// vesk_sweep [--every N] [--jobs N]: lives a whole life for every fault and every step at which it can
// strike, or for every N-th of them and the example of every fault, in so many processes, and says whether
// each was as promised.
#include "endurance/sweep/FaultRuns.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <stdexcept>
#include <sys/mman.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace {

/// A process that has found so much wrong stops.
constexpr std::size_t MOST_BROKEN = 20;

struct Options {
    std::size_t every = 1;
    std::size_t jobs = 1;
};

/// What a process of the sweep tells the one that started it, in memory that they share.
struct Progress {
    std::size_t current = 0; // the run that it is at
    std::size_t done = 0;
    std::size_t broken = 0;
};

Options Parse(const std::vector<std::string>& arguments) {
    Options options;
    for (std::size_t i = 0; i < arguments.size(); i += 2) {
        if ((arguments[i] != "--every" && arguments[i] != "--jobs") || i + 1 == arguments.size())
            throw std::invalid_argument("usage: vesk_sweep [--every N] [--jobs N]");
        (arguments[i] == "--every" ? options.every : options.jobs) = std::stoul(arguments[i + 1]);
    }
    return options;
}

Progress* ShareProgress(std::size_t jobs) {
    void* const shared =
        ::mmap(nullptr, jobs * sizeof(Progress), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (shared == MAP_FAILED)
        throw std::system_error(errno, std::generic_category(), "mmap");
    auto* const progress = static_cast<Progress*>(shared);
    std::uninitialized_value_construct_n(progress, jobs);
    return progress;
}

bool IsTaken(const FaultRun& run, std::size_t index, const Options& options) {
    return index % options.every == 0 || run.usual;
}

/// The job-th of so many equal parts of the runs.
void Sweep(const FaultRuns& runs, const Options& options, std::size_t job, Progress& progress) {
    const std::vector<FaultRun>& all = runs.All();
    std::size_t taken = 0;
    for (std::size_t i = 0; i < all.size(); ++i) {
        if (!IsTaken(all[i], i, options) || taken++ % options.jobs != job)
            continue;
        progress.current = i;
        const std::string broken = runs.Broken(all[i]);
        ++progress.done;
        if (broken.empty())
            continue;
        std::fprintf(stderr, "%s\n%s\n\n", all[i].Text().c_str(), broken.c_str());
        if (++progress.broken == MOST_BROKEN)
            return;
    }
}

pid_t Start(const FaultRuns& runs, const Options& options, std::size_t job, Progress& progress) {
    const pid_t process = ::fork();
    if (process < 0)
        throw std::system_error(errno, std::generic_category(), "fork");
    if (process == 0) {
        Sweep(runs, options, job, progress);
        std::exit(EXIT_SUCCESS); // a sanitizer looks here for memory that is left
    }
    return process;
}

bool EndedWell(pid_t process) {
    int status = 0;
    return ::waitpid(process, &status, 0) == process && status == 0;
}

int Main(const Options& options) {
    const FaultRuns runs;
    Progress* const progress = ShareProgress(options.jobs);
    std::vector<pid_t> processes;
    for (std::size_t job = 0; job < options.jobs; ++job)
        processes.push_back(Start(runs, options, job, progress[job]));

    Progress total;
    for (std::size_t job = 0; job < options.jobs; ++job) {
        if (!EndedWell(processes[job])) {
            ++total.broken;
            std::fprintf(stderr, "%s\ncrashed, or left memory behind\n\n",
                         runs.All()[progress[job].current].Text().c_str());
        }
        total.done += progress[job].done;
        total.broken += progress[job].broken;
    }
    if (total.broken != 0) {
        std::printf("%zu fault runs, %zu not as promised\n", total.done, total.broken);
        return EXIT_FAILURE;
    }
    std::printf("%zu fault runs, all as promised\n", total.done);
    return EXIT_SUCCESS;
}

} // namespace

int main(int argc, char** argv) {
    try {
        return Main(Parse({argv + 1, argv + argc}));
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "%s\n", failure.what());
        return EXIT_FAILURE;
    }
}
