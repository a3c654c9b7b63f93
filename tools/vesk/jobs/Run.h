// SPDX-License-Identifier: MIT
#pragma once

#include "tools/vesk/jobs/ProcessImage.h"
#include "tools/vesk/session/Link.h"
#include "tools/vesk/session/Session.h"
#include "tools/vesk/text/Console.h"

#include <nlohmann/json.hpp>

namespace VeskTool {

/// The main job: two lives of a configured master. In the first the module is powered up and identified, its
/// database brought in line, the process data of every slave exchanged and checked byte by byte, and each
/// kind of service used; the second has to find the database in place.
class Run {
public:
    struct Options {
        std::string configPath;
        unsigned int cycles = 1000;
        int priority = 0; // of real time; 0 for none
        bool json = false;
        bool yes = false; // do not ask before a machine is driven
    };

    /// `config` is what the file in the options holds.
    Run(Options options, std::shared_ptr<Vesk::Modules::DPVM::Config::IBusConfig> config, Link link,
        const Console& console);

    /// Failure, or an exception of the library, where something does not hold. At a machine it asks first;
    /// CLI::ParseError where it cannot.
    void Execute();

private:
    void AskAtMachine(const std::string& name) const;
    void FirstLife();
    void SecondLife();

    void BringUp(Session& session);
    void ShowModule(Session& session);
    void Exchange(Session& session, ProcessImage& image);
    void ShowCycle(const Cycle& cycle);
    void ExchangeOnce(Session& session, ProcessImage& image, unsigned int cycle);
    void UseServices(Session& session);
    void ShowBus(Session& session);
    void Summarize();
    std::vector<int> Configured() const;

    void Line(const std::string& text);

    Options _options;
    std::shared_ptr<Vesk::Modules::DPVM::Config::IBusConfig> _config;
    Link _link;
    Console _console;
    nlohmann::json _report; // what --json prints
};

} // namespace VeskTool
