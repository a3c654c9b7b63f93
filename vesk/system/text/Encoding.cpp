// SPDX-License-Identifier: MIT
#include "vesk/system/text/Encoding.h"

namespace System::Text::Encoding::ASCII {

String GetString(const std::shared_ptr<IArray<unsigned char>>& bytes, int offset, int count) {
    CheckRange(bytes.get(), offset, count);
    return std::string(bytes->Data() + offset, bytes->Data() + offset + count);
}

std::shared_ptr<IArray<unsigned char>> GetBytes(const String& text) {
    const std::string& characters = text.Value();
    return Array<unsigned char>::Create(std::vector<unsigned char>(characters.begin(), characters.end()));
}

} // namespace System::Text::Encoding::ASCII
