#include "events/value_queue.h"

#include "support.h"

namespace orlo {
namespace {

using test::output_of;

class ValueQueue : public testing::Test {
  protected:
    void TearDown() override { FreeQNodes(queue); }

    void store(std::int32_t code, float value) { ASSERT_TRUE(StoreInQ(queue, code, value)); }

    // "value/code" of each node, forward; the links backward must agree
    std::string text() const
    {
        std::string forward;
        if (queue == nullptr)
            return forward;
        const QueueNode *node = queue->next;
        do {
            EXPECT_EQ(node, node->next->prev);
            EXPECT_EQ(node, node->prev->next);
            forward += std::to_string(static_cast<int>(node->value)) + "/" + std::to_string(node->code) + " ";
            node = node->next;
        } while (node != queue->next);
        return forward;
    }

    QueueNode *queue = nullptr;
};

TEST_F(ValueQueue, KeepsItsValuesInOrder)
{
    store(0, 1.0F);
    EXPECT_EQ("1/0 ", text());
    store(0, 2.0F);
    store(1, 3.0F);
    EXPECT_EQ("1/0 2/0 3/1 ", text());
    EXPECT_EQ(3.0F, queue->value); // held by its last node
}

TEST_F(ValueQueue, AChordMemberCannotBegin)
{
    EXPECT_FALSE(StoreInQ(queue, 1, 5.0F));
    EXPECT_EQ(nullptr, queue);
}

TEST_F(ValueQueue, TheLastEventIsRepeated)
{
    store(0, 1.0F);
    store(0, 2.0F);
    EXPECT_TRUE(DoQEvent(queue));
    EXPECT_EQ("1/0 2/0 2/0 ", text());
}

TEST_F(ValueQueue, AChordIsRepeatedWhole)
{
    store(0, 1.0F);
    store(0, 2.0F);
    store(1, 3.0F);
    store(1, 4.0F);
    EXPECT_TRUE(DoQEvent(queue));
    EXPECT_EQ("1/0 2/0 3/1 4/1 2/0 3/1 4/1 ", text());
    EXPECT_TRUE(DoQEvent(queue));
    EXPECT_EQ("1/0 2/0 3/1 4/1 2/0 3/1 4/1 2/0 3/1 4/1 ", text());
}

TEST_F(ValueQueue, AChordAtTheHeadIsRepeated)
{
    store(0, 1.0F);
    store(1, 2.0F);
    EXPECT_TRUE(DoQEvent(queue));
    EXPECT_EQ("1/0 2/1 1/0 2/1 ", text());
}

TEST_F(ValueQueue, NothingCannotBeRepeated)
{
    EXPECT_FALSE(DoQEvent(queue));
    EXPECT_EQ(nullptr, queue);
}

TEST_F(ValueQueue, IsEmptyWhenItIsFreed)
{
    store(0, 1.0F);
    FreeQNodes(queue);
    EXPECT_EQ(nullptr, queue);
    store(0, 1.0F);
    store(1, 2.0F);
    store(0, 3.0F);
    FreeQNodes(queue);
    EXPECT_EQ(nullptr, queue);
    FreeQNodes(queue);
    EXPECT_EQ(nullptr, queue);
}

TEST_F(ValueQueue, IsListedForwardOrBackward)
{
    store(0, 1.5F);
    store(1, -2.0F);
    store(0, 3.0F);
    EXPECT_EQ("\n1.500000 0\n-2.000000 1\n3.000000 0", output_of([&] { TraverseQ(queue, 0); }));
    EXPECT_EQ("\n3.000000 0\n-2.000000 1\n1.500000 0", output_of([&] { TraverseQ(queue, 1); }));
    EXPECT_EQ("\n3.000000 0\n-2.000000 1\n1.500000 0", output_of([&] { TraverseQ(queue, -1); }));
}

TEST_F(ValueQueue, AnEmptyOneIsListedAsEmpty)
{
    EXPECT_EQ("empty", output_of([&] { TraverseQ(queue, 0); }));
    EXPECT_EQ("empty", output_of([&] { TraverseQ(queue, 1); }));
}

} // namespace
} // namespace orlo
