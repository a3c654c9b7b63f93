// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/RecordingHostInterface.h"
#include "tests/support/TestClock.h"

#include "vesk/modules/dpvm/Vt22Module.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <vector>

/// A master module object on a DPRAM in memory, whose module side the test plays by hand, step by step.
class ScriptedMaster : public testing::Test {
protected:
    using State = Vesk::Modules::DPVM::Vt22Module::ModuleState_e;

    /// A module object of its own, just created.
    void Create(std::shared_ptr<Vesk::Modules::DPVM::Config::IBusConfig> config = nullptr);
    /// Lets the reset pulse pass.
    void PowerOn();
    /// Powers on, reports the power-on of a good module and lets the host answer that interrupt.
    void Boot();
    /// Boots, and answers what BeginInitialization sends until the module is initialised.
    void Initialize();

    /// The module raises its interrupt with `indication` and the object gets one Update.
    void Raise(int indication);
    /// Like Raise, and then 2 ms pass so that the host has answered the interrupt.
    void RaiseAndSettle(int indication);

    /// The module takes the request in mailbox-in and answers it. `error` is the id of an error code.
    void Answer(int error = 0, std::initializer_list<int> extended = {}, const std::string& data = "");

    /// The command of the request in mailbox-in, its eight extended words and its data.
    int Command() const { return Word(0x5A); }

    std::vector<int> Extended() const;
    std::string Data() const;
    int Word(int offset) const;

    TestClock _clock;
    std::shared_ptr<RecordingHostInterface> _dpRam = std::make_shared<RecordingHostInterface>();
    std::vector<std::string> _calls; // of the callbacks
    std::shared_ptr<Vesk::Modules::DPVM::Vt22Module> _module;
};
