// SPDX-License-Identifier: MIT
#pragma once

/// The one header that an application includes. It begins with the factories of Vesk::Modules::DPVM::Vt22.

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
