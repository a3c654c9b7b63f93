// SPDX-License-Identifier: MIT
#include "tests/modules/dpvm/config/RecordStreams.h"
#include "tests/support/ExpectFailure.h"
#include "tests/support/Values.h"

#include "vesk/core/VeskException.h"
#include "vesk/modules/dpvm/config/Block.h"

using namespace Vesk;
using namespace Vesk::Modules::DPVM::Config;

// Records only ever hold what fits, so the writer's own checks are met here.
class BlockWriterTest : public testing::Test {
protected:
    void ExpectRefused(const char* message, BlockLength limits, const char* text, std::vector<int> written) {
        const auto stream = System::IO::MemoryStream::Create();
        BlockWriter block(stream, limits);
        block.Text("text", text, 3);
        ExpectFailure<ConfigException>(message, [&] { block.Finish(); });
        EXPECT_EQ(Values(stream->ToArray()), written);
        EXPECT_EQ(stream->Position(), stream->Length());
    }
};

TEST_F(BlockWriterTest, RefusesALengthThatTheBlockMayNotHaveAndLeavesItsFieldZero) {
    ExpectRefused("written length (5) != expected (4)", BlockLength::Exactly(4), "AB", {0, 0, 'A', 'B', 0});
    ExpectRefused("written length (5) not in range [6 : 9]", BlockLength::Between(6, 9), "", {0, 0, 0, 0, 0});
    ExpectRefused("written length (5) not in range [2 : 4]", BlockLength::Between(2, 4), "ABC",
                  {0, 0, 'A', 'B', 'C'});
}

TEST_F(BlockWriterTest, WritesATextThatIsTooLongWhole) {
    ExpectRefused("written length (6) != expected (5)", BlockLength::Exactly(5), "ABCD",
                  {0, 0, 'A', 'B', 'C', 'D'});
}

TEST_F(BlockWriterTest, PadsToAnEvenPlaceFromTheBlocksStart) {
    const auto stream = StreamOf(Bytes(8, 0xEE));
    stream->Seek(1, System::IO::SeekOrigin::BEGIN);
    BlockWriter block(stream, BlockLength::Exactly(4));
    block.Pad();
    block.Field("", static_cast<unsigned char>(1));
    block.Pad();
    block.Field("", static_cast<unsigned char>(2));
    block.Finish();
    EXPECT_EQ(Values(stream->ToArray()), (std::vector<int>{0xEE, 0, 4, 1, 0, 2, 0xEE, 0xEE}));
    EXPECT_EQ(stream->Position(), 6);
}
