// SPDX-License-Identifier: MIT
// vesk_sweep [--every N] [--jobs N]: lives a whole life for every fault and every step at which it can
// strike, or for every N-th of them and the example of every fault, in so many processes, and says whether
// each was as promised.
#include "endurance/sweep/FaultRuns.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <sys/mman.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace {

/// A process that has found so much wrong stops.
constexpr int MOST_BROKEN = 20;

/// Lives the job-th of so many equal parts of the runs, and notes in `current` which it is at.
[[noreturn]] void Live(const FaultRuns& runs, const std::vector<const FaultRun*>& taken, std::size_t job,
                       std::size_t jobs, std::size_t& current) {
    int broken = 0;
    for (current = job; current < taken.size() && broken < MOST_BROKEN; current += jobs) {
        const FaultRun& run = *taken[current];
        const std::string text = runs.Broken(run);
        broken += text.empty() ? 0 : 1;
        if (!text.empty())
            std::fprintf(stderr, "%s\n%s\n\n", run.Text().c_str(), text.c_str());
    }
    std::exit(broken == 0 ? EXIT_SUCCESS : EXIT_FAILURE); // a sanitizer looks here for memory that is left
}

int Sweep(std::size_t every, std::size_t jobs) {
    const FaultRuns runs;
    std::vector<const FaultRun*> taken;
    for (std::size_t i = 0; i < runs.All().size(); ++i)
        if (i % every == 0 || runs.All()[i].usual)
            taken.push_back(&runs.All()[i]);

    void* const shared = ::mmap(nullptr, jobs * sizeof(std::size_t), PROT_READ | PROT_WRITE,
                                MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (shared == MAP_FAILED)
        throw std::system_error(errno, std::generic_category(), "mmap");
    auto* const current = static_cast<std::size_t*>(shared);
    std::vector<pid_t> processes;
    for (std::size_t job = 0; job < jobs; ++job) {
        processes.push_back(::fork());
        if (processes.back() == 0)
            Live(runs, taken, job, jobs, current[job]);
        if (processes.back() < 0)
            throw std::system_error(errno, std::generic_category(), "fork");
    }
    int result = EXIT_SUCCESS;
    for (std::size_t job = 0; job < jobs; ++job) {
        int status = 0;
        if (::waitpid(processes[job], &status, 0) == processes[job] && status == 0)
            continue;
        result = EXIT_FAILURE;
        if (current[job] < taken.size())
            std::fprintf(stderr, "%s\nit stopped here\n\n", taken[current[job]]->Text().c_str());
    }
    std::printf("%zu fault runs, %s as promised\n", taken.size(), result == EXIT_SUCCESS ? "all" : "not all");
    return result;
}

} // namespace

int main(int argc, char** argv) {
    std::size_t every = 1, jobs = 1;
    for (int i = 1; i + 1 < argc; i += 2)
        (std::strcmp(argv[i], "--jobs") == 0 ? jobs : every) = std::stoul(argv[i + 1]);
    return Sweep(every, jobs);
}
