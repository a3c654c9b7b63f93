// SPDX-License-Identifier: MIT
#pragma once

#include "vesk/mailbox/IRequest.h"

namespace Vesk::Modules::DPVM {

/// The VT22's own step of the initialisation, between StartInit and EndInit.
class Vt22Messages {
public:
    /// Tells the module the lengths of the input and output process data, in bytes.
    static std::shared_ptr<Mailbox::IRequest> VelmoInit(unsigned short input1, unsigned short input2,
                                                        unsigned short input3, unsigned short output1,
                                                        unsigned short output2, unsigned short output3);
};

} // namespace Vesk::Modules::DPVM
