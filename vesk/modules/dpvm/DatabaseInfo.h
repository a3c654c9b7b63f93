// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/mailbox/IResponse.h"

namespace Vesk::Modules::DPVM {

/// What the module says about the configuration database in its flash. Lengths are bytes.
class DatabaseInfo : public System::Object {
public:
    /// Decodes the response to DPVMMessages::GetDatabaseInfo. ArgumentNullException without a response,
    /// MailboxResponseException for one with an error.
    static std::shared_ptr<DatabaseInfo>
    FromMailboxResponse(const std::shared_ptr<Mailbox::IResponse>& response);

    System::String ToString() const override;

    /// The data of all slaves together.
    const unsigned short TotalOutputLength;
    const unsigned short TotalInputLength;
    /// What the process data areas have to hold.
    const unsigned short InitOutputLength;
    const unsigned short InitInputLength;
    const unsigned char NoOfSlaves;
    /// The text that the last DPVMMessages::EndDatabaseDownload stored.
    const System::String Description;

protected:
    DatabaseInfo(System::IArray<unsigned short>& extended, System::String description);
};

} // namespace Vesk::Modules::DPVM
