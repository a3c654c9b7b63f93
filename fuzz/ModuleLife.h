// SPDX-License-Identifier: MIT
#pragma once

#include "fuzz/HostileDpRam.h"

#include "vesk/mailbox/Response.h"
#include "vesk/modules/IModule.h"

#include <functional>

namespace Fuzz {

/// What the lives of a master module object and of a bootloader module object have in common: a script, a
/// DPRAM that cannot be trusted, a clock that only the script moves, and how calls are made.
class ModuleLife {
protected:
    using Bytes = Fuzz::Bytes;

    /// What a callback of the application throws that the library knows nothing of.
    struct Foreign {};

    ModuleLife(std::span<const std::uint8_t> input, std::vector<HostileDpRam::Range> hosts);
    ~ModuleLife();
    ModuleLife(const ModuleLife&) = delete;
    ModuleLife& operator=(const ModuleLife&) = delete;

    bool Has(unsigned option) const { return (_options & option) != 0; }

    /// Calls the library once. Its exceptions are those that it promises, or the callbacks' own. Returns the
    /// text of what it threw; empty if it returned.
    std::string Call(const std::function<void()>& call);

    /// Updates as often, and with as much time between, as the script says.
    void Update(Vesk::Modules::IModule& module);

    /// Puts an answer to the request in mailbox-in into mailbox-out; the script makes it right or wrong.
    void PutAnswer(int mailboxIn);
    /// As long as nobody else has written to the mailboxes, what is taken for an answer is one.
    void CheckAnswer(int mailboxIn) const;
    /// Writes bytes anywhere.
    void Poke();

    /// One of the script's arrays: null, empty, and lengths that fit or do not.
    std::shared_ptr<System::IArray<unsigned char>> TakeArray();
    /// A response for a step of a chain; null at times.
    std::shared_ptr<Vesk::Mailbox::IResponse> TakeResponse();

    /// The application has kept to its own operations, the bus was honest and Update has never failed.
    bool InOrder() const { return _mannerly && _dpRam->Honest(); }

    /// In a life that was in order, the virtual module has nothing to complain of.
    void CheckManners();

    Script _script;
    TestClock _clock;
    unsigned _options;
    std::shared_ptr<HostileDpRam> _dpRam;
    VirtualModule::Flash _flash;
    bool _mannerly = true;

private:
    int _updatesLeft = 1000;
};

} // namespace Fuzz
