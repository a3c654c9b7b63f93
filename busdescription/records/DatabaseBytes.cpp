// SPDX-License-Identifier: MIT
#include "busdescription/records/DatabaseBytes.h"

#include "vesk/hostinterface/MailboxDpRam.h"
#include "vesk/mailbox/Header.h"
#include "vesk/mailbox/IRequest.h"
#include "vesk/modules/dpvm/DPVMMessages.h"
#include "vesk/system/Convert.h"

namespace BusDescription {

namespace MailboxDpRam = Vesk::HostInterface::MailboxDpRam;
using Vesk::Mailbox::ErrorCode;
using Vesk::Mailbox::Header;
using Vesk::Modules::DPVM::DPVMMessages;

/// Appends a recorded message: its header and a whole data area.
static void AppendMessage(Bytes& file, Vesk::Mailbox::IRequest& request) {
    const auto data = request.Data();
    const auto header = Header::Create(0, request.Type(), ErrorCode::NO_ERROR, true, request.Command(),
                                       static_cast<unsigned short>(data->Count()), request.TotalFrameCount(),
                                       request.FrameNumber(), request.Offset(), request.Extended());
    const auto area = System::Array<unsigned char>::Create(MailboxDpRam::AREA_SIZE);
    header->ToArray(area, 0);
    // A recorded header has its numbers least significant byte first. All are words: the offset, the only
    // longer one, is 0.
    for (int at = 0; at < MailboxDpRam::HEADER_SIZE; at += 2)
        std::swap(area->Data()[at], area->Data()[at + 1]);
    std::copy(data->begin(), data->end(), area->begin() + MailboxDpRam::HEADER_SIZE);
    file.insert(file.end(), area->begin(), area->end());
}

Bytes DatabaseBytes(Vesk::Modules::DPVM::Config::IBusConfig& config) {
    const std::string line = System::Convert::ToString(config.Checksum(), 16).PadLeft(8, '0').Value() + "\n";
    Bytes file(line.begin(), line.end());
    AppendMessage(file, *DPVMMessages::MasterRecordDownload(config.Master()));
    const auto addresses = config.SlaveAddresses();
    for (int i = 0; i < addresses->Count(); ++i) {
        const auto fragments =
            DPVMMessages::SlaveRecordDownload(addresses->Get(i), config.Slave(addresses->Get(i)));
        for (int fragment = 0; fragment < fragments->Count(); ++fragment)
            AppendMessage(file, *fragments->Get(fragment));
    }
    return file;
}

} // namespace BusDescription
