// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/Life.h"

#include "virtualmodule/faults/Faults.h"

#include <string>
#include <vector>

/// Whole lives of a host against a virtual module with faults. Each comes to an end: it has done all it
/// wanted, or the library throws, or it waits in vain for too long.
class FaultLife : public Life {
public:
    using Kind = VirtualModule::FaultKind::Life;

    struct Ending {
        bool complete = false;
        std::string type, message;     // of the exception, if there was one
        std::vector<std::string> data; // what the host was told, in order

        /// Whether it is what `outcome` says, measured by a life without faults.
        bool Is(const VirtualModule::Outcome& outcome, const Ending& good) const;
        std::string Text() const;
    };

    /// An empty module with these faults; the lives are on the same module, one after the other.
    explicit FaultLife(std::vector<VirtualModule::Fault> faults = {})
        : Life({}, {.faults = std::move(faults)}) {}

    /// A new module object brings the master up, exchanges data, uses services and changes the mode; or it
    /// brings a firmware into the module.
    Ending Run(Kind kind);
    /// The object of the last life is updated a few times more.
    Ending GoOn();
    /// The object of the last life does it all once more, after its Reset.
    Ending RunAgain();

    /// Whether the last life has come as far as having an object; it lasts until the next life.
    bool HasObject() const { return master || bootloader; }

private:
    Ending Live(const std::function<void()>& life);
    void Master();
    void Exchange();
    void TellAnswer(const Service& service);
    void ChangeMode(OperationMode wanted);
    void Firmware();
    void Settle();

    void Tell(std::string text) { _ending.data.push_back(std::move(text)); }

    Ending _ending;
};
