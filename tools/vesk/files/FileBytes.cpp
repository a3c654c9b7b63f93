// SPDX-License-Identifier: MIT
#include "tools/vesk/files/FileBytes.h"

#include "tools/vesk/explain/Advice.h"
#include "vesk/system/Array.h"
#include "vesk/system/io/FileStream.h"

namespace VeskTool {

std::vector<unsigned char> ReadFile(const std::string& path,
                                    const std::function<void(std::int64_t length)>& check) {
    const auto file =
        System::IO::FileStream::Create(path, System::IO::FileMode::OPEN, System::IO::FileAccess::READ);
    check(file->Length());
    const auto content = System::Array<unsigned char>::Create(static_cast<int>(file->Length()));
    const int count = file->Read(content, 0, content->Count());
    return {content->Data(), content->Data() + count};
}

Failure FileFailure(const std::string& path, const std::exception& exception,
                    const std::function<std::string()>& hint) {
    const std::string what = OneLine(exception);
    const bool named = what.find(path) != std::string::npos;
    return Failure(named ? what : path + ": " + what + hint(), AdviceFor(exception).next, TypeOf(exception));
}

} // namespace VeskTool
