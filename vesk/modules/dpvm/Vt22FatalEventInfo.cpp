// SPDX-License-Identifier: MIT
#include "vesk/modules/dpvm/Vt22FatalEventInfo.h"

#include "vesk/core/FormatArray.h"
#include "vesk/system/text/StringBuilder.h"

namespace Vesk::Modules::DPVM {

std::shared_ptr<Vt22FatalEventInfo>
Vt22FatalEventInfo::Create(unsigned short errorCode, unsigned short errorCause, unsigned short taskId,
                           std::shared_ptr<System::TimeSpan> timeStamp,
                           std::shared_ptr<System::IArray<unsigned char>> additionalInfo,
                           unsigned short sourceLine, System::String sourceFile) {
    if (!timeStamp)
        System::_throw_argument_null_exception("timeStamp");
    if (!additionalInfo)
        System::_throw_argument_null_exception("additionalInfo");
    if (sourceFile.IsNull())
        System::_throw_argument_null_exception("sourceFile");
    return System::MakeShared<Vt22FatalEventInfo>(errorCode, errorCause, taskId, std::move(timeStamp),
                                                  std::move(additionalInfo), sourceLine,
                                                  std::move(sourceFile));
}

Vt22FatalEventInfo::Vt22FatalEventInfo(unsigned short errorCode, unsigned short errorCause,
                                       unsigned short taskId, std::shared_ptr<System::TimeSpan> timeStamp,
                                       std::shared_ptr<System::IArray<unsigned char>> additionalInfo,
                                       unsigned short sourceLine, System::String sourceFile)
    : _errorCode(errorCode),
      _errorCause(errorCause),
      _taskId(taskId),
      _timeStamp(std::move(timeStamp)),
      _additionalInfo(std::move(additionalInfo)),
      _sourceLine(sourceLine),
      _sourceFile(std::move(sourceFile)) {}

System::String Vt22FatalEventInfo::ToString() const {
    System::Text::StringBuilder text;
    text.Append("ErrorCode: 0x").AppendHex(_errorCode).AppendLine();
    text.Append("ErrorCause: 0x").AppendHex(_errorCause).AppendLine();
    text.Append("TaskId: 0x").AppendHex(_taskId).AppendLine();
    text.Append("TimeStamp: ").AppendLine(_timeStamp->ToString());
    text.Append("AdditionalInfo: ")
        .AppendLine(FormatArray(_additionalInfo, 0, _additionalInfo->Count(), nullptr, 2, 16));
    text.Append("SourceLine: ").Append(_sourceLine).AppendLine();
    text.Append("SourceFile: ").AppendLine(_sourceFile);
    return text.ToString();
}

} // namespace Vesk::Modules::DPVM
