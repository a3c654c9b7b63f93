// SPDX-License-Identifier: MIT
#include "vesk/io/Runs.h"

#include <cstring>

namespace Vesk::IO {

namespace {

// A segment of a few bytes is compared and copied in four words, which overlap, before a call has begun.
constexpr std::size_t WORD = sizeof(std::uint64_t);
constexpr std::size_t LEAST = 2 * WORD;
constexpr std::size_t MOST = 4 * WORD;

std::uint64_t WordAt(const unsigned char* bytes) {
    std::uint64_t word;
    std::memcpy(&word, bytes, WORD);
    return word;
}

bool Equal(const unsigned char* left, const unsigned char* right, std::size_t count) {
    if (count < LEAST || count > MOST)
        return std::memcmp(left, right, count) == 0;
    const std::size_t last = count - WORD;
    return ((WordAt(left) ^ WordAt(right)) | (WordAt(left + WORD) ^ WordAt(right + WORD)) |
            (WordAt(left + last - WORD) ^ WordAt(right + last - WORD)) |
            (WordAt(left + last) ^ WordAt(right + last))) == 0;
}

void Copy(unsigned char* to, const unsigned char* from, std::size_t count) {
    if (count < LEAST || count > MOST) {
        std::memcpy(to, from, count);
        return;
    }
    const std::size_t last = count - WORD;
    std::memcpy(to, from, WORD);
    std::memcpy(to + WORD, from + WORD, WORD);
    std::memcpy(to + last - WORD, from + last - WORD, WORD);
    std::memcpy(to + last, from + last, WORD);
}

} // namespace

void Runs::Add(unsigned short dpRamOffset, unsigned short offset, System::IArray<unsigned char>& array,
               int arrayOffset, int count) {
    const std::size_t segment = _segments++;
    if (count == 0) // nothing to move, wherever it is
        return;
    const bool neighbour = !_runs.empty() && _runs.back().dpRamOffset + _runs.back().count == dpRamOffset &&
                           _runs.back().firstSegment + _runs.back().segmentCount == segment;
    if (!neighbour)
        _runs.push_back({dpRamOffset, offset, 0, _pieces.size(), 0, segment, 0});
    Run& run = _runs.back();
    run.count += count;
    ++run.segmentCount;
    const auto first = static_cast<unsigned int>(arrayOffset);
    if (neighbour && _pieces.back().array == &array &&
        std::uint64_t{_pieces.back().arrayOffset} + _pieces.back().count == first) {
        _pieces.back().count += static_cast<unsigned int>(count);
        return;
    }
    _pieces.push_back({&array, nullptr, first, static_cast<unsigned int>(count), offset});
    ++run.pieceCount;
}

Runs::Found Runs::Locate(const unsigned char* image) {
    bool equal = true;
    for (Piece& piece : _pieces) {
        if (!piece.Locate())
            return Found::OUTSIDE;
        equal = equal && Equal(piece.bytes, image + piece.offset, piece.count);
    }
    return equal ? Found::SAME : Found::CHANGED;
}

void Runs::Write(HostInterface::IHostInterface& dpRam,
                 const std::shared_ptr<System::IArray<unsigned char>>& image) {
    unsigned char* const bytes = image->Data();
    for (const Run& run : _runs) {
        for (const Piece& piece : PiecesOf(run))
            Copy(bytes + piece.offset, piece.bytes, piece.count);
        dpRam.Write(run.dpRamOffset, image, run.offset, run.count);
    }
}

void Runs::Collect(unsigned char* image) {
    for (Piece& piece : _pieces)
        if (piece.Locate())
            Copy(image + piece.offset, piece.bytes, piece.count);
}

void Runs::WriteImage(HostInterface::IHostInterface& dpRam,
                      const std::shared_ptr<System::IArray<unsigned char>>& image) const {
    for (const Run& run : _runs)
        dpRam.Write(run.dpRamOffset, image, run.offset, run.count);
}

bool Runs::Read(const Run& run, HostInterface::IHostInterface& dpRam,
                const std::shared_ptr<System::IArray<unsigned char>>& image) {
    for (Piece& piece : PiecesOf(run))
        if (!piece.Locate())
            return false;
    dpRam.Read(run.dpRamOffset, image, run.offset, run.count);
    const unsigned char* const bytes = image->Data();
    for (const Piece& piece : PiecesOf(run))
        Copy(piece.bytes, bytes + piece.offset, piece.count);
    return true;
}

} // namespace Vesk::IO
