// SPDX-License-Identifier: MIT
// Runs the benchmarks. Beside the options of Google Benchmark:
//   --table         prints a line for each of them: what, limit, ours, ratio, target, and whether it is met
//   --instructions  under callgrind: runs each once and prints those of which instructions were counted
#include "benchmarks/Measure.h"

#include <cstdio>
#include <cstring>

namespace {

/// The median of the repetitions, a line for each benchmark.
class TableReporter : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context&) override {
        std::printf("%-48s %10s %10s %7s   %-26s %s\n", "what (ns unless it says otherwise)", "limit", "ours",
                    "ratio", "target", "met");
        return true;
    }

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs)
            if (run.error_occurred)
                std::printf("%-48s cannot run: %s\n", run.run_name.str().c_str(), run.error_message.c_str());
            else if (run.repetitions == 1 || run.aggregate_name == "median")
                Print(run);
        std::fflush(stdout);
    }

private:
    static void Print(const Run& run) {
        const double limit = run.counters.at("limit");
        char limitText[16] = "-";
        char ratioText[16] = "-";
        if (limit > 0) {
            std::snprintf(limitText, sizeof limitText, "%.1f", limit);
            std::snprintf(ratioText, sizeof ratioText, "%.2f", static_cast<double>(run.counters.at("ratio")));
        }
        std::printf("%-48s %10s %10.1f %7s   %-26s %s\n", run.run_name.function_name.c_str(), limitText,
                    static_cast<double>(run.counters.at("ours")), ratioText, run.report_label.c_str(),
                    run.counters.at("over") <= 0 ? "yes" : "NO");
    }
};

/// Takes `option` out of the command line; whether it was there.
bool Take(int& count, char** arguments, const char* option) {
    for (int i = 1; i < count; ++i)
        if (std::strcmp(arguments[i], option) == 0) {
            for (; i < count; ++i)
                arguments[i] = arguments[i + 1];
            --count;
            return true;
        }
    return false;
}

/// The benchmarks of which instructions were counted, with the number of calls: of its limit, then of ours.
class InstructionsReporter : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context&) override { return true; }

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs)
            if (const auto calls = run.counters.find("calls"); calls != run.counters.end())
                std::printf("%s\t%.0f\n", run.run_name.function_name.c_str(),
                            static_cast<double>(calls->second));
    }
};

} // namespace

int main(int count, char** arguments) {
    const bool table = Take(count, arguments, "--table");
    Instructions::counted = Take(count, arguments, "--instructions");
    benchmark::Initialize(&count, arguments);
    if (benchmark::ReportUnrecognizedArguments(count, arguments))
        return 2;
    TableReporter tableReporter;
    InstructionsReporter instructionsReporter;
    if (Instructions::counted)
        benchmark::RunSpecifiedBenchmarks(&instructionsReporter);
    else if (table)
        benchmark::RunSpecifiedBenchmarks(&tableReporter);
    else
        benchmark::RunSpecifiedBenchmarks();
    return 0;
}
