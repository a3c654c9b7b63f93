// SPDX-License-Identifier: MIT
// A module's thread and a service's, and the questions that go from one to the other, without any bus.
#include "dbus/Cycle.h"
#include "dbus/Line.h"
#include "tests/support/DatabaseFileBuilder.h"
#include "tests/support/ModuleLines.h"

#include "vesk/hostinterface/RuntimeConfig.h"
#include "vesk/modules/dpvm/DPVMMessages.h"
#include "vesk/modules/dpvm/Vt22.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

using namespace Vesk::DBus;
using namespace Vesk::Modules::DPVM;
using System::Array;

namespace {

/// A clock for both threads that moves on a microsecond with each look at it.
std::int64_t Tick() {
    static std::atomic<std::int64_t> now{0};
    return now += 1'000;
}

/// An application: a module in software, updated until it is told to end. Its two bytes are always the same.
class Application {
public:
    void Run() {
        VirtualModule::Flash flash;
        VirtualModule::InProcess module(flash, Tick, {.interruptPeriod = 0, .faults = {}});
        const auto [irq, reset, boot] = ModuleLines(module);
        const auto slave = DatabaseFileBuilder::SlaveRecord({{0, 1}, {0, 1}});
        const auto master =
            Vt22::CreateConfigured(module.DpRamPath(), 0, irq, reset, boot, nullptr, nullptr, nullptr,
                                   DatabaseFileBuilder().Master().Slave(3, slave).Read());
        const auto in = Array<unsigned char>::Create(2);
        cycle->SetMaster(master);
        while (!master->Configured())
            cycle->Update();
        master->MapInputData(0, in, 0, 2);
        master->MapOutputData(0, Array<unsigned char>::Create(2), 0, 2);
        master->BeginInitialization();
        for (unsigned int value = 0; !over; ++value) {
            in->Set(0, static_cast<unsigned char>(value / 16));
            in->Set(1, static_cast<unsigned char>(value / 16));
            cycle->Update();
        }
        cycle->SetMaster(nullptr);
    }

    const std::shared_ptr<Cycle> cycle = Cycle::Create(nullptr, true, [] {});
    std::atomic<bool> over{false};
};

std::unique_ptr<Question> Next(int round) {
    auto question = std::make_unique<Question>();
    if (round % 2 == 0) {
        question->requests = {DPVMMessages::GetLiveList()};
        return question;
    }
    question->kind = Question::Kind::SNAPSHOT;
    question->data.resize(3500);
    question->output.resize(3500);
    return question;
}

TEST(SeamTest, AnswersEachQuestionOnceWhileTheModuleRuns) {
    Vesk::RuntimeConfig::_hostInterfaceDumpPath = nullptr;
    System::DateTime::SetSource(Tick);
    Application application;
    Cycle& cycle = *application.cycle;
    std::thread thread([&] { application.Run(); });
    while (cycle.GetFacts().state != Vt22Module::ModuleState_e::INITIALIZED)
        std::this_thread::yield();
    EXPECT_EQ(cycle.GetFacts().identity.moduleType, 0x0201);

    // Half of them have hardly any time: they are withdrawn, or answered when nobody wants it any more.
    constexpr Line::Limits PATIENT{8, 8, 1'000'000'000'000};
    constexpr Line::Limits IMPATIENT{8, 8, 100'000};
    Seam& requests = cycle.SeamFor(Question::Kind::MESSAGES);
    Seam& snapshots = cycle.SeamFor(Question::Kind::SNAPSHOT);
    Line lines[]{{requests, PATIENT}, {snapshots, PATIENT}, {requests, IMPATIENT}, {snapshots, IMPATIENT}};
    int answered = 0;
    int timedOut = 0;
    std::uint64_t updates = 0;
    for (int round = 0; round < 100; ++round) {
        Line& line = lines[round % 4];
        bool first = true;
        EXPECT_TRUE(line.Add(
            ":1.1", Next(round),
            [&, first](Question& question, End end) mutable {
                if (!std::exchange(first, false))
                    return;
                ++(end == End::ANSWERED ? answered : timedOut);
                if (end != End::ANSWERED)
                    return;
                EXPECT_EQ(question.outcome, Question::Outcome::ANSWERED) << question.why;
                if (question.kind == Question::Kind::SNAPSHOT) {
                    EXPECT_EQ(question.data.size(), 2);
                    EXPECT_EQ(question.data.front(), question.data.back());
                }
            },
            cycle.Now()));
        for (; !line.IsEmpty(); std::this_thread::yield())
            line.Advance(cycle.Now());
        const std::uint64_t before = std::exchange(updates, cycle.GetStatistics().updateTime.Read().count);
        EXPECT_LE(before, updates);
    }
    EXPECT_EQ(answered + timedOut, 100);
    EXPECT_GE(answered, 50);

    application.over = true;
    thread.join();
    System::DateTime::SetSource(nullptr);
    lines[0].Add(
        ":1.1", Next(0), [&](Question& question, End) { answered = static_cast<int>(question.outcome); },
        cycle.Now());
    lines[0].Advance(cycle.Now());
    lines[0].Close("it has ended");
    EXPECT_EQ(answered, static_cast<int>(Question::Outcome::FAILED));
}

} // namespace
