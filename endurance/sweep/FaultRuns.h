// SPDX-License-Identifier: MIT
#pragma once

#include "endurance/sweep/HostSteps.h"

#include <map>

/// One life in which one thing goes wrong.
struct FaultRun {
    FaultLife::Kind life;
    std::vector<VirtualModule::Fault> moduleFaults; // one or none
    const HostFault* hostFault = nullptr;
    unsigned step = 0;   // of the host fault
    long allocation = 0; // which one fails; 0: none
    std::vector<const VirtualModule::Outcome*> promised;
    bool usual = false; // the example of its row in the table of faults

    std::string Text() const;
};

/// Every run that there is, and what each has to stand. The good lives say at which steps a fault can strike,
/// and what a life that went well looks like.
class FaultRuns {
public:
    FaultRuns();

    const std::vector<FaultRun>& All() const { return _runs; }

    /// Lives the run's life with its fault; then, without it, goes on with the same object, resets it for a
    /// life, and lives one with a new one. Says what is not as promised; nothing if all is.
    std::string Broken(const FaultRun& run) const;

private:
    struct Good {
        FaultLife::Ending ending;
        std::array<unsigned, VirtualModule::COUNTS> moduleSteps{};
        std::array<unsigned, HOST_STEPS> hostSteps{};
        std::vector<unsigned> touched; // bytes of the DPRAM
        long bound = 0;                // of accesses of an Update
        long allocations = 0;
    };

    static Good LiveWell(FaultLife::Kind life);
    void Add(FaultLife::Kind life, const Good& good);
    std::vector<unsigned> ValuesOf(const VirtualModule::FaultKind& kind, const Good& good,
                                   unsigned step) const;
    std::string Live(const FaultRun& run) const;
    std::vector<const VirtualModule::Outcome*> PromisedOf(const FaultRun& run, bool struck) const;
    std::string LiveAfterwards(const FaultRun& run, FaultLife& life, const FaultLife::Ending& first) const;

    std::map<FaultLife::Kind, Good> _good;
    std::vector<FaultRun> _runs;
};
