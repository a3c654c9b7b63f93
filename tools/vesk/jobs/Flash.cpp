// SPDX-License-Identifier: MIT
#include "tools/vesk/jobs/Flash.h"

#include "tools/vesk/explain/Advice.h"
#include "tools/vesk/files/FirmwareFile.h"
#include "tools/vesk/jobs/DownloadPlan.h"
#include "tools/vesk/jobs/Jobs.h"
#include "tools/vesk/session/BootloaderSession.h"
#include "tools/vesk/session/LinkOptions.h"
#include "tools/vesk/session/OwnSession.h"
#include "tools/vesk/text/ByteText.h"
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

// The module type of a VT22 as the master, which its firmware files carry. It is what the library runs.
static constexpr unsigned short VT22 = 0x0201;

Flash::Flash(Options options, Link link, Console console)
    : _options(std::move(options)), _link(std::move(link)), _console(console) {}

const std::vector<std::string>& Flash::Checks() {
    static const std::vector<std::string> checks{"type", "checksum", "module-id", "version"};
    return checks;
}

void Flash::Execute() {
    const CarefulWork nothingChanged(_console);
    _console.NeedAnswer(_options.yes || _options.dryRun);
    const auto asked =
        _options.bootloader ? FirmwareType_e::BOOTLOADER_FIRMWARE : FirmwareType_e::APPLICATION_FIRMWARE;
    FirmwareFile file(_options.firmwarePath);
    _file = file.Content();
    CheckFile(asked);
    file.SetType(asked); // which it is, or --force says that the file is wrong there
    _file = file.Content();
    ShowFile();
    ShowMasterBefore();
    {
        BootloaderSession session(_link);
        session.Boot();
        ShowBootloader(session);
        CheckVersion();
        if (_options.dryRun)
            return Line("Dry run: nothing was written");
        _console.Confirm(_options.yes, "Replace the " + What() + " of this module?");
        Download(session);
    }
    ShowMasterAfter();
}

std::string Flash::What() const {
    return _options.bootloader ? "bootloader" : "application";
}

/// What one of the checks has found.
void Flash::Refuse(const std::string& check, const std::string& what) const {
    if (!_options.force.contains(check))
        throw Failure(what);
    _console.err << "vesk: warning: " << Harmless(what) << std::endl;
}

/// What the module would refuse or run after its application was erased.
void Flash::CheckFile(FirmwareType_e asked) const {
    const std::string& path = _options.firmwarePath;
    if (_file->FirmwareType != asked)
        Refuse("type", path + ": holds " + TarnFile::FirmwareTypeToString(_file->FirmwareType).Value() +
                           ", and the " + What() + " is to be replaced");
    if (_file->ProgramData->Count() == 0)
        throw Failure(path + ": holds no program");
    const auto covered = CoveredChecksum(*_file);
    if (covered && *covered != _file->Crc)
        Refuse("checksum", Damage(path, *_file, *covered));
    if (_file->ModuleId != VT22)
        Refuse("module-id",
               path + ": is for module " + Hex(_file->ModuleId) + ", and this one is " + Hex(VT22));
}

/// The file says how old the version that it takes the place of may be.
void Flash::CheckVersion() const {
    const std::pair<unsigned int, unsigned int> oldest{_file->OldestMajor, _file->OldestMinor};
    if (_replaced && *_replaced < oldest)
        Refuse("version", _options.firmwarePath + ": takes the place of version " +
                              Version({oldest.first, oldest.second}) + " or newer, and the module's " +
                              What() + " is " + Version({_replaced->first, _replaced->second}));
}

void Flash::ShowFile() {
    Line("File    " + Harmless(_options.firmwarePath) + ": \"" + Printable(_file->Description.Value()) +
         "\"");
    Line("        " + TarnFile::FirmwareTypeToString(_file->FirmwareType).Value() + " for module " +
         Hex(_file->ModuleId) + ", " + std::to_string(_file->ProgramData->Count()) + " bytes to " +
         Hex(_file->AddressBurnStart) + ", checksum " + Hex(_file->Crc));
}

Flash::Versions Flash::RunMaster() {
    OwnSession session(_link, nullptr);
    session.Reach(Need::BOOTED);
    if (!_options.bootloader)
        _replaced = {session.Module().SoftwareMajor(), session.Module().SoftwareMinor()};
    return {session.FirmwareVersion(), session.BootloaderVersion()};
}

/// A module whose last update went wrong does not run as the master; that is no reason to stop here.
void Flash::ShowMasterBefore() {
    try {
        _before = RunMaster();
        Line("Module  " + _link.description + ", firmware " + _before.firmware);
    } catch (const std::exception& exception) {
        _before = {"none", "unknown"};
        Line("Module  " + _link.description + ", no firmware runs (" + Told(exception) + ")");
    }
}

void Flash::ShowBootloader(BootloaderSession& session) {
    Vt22Bootloader& module = session.Module();
    _before.bootloader = Version({module.BootloaderMajor(), module.BootloaderMinor()});
    if (_options.bootloader)
        _replaced = {module.BootloaderMajor(), module.BootloaderMinor()};
    Line("        bootloader " + _before.bootloader + ", serial " + Hex(module.Serial()));
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
                      plan.ModuleState(remaining, refused));
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
                      Told(exception));
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
    command
        .add_option_function<std::vector<std::string>>(
            "--force",
            [options](const std::vector<std::string>& checks) {
                options->force.insert(checks.begin(), checks.end());
            },
            "Go on although the file holds another program than is to be replaced (type), is damaged "
            "(checksum), is for another module (module-id), or for a newer version than the module has "
            "(version)")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->check(CLI::IsMember(Flash::Checks()))
        ->type_name(Joined(Flash::Checks(), ","));
    const auto link = std::make_shared<LinkOptions>();
    link->AddTo(command, LinkOptions::Unnamed::REFUSED);
    return [options, link] {
        Flash(*options, link->Open(), Console::Standard()).Execute();
        return DONE;
    };
}

} // namespace VeskTool
