// SPDX-License-Identifier: MIT
// The configuration download of the master module: the module's database is compared with the bus
// configuration by the checksum that stands in its description, written where it differs, and compared again
// after a reboot.
#include "vesk/core/VeskException.h"
#include "vesk/mailbox/ErrorCode.h"
#include "vesk/mailbox/MailboxResponseException.h"
#include "vesk/modules/dpvm/DPVMMessages.h"
#include "vesk/modules/dpvm/Vt22Module.h"
#include "vesk/system/Convert.h"

namespace Vesk::Modules::DPVM {

using Mailbox::IRequest;
using Mailbox::IResponse;
using Mailbox::MailboxResponseException;

static constexpr int DOWNLOAD_SECONDS = 3;

/// The checksum as the description of the database: eight hexadecimal digits.
static constexpr int DESCRIPTION_LENGTH = 8;

/// Word of an INVALID_OTHER answer, and its value, by which the module says that it holds no database.
static constexpr int NO_DATABASE_WORD = 7;
static constexpr unsigned short NO_DATABASE = 1;

void Vt22Module::Download_Begin() {
    Ask(DPVMMessages::GetDatabaseInfo(), &Vt22Module::Download_GetDatabaseInfo, DOWNLOAD_SECONDS);
}

static bool SaysNoDatabase(IResponse& response) {
    return response.Error() == Mailbox::ErrorCode::INVALID_OTHER &&
           response.Extended()->Get(NO_DATABASE_WORD) == NO_DATABASE;
}

void Vt22Module::Download_GetDatabaseInfo(std::shared_ptr<IResponse> response) {
    if (!response)
        System::_throw_argument_null_exception("response");
    if (SaysNoDatabase(*response))
        return StartDownload();
    _databaseInfo = DatabaseInfo::FromMailboxResponse(response);
    if (DatabaseMatches()) {
        // An initialisation that the application has begun meanwhile goes on.
        if (_state != ModuleState_e::INITIALIZING)
            ChangeState(ModuleState_e::DOWNLOAD_COMPLETE);
        return;
    }
    if (_downloaded)
        System::_env_throw(ModuleStateException::Create("Config checksum readback failed"));
    StartDownload();
}

bool Vt22Module::DatabaseMatches() const {
    const unsigned int checksum = BusConfig().Checksum();
    const std::string& description = Database().Description.Value();
    if (description.size() != DESCRIPTION_LENGTH)
        return false;
    try {
        return static_cast<unsigned int>(System::Convert::ToUInt64(description, 16)) == checksum;
    } catch (const std::shared_ptr<System::Exception>&) {
        return false; // a description that is no number is that of another configuration
    }
}

void Vt22Module::StartDownload() {
    Ask(DPVMMessages::StartDatabaseDownload(), &Vt22Module::Download_StartDatabaseDownload, DOWNLOAD_SECONDS);
}

void Vt22Module::Download_StartDatabaseDownload(std::shared_ptr<IResponse> response) {
    MailboxResponseException::ThrowIfError(response);
    const auto queue = System::Collections::Generic::Queue<std::shared_ptr<IRequest>>::Create();
    queue->Enqueue(DPVMMessages::MasterRecordDownload(BusConfig().Master()));
    const auto addresses = BusConfig().SlaveAddresses();
    for (const unsigned char address : *addresses) {
        const auto fragments = DPVMMessages::SlaveRecordDownload(address, BusConfig().Slave(address));
        for (const auto& fragment : *fragments)
            queue->Enqueue(fragment);
    }
    _downloadQueue = queue;
    Ask(DPVMMessages::DeleteDatabase(), &Vt22Module::Download_Next, DOWNLOAD_SECONDS);
}

void Vt22Module::Download_Next(std::shared_ptr<IResponse> response) {
    MailboxResponseException::ThrowIfError(response);
    if (!_downloadQueue)
        System::_throw_null_reference_exception("_downloadQueue");
    if (_downloadQueue->Count() > 0)
        return Ask(_downloadQueue->Dequeue(), &Vt22Module::Download_Next, DOWNLOAD_SECONDS);
    const System::String description =
        System::Convert::ToString(BusConfig().Checksum(), 16).PadLeft(DESCRIPTION_LENGTH, '0');
    Ask(DPVMMessages::EndDatabaseDownload(description), &Vt22Module::Download_EndDataBaseDownload,
        DOWNLOAD_SECONDS);
    _downloadQueue = nullptr;
}

void Vt22Module::Download_EndDataBaseDownload(std::shared_ptr<IResponse> response) {
    MailboxResponseException::ThrowIfError(response);
    _downloaded = true;
    Reset();
}

} // namespace Vesk::Modules::DPVM
