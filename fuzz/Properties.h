// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/system/Array.h"
#include "vesk/system/Exception.h"
#include "vesk/system/io/MemoryStream.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <type_traits>
#include <vector>

/// What the fuzzers hold the code to beside what the sanitizers find.
namespace Fuzz {

using Bytes = std::vector<unsigned char>;

/// Ends the process as a finding.
[[noreturn]] void Fail(const char* property, const std::string& detail);

/// Ends the process as a finding, with `property` and `detail`, unless it `holds`. The detail is a text, a
/// number or an object of the library, and only a finding makes a text of it: a life asks millions of times.
template <class Detail = std::string>
void Require(bool holds, const char* property, const Detail& detail = {}) {
    if (holds)
        return;
    if constexpr (std::is_integral_v<Detail>)
        Fail(property, std::to_string(detail));
    else if constexpr (std::is_base_of_v<System::Object, Detail>)
        Fail(property, detail.ToString().Value());
    else
        Fail(property, detail);
}

/// Calls `callable`, which may throw exceptions of the `Promised` classes and those derived from them, and
/// nothing else. Returns the text of what it threw; empty if it returned.
template <class... Promised, class Callable>
std::string FailureOf(Callable&& callable) {
    try {
        callable();
        return "";
    } catch (const std::shared_ptr<System::Exception>& thrown) {
        const std::string text = thrown->ToString().Value();
        const auto& exception = *thrown;
        Require((dynamic_cast<const Promised*>(&exception) || ...), "only promised exceptions come out",
                text);
        return text;
    }
}

/// For as long as it lives, this thread may not have more than `bytes` in use beside what it had before. What
/// exceeds that is a finding at the place that allocates it.
class AllocationBudget {
public:
    explicit AllocationBudget(std::size_t bytes);
    ~AllocationBudget();
    AllocationBudget(const AllocationBudget&) = delete;
    AllocationBudget& operator=(const AllocationBudget&) = delete;
};

inline std::shared_ptr<System::Array<unsigned char>> ToArray(std::span<const unsigned char> bytes) {
    return System::Array<unsigned char>::Create(Bytes(bytes.begin(), bytes.end()));
}

inline std::shared_ptr<System::IO::MemoryStream> ToStream(std::span<const unsigned char> bytes) {
    return System::IO::MemoryStream::Create(ToArray(bytes));
}

inline Bytes ToBytes(System::IArray<unsigned char>& array) {
    return {array.Data(), array.Data() + array.Count()};
}

/// The bytes that a record writes.
template <class Record>
Bytes Written(const Record& record) {
    const auto stream = System::IO::MemoryStream::Create();
    record.ToStream(stream);
    return ToBytes(*stream->ToArray());
}

/// A file in memory that goes with the object.
class TemporaryFile {
public:
    explicit TemporaryFile(std::span<const unsigned char> content);
    ~TemporaryFile();
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;

    std::string Path() const { return "/proc/self/fd/" + std::to_string(_file); }

private:
    int _file;
};

} // namespace Fuzz

/// The entry of a fuzzer, defined in the file of its input format.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
