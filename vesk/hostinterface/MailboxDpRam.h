// SPDX-License-Identifier: MIT
#pragma once

/// The two mailbox areas, laid out alike in the master and in the bootloader; only their place differs.
namespace Vesk::HostInterface::MailboxDpRam {

/// Bytes of the header at the start of an area.
inline constexpr unsigned short HEADER_SIZE = 32;
/// Bytes of the data that follow the header, at the most.
inline constexpr unsigned short MAX_DATA_SIZE = 256;
/// Bytes of one area: mailbox-in (host to module) or mailbox-out (module to host).
inline constexpr unsigned short AREA_SIZE = HEADER_SIZE + MAX_DATA_SIZE;

/// 16-bit words of the header's extended field.
inline constexpr int EXTENDED_WORDS = 8;

static_assert(AREA_SIZE == 0x120);

} // namespace Vesk::HostInterface::MailboxDpRam
