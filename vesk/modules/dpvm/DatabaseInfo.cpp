// SPDX-License-Identifier: MIT
#include "vesk/modules/dpvm/DatabaseInfo.h"

#include "vesk/mailbox/MailboxResponseException.h"
#include "vesk/system/text/Encoding.h"
#include "vesk/system/text/StringBuilder.h"

#include <algorithm>

namespace Vesk::Modules::DPVM {

using System::IArray;
using System::String;

/// The text ends at a zero byte or where the flash was never written.
static String DescriptionIn(const std::shared_ptr<IArray<unsigned char>>& data) {
    const unsigned char* const begin = data->Data();
    const unsigned char* const end =
        std::find_if(begin, begin + data->Count(), [](unsigned char c) { return c == 0x00 || c == 0xFF; });
    return System::Text::Encoding::ASCII::GetString(data, 0, static_cast<int>(end - begin));
}

std::shared_ptr<DatabaseInfo>
DatabaseInfo::FromMailboxResponse(const std::shared_ptr<Mailbox::IResponse>& response) {
    if (!response)
        System::_throw_argument_null_exception("response");
    if (response->Error() != Mailbox::ErrorCode::NO_ERROR)
        System::_env_throw(Mailbox::MailboxResponseException::Create(response));
    return System::MakeShared<DatabaseInfo>(*response->Extended(), DescriptionIn(response->Data()));
}

DatabaseInfo::DatabaseInfo(IArray<unsigned short>& extended, String description)
    : TotalOutputLength(extended.Get(0)),
      TotalInputLength(extended.Get(1)),
      InitOutputLength(extended.Get(2)),
      InitInputLength(extended.Get(3)),
      NoOfSlaves(static_cast<unsigned char>(extended.Get(4) >> 8)),
      Description(std::move(description)) {}

String DatabaseInfo::ToString() const {
    System::Text::StringBuilder text;
    text.AppendLine("DatabaseInfo");
    text.Append("TotalOutputLength: ").Append(TotalOutputLength).AppendLine();
    text.Append("TotalInputLength: ").Append(TotalInputLength).AppendLine();
    text.Append("InitOutputLength: ").Append(InitOutputLength).AppendLine();
    text.Append("InitInputLength: ").Append(InitInputLength).AppendLine();
    text.Append("NoOfSlaves: ").Append(NoOfSlaves).AppendLine();
    text.Append("Description: ").AppendLine(Description);
    return text.ToString();
}

} // namespace Vesk::Modules::DPVM
