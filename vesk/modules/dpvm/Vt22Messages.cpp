// SPDX-License-Identifier: MIT
#include "vesk/modules/dpvm/Vt22Messages.h"

#include "vesk/mailbox/RequestBuilder.h"
#include "vesk/system/io/BinaryWriter.h"
#include "vesk/system/io/MemoryStream.h"

namespace Vesk::Modules::DPVM {

std::shared_ptr<Mailbox::IRequest> Vt22Messages::VelmoInit(unsigned short input1, unsigned short input2,
                                                           unsigned short input3, unsigned short output1,
                                                           unsigned short output2, unsigned short output3) {
    const auto stream = System::IO::MemoryStream::Create();
    const auto writer = System::IO::BinaryWriter::Create(stream);
    for (const unsigned short length : {input1, input2, input3, output1, output2, output3})
        writer->WriteUInt16(length);
    return Mailbox::RequestBuilder::Create(Mailbox::Commands::VELMO_INIT)->Data(stream->ToArray())->Build();
}

} // namespace Vesk::Modules::DPVM
