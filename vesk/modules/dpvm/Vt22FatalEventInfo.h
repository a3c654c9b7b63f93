// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/modules/dpvm/IVt22FatalEventInfo.h"

namespace Vesk::Modules::DPVM {

/// An immutable record of a fatal event.
class Vt22FatalEventInfo : public IVt22FatalEventInfo {
public:
    /// ArgumentNullException naming "timeStamp", "additionalInfo" or "sourceFile" when one of them is null.
    static std::shared_ptr<Vt22FatalEventInfo>
    Create(unsigned short errorCode, unsigned short errorCause, unsigned short taskId,
           std::shared_ptr<System::TimeSpan> timeStamp,
           std::shared_ptr<System::IArray<unsigned char>> additionalInfo, unsigned short sourceLine,
           System::String sourceFile);

    /// Seven lines: each field, ": " and its value.
    System::String ToString() const override;

    unsigned short ErrorCode() override { return _errorCode; }

    unsigned short ErrorCause() override { return _errorCause; }

    unsigned short TaskId() override { return _taskId; }

    std::shared_ptr<System::TimeSpan> TimeStamp() override { return _timeStamp; }

    std::shared_ptr<System::IArray<unsigned char>> AdditionalInfo() override { return _additionalInfo; }

    unsigned short SourceLine() override { return _sourceLine; }

    System::String SourceFile() override { return _sourceFile; }

protected:
    Vt22FatalEventInfo(unsigned short errorCode, unsigned short errorCause, unsigned short taskId,
                       std::shared_ptr<System::TimeSpan> timeStamp,
                       std::shared_ptr<System::IArray<unsigned char>> additionalInfo,
                       unsigned short sourceLine, System::String sourceFile);

private:
    unsigned short _errorCode;
    unsigned short _errorCause;
    unsigned short _taskId;
    std::shared_ptr<System::TimeSpan> _timeStamp;
    std::shared_ptr<System::IArray<unsigned char>> _additionalInfo;
    unsigned short _sourceLine;
    System::String _sourceFile;
};

} // namespace Vesk::Modules::DPVM
