#include "events/arena.h"

#include "events/event_list.h"

#include <cstdint>
#include <cstring>
#include <gtest/gtest.h>
#include <vector>

namespace orlo {
namespace {

class Arena : public testing::Test {
  protected:
    void TearDown() override
    {
        give_back_pieces();
        ARENA_CHUNK = chunk;
    }

    const std::size_t chunk = ARENA_CHUNK;
};

TEST_F(Arena, PiecesLieSideBySide)
{
    const auto *first  = static_cast<char *>(take_piece(40));
    const auto *second = static_cast<char *>(take_piece(8));
    ASSERT_NE(nullptr, first);
    EXPECT_EQ(first + 40, second);
    EXPECT_EQ(first + 48, take_piece(8));
}

TEST_F(Arena, PiecesAreAlignedForAPointer)
{
    for (const std::size_t bytes : {1U, 7U, 8U, 9U, 44U})
        EXPECT_EQ(0U, reinterpret_cast<std::uintptr_t>(take_piece(bytes)) % alignof(void *)) << bytes;
}

TEST_F(Arena, PiecesKeepWhatIsPutIntoThemAcrossChunks)
{
    ARENA_CHUNK = 256;
    std::vector<char *> pieces;
    for (int i = 0; i < 100; ++i) {
        pieces.push_back(static_cast<char *>(take_piece(40)));
        ASSERT_NE(nullptr, pieces.back());
        std::memset(pieces.back(), i, 40);
    }
    for (int i = 0; i < 100; ++i)
        for (int byte = 0; byte < 40; ++byte)
            EXPECT_EQ(i, pieces[static_cast<std::size_t>(i)][byte]);
}

TEST_F(Arena, APieceMayBeLongerThanAChunk)
{
    ARENA_CHUNK = 64;
    void *piece = take_piece(1000);
    ASSERT_NE(nullptr, piece);
    std::memset(piece, 1, 1000);
    ASSERT_NE(nullptr, take_piece(8));
}

TEST_F(Arena, MayBeGivenBackEmptyAndTakenFromAgain)
{
    give_back_pieces();
    give_back_pieces();
    ASSERT_NE(nullptr, take_piece(8));
    give_back_pieces();
    EXPECT_NE(nullptr, take_piece(8));
}

TEST_F(Arena, AnEventHasItsValuesBehindIt)
{
    const Event *event = GetListNode(6);
    ASSERT_NE(nullptr, event);
    EXPECT_EQ(static_cast<const void *>(event + 1), event->pf);
    EXPECT_EQ(static_cast<const void *>(event->pf + 4), GetListNode(6)); // three values, and what aligns the next event
}

TEST_F(Arena, AnEventHasRoomForAVelocityAndAKey)
{
    const Event *event = GetListNode(3);
    ASSERT_NE(nullptr, event);
    EXPECT_EQ(0.0F, event->pf[0]);
    EXPECT_EQ(0.0F, event->pf[1]);
    EXPECT_EQ(static_cast<const void *>(event->pf + 2), GetListNode(3));
}

TEST_F(Arena, AnEventOfUsedMemoryIsAllZero)
{
    ARENA_CHUNK = 4096;
    std::memset(take_piece(4000), 0xFF, 4000);
    give_back_pieces();
    const Event *event = GetListNode(128);
    ASSERT_NE(nullptr, event);
    EXPECT_EQ(0, event->code);
    EXPECT_EQ(0.0F, event->dur);
    for (int i = 0; i < 125; ++i)
        EXPECT_EQ(0.0F, event->pf[i]) << i;
}

} // namespace
} // namespace orlo
