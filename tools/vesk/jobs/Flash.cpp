// SPDX-License-Identifier: MIT
#include "tools/vesk/jobs/Flash.h"

#include "tools/vesk/files/FirmwareFile.h"
#include "tools/vesk/jobs/DownloadPlan.h"
#include "tools/vesk/jobs/Jobs.h"
#include "tools/vesk/session/BootloaderSession.h"
#include "tools/vesk/session/LinkOptions.h"
#include "tools/vesk/session/Session.h"
#include "tools/vesk/text/Failure.h"
#include "tools/vesk/text/Interruption.h"
#include "tools/vesk/text/Progress.h"
#include "tools/vesk/text/Text.h"
#include "vesk/mailbox/MailboxResponseException.h"
#include "vesk/mailbox/MailboxTimeoutException.h"

namespace VeskTool {

using namespace Vesk::Modules::DPVM;
using Vesk::Modules::Bootloader::FirmwareType_e;
using Vesk::Modules::Bootloader::TarnFile;

Flash::Flash(Options options, Link link, Console console)
    : _options(std::move(options)), _link(std::move(link)), _console(console) {}

void Flash::Execute() {
    const CarefulWork nothingChanged(_console);
    if (!_options.yes && !_options.dryRun && !_console.asks)
        throw Failure("There is no terminal to ask at; give --yes to write without being asked");
    _file = LoadFirmwareFile(_options.firmwarePath);
    CheckFile();
    ShowFile();
    ShowMasterBefore();
    {
        BootloaderSession session(_link);
        session.Boot();
        ShowBootloader(session);
        if (_options.dryRun) {
            if (_damaged)
                throw Failure(_options.firmwarePath + ": damaged, and should not be downloaded");
            return Line("Dry run: nothing was written");
        }
        Consent();
        Download(session);
    }
    ShowMasterAfter();
}

/// What would end in an error of the module, after its application was erased.
void Flash::CheckFile() const {
    const std::string type = TarnFile::FirmwareTypeToString(_file->FirmwareType).Value();
    const std::string holds = _options.firmwarePath + " holds " + type;
    switch (_file->FirmwareType) {
    case FirmwareType_e::APPLICATION_FIRMWARE:
        if (_options.bootloader)
            throw Failure(holds + ", no bootloader: leave out --bootloader to replace the application");
        break;
    case FirmwareType_e::BOOTLOADER_FIRMWARE:
        if (!_options.bootloader)
            throw Failure(holds + ": give --bootloader to replace the bootloader");
        break;
    case FirmwareType_e::CONFIGURATION_FIRMWARE:
        throw Failure(holds + ", which cannot be downloaded");
    }
    if (_file->ProgramData->Count() == 0)
        throw Failure(_options.firmwarePath + " holds no program");
}

void Flash::ShowFile() {
    const auto covered = CoveredChecksum(*_file);
    _damaged = covered && *covered != _file->Crc;
    Line("File    " + _options.firmwarePath + ": \"" + _file->Description.Value() + "\"");
    Line("        " + TarnFile::FirmwareTypeToString(_file->FirmwareType).Value() + " for module " +
         Hex(_file->ModuleId) + ", " + std::to_string(_file->ProgramData->Count()) + " bytes to " +
         Hex(_file->AddressBurnStart) + ", checksum " + Hex(_file->Crc));
    if (_damaged)
        _console.err << "vesk: warning: " << Damage(_options.firmwarePath, *_file, *covered) << std::endl;
}

Flash::Versions Flash::RunMaster() {
    Session session(_link, nullptr);
    session.Reach(Need::BOOTED);
    return {session.FirmwareVersion(), session.BootloaderVersion()};
}

/// A module whose last update went wrong does not run as the master; that is no reason to stop here.
void Flash::ShowMasterBefore() {
    try {
        _before = RunMaster();
        Line("Module  " + _link.description + ", firmware " + _before.firmware);
    } catch (const std::exception& exception) {
        _before = {"none", "unknown"};
        Line("Module  " + _link.description + ", no firmware runs (" + OneLine(exception) + ")");
    }
}

void Flash::ShowBootloader(BootloaderSession& session) {
    Vt22Bootloader& module = session.Module();
    _before.bootloader = Version({module.BootloaderMajor(), module.BootloaderMinor()});
    Line("        bootloader " + _before.bootloader + ", serial " + Hex(module.Serial()));
}

void Flash::Consent() {
    const std::string what = _options.bootloader ? "bootloader" : "application";
    if (!_options.yes && !_console.Confirm("Replace the " + what + " of this module?"))
        throw Failure("Nothing was written");
}

/// What the module did, in a few words.
static std::string Reason(const System::Exception& exception, bool atLast) {
    const std::string message = exception.Message().IsNull() ? "" : exception.Message().Value();
    if (dynamic_cast<const Vesk::Mailbox::MailboxTimeoutException*>(&exception))
        return "was not answered: " + message.substr(0, message.find('.'));
    const auto error = message.find("\nError: ");
    if (!dynamic_cast<const Vesk::Mailbox::MailboxResponseException*>(&exception) ||
        error == std::string::npos)
        return "failed: " + exception.TypeName().Value() + ": " + message;
    const auto name = message.substr(error + 8, message.find('\n', error + 1) - error - 8);
    return std::string(atLast ? "was refused, so the program did not pass the module's check: "
                              : "was refused by the module: ") +
           name;
}

void Flash::Download(BootloaderSession& session) {
    const DownloadPlan plan(*_file);
    Progress progress(_console, "requests", plan.Requests(), _file->ProgramData->Count());
    const auto start = System::DateTime::Now();
    int remaining = plan.Requests();
    const CarefulWork work(_console, [&] {
        progress.End();
        return "at " + plan.Request(remaining) + ". " + plan.ModuleState(remaining, false);
    });
    try {
        session.Download(_file, [&](int stillRemaining) {
            remaining = stillRemaining;
            progress.Show(plan.Requests() - remaining, plan.Bytes(remaining), SecondsSince(start));
        });
    } catch (const std::shared_ptr<System::Exception>& exception) {
        progress.End();
        const bool refused = dynamic_cast<Vesk::Mailbox::MailboxResponseException*>(exception.get());
        throw Failure(plan.Request(remaining) + " " + Reason(*exception, plan.AtLast(remaining)) + ". " +
                          plan.ModuleState(remaining, refused),
                      refused && plan.AtLast(remaining)
                          ? "Look at the file with `vesk firmware show`, and run the update again."
                          : "Run the update again.");
    }
    Line("Downloaded " + std::to_string(_file->ProgramData->Count()) + " bytes in " +
         std::to_string(plan.Requests()) + " requests and " + Milliseconds(SecondsSince(start) * 1000));
}

void Flash::ShowMasterAfter() {
    try {
        const Versions after = RunMaster();
        Line("The module runs firmware " + after.firmware + " (was " + _before.firmware + "), bootloader " +
             after.bootloader + " (was " + _before.bootloader + ")");
    } catch (const std::exception& exception) {
        throw Failure("The download is complete, but the module does not start as the master: " +
                      OneLine(exception));
    }
}

void Flash::Line(const std::string& text) {
    _console.out << text << std::endl;
}

Action AddFlash(CLI::App& command) {
    const auto options = std::make_shared<Flash::Options>();
    command.add_option("FIRMWARE", options->firmwarePath, "Firmware file")->required();
    command.add_flag("--bootloader", options->bootloader, "Replace the bootloader");
    command.add_flag("--yes", options->yes, "Do not ask; needed where there is no terminal");
    command.add_flag("--dry-run", options->dryRun, "Do everything but write");
    const auto link = std::make_shared<LinkOptions>();
    link->AddTo(command);
    return [options, link] {
        Flash(*options, link->Open(), Console::Standard()).Execute();
        return DONE;
    };
}

} // namespace VeskTool
