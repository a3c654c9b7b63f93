// SPDX-License-Identifier: MIT
#pragma once

/// The one header that an application includes: it has what docs/guide.md uses. It begins with the factories
/// of Vesk::Modules::DPVM::Vt22.

#include "vesk/core/Version.h"
#include "vesk/core/VeskException.h"
#include "vesk/hostinterface/RuntimeConfig.h"
#include "vesk/mailbox/MailboxResponseException.h"
#include "vesk/mailbox/MailboxTimeoutException.h"
#include "vesk/modules/bootloader/TarnFile.h"
#include "vesk/modules/dpvm/Vt22.h"
#include "vesk/modules/dpvm/Vt22FatalEventException.h"
#include "vesk/modules/dpvm/config/BusConfig.h"
#include "vesk/modules/dpvm/config/DdbParser.h"
#include "vesk/system/DateTime.h"
#include "vesk/system/collections/KeyNotFoundException.h"
#include "vesk/system/diagnostics/Trace.h"
#include "vesk/system/io/IOException.h"
