// Queue and stack of caller's values.
#include <zrclb/queue.h>

#include <cstddef>

#include <gtest/gtest.h>

#include "frame/counted_allocation.h"
#include "frame/refused_heap.h"

namespace {

using zr::frame::heap_block_count;

TEST(Queue, FieldsStandInTheirOrder) {
    EXPECT_EQ(offsetof(queue, head), 0u);
    EXPECT_EQ(offsetof(queue, tail), sizeof(void *));
    EXPECT_EQ(offsetof(stack, top), 0u);
    EXPECT_EQ(offsetof(queue_node, data), 0u);
    EXPECT_EQ(offsetof(queue_node, next), sizeof(void *));
    queue *q = queue_open();
    EXPECT_EQ(q->head, nullptr);
    queue_post(q, 4);
    EXPECT_EQ(q->head, q->tail);
    EXPECT_EQ(q->head->data, 4u);
    EXPECT_EQ(q->head->next, nullptr);
    queue_close(q);
    stack *s = stack_open();
    EXPECT_EQ(s->top, nullptr);
    stack_push(s, 4);
    EXPECT_EQ(s->top->data, 4u);
    EXPECT_EQ(s->top->next, nullptr);
    stack_close(s);
}

TEST(Queue, ValuesComeOutInTheOrderOfPosting) {
    queue *q = queue_open();
    ASSERT_NE(q, nullptr);
    queue_post(q, 11);
    queue_post(q, 12);
    queue_post(q, 13);
    EXPECT_EQ(queue_get(q), 11u);
    EXPECT_EQ(queue_get(q), 12u);
    EXPECT_EQ(queue_get(q), 13u);
    EXPECT_EQ(queue_get(q), 0u);
    queue_close(q);
}

TEST(Queue, PostAfterEmptyBeginsAfresh) {
    queue *q = queue_open();
    queue_post(q, 1);
    EXPECT_EQ(queue_get(q), 1u);
    queue_post(q, 2);
    queue_post(q, 3);
    EXPECT_EQ(queue_get(q), 2u);
    EXPECT_EQ(queue_get(q), 3u);
    EXPECT_EQ(queue_get(q), 0u);
    queue_close(q);
}

TEST(Queue, LookKeepsTheValue) {
    queue *q = queue_open();
    EXPECT_EQ(queue_look(q), 0u);
    queue_post(q, 7);
    queue_post(q, 8);
    EXPECT_EQ(queue_look(q), 7u);
    EXPECT_EQ(queue_look(q), 7u);
    EXPECT_EQ(queue_get(q), 7u);
    EXPECT_EQ(queue_look(q), 8u);
    queue_close(q);
}

TEST(Queue, ClearLeavesAUsableQueue) {
    queue *q = queue_open();
    zr_long before = heap_block_count;
    queue_post(q, 1);
    queue_post(q, 2);
    queue_clear(q);
    EXPECT_EQ(heap_block_count, before);
    EXPECT_EQ(queue_look(q), 0u);
    EXPECT_EQ(queue_get(q), 0u);
    queue_clear(q);
    queue_post(q, 3);
    EXPECT_EQ(queue_get(q), 3u);
    queue_close(q);
}

TEST(Queue, ZeroIsStoredThoughItReadsAsEmpty) {
    queue *q = queue_open();
    queue_post(q, 0);
    queue_post(q, 5);
    EXPECT_EQ(queue_get(q), 0u);
    EXPECT_EQ(queue_get(q), 5u);
    queue_close(q);
}

TEST(Queue, ValueIsAsWideAsAPointer) {
    queue *q = queue_open();
    queue_post(q, reinterpret_cast<zr_value>(q));
    queue_post(q, UINTPTR_MAX);
    EXPECT_EQ(queue_get(q), reinterpret_cast<zr_value>(q));
    EXPECT_EQ(queue_get(q), UINTPTR_MAX);
    queue_close(q);
}

TEST(Queue, NodesAreCountedAndGivenBack) {
    zr_long before = heap_block_count;
    queue *q = queue_open();
    EXPECT_EQ(heap_block_count, before + 1);
    queue_post(q, 1);
    queue_post(q, 2);
    EXPECT_EQ(heap_block_count, before + 3);
    queue_get(q);
    EXPECT_EQ(heap_block_count, before + 2);
    queue_close(q);
    EXPECT_EQ(heap_block_count, before);
}

TEST(Queue, MillionValuesPassInOrder) {
    queue *q = queue_open();
    for (zr_value i = 1; i <= 1000000; ++i) {
        queue_post(q, i);
    }
    zr_value wrong = 0;
    for (zr_value i = 1; i <= 1000000; ++i) {
        wrong += queue_get(q) != i;
    }
    EXPECT_EQ(wrong, 0u);
    queue_close(q);
}

TEST(Queue, NullIsTolerated) {
    queue_close(nullptr);
    queue_post(nullptr, 1);
    queue_clear(nullptr);
    EXPECT_EQ(queue_get(nullptr), 0u);
    EXPECT_EQ(queue_look(nullptr), 0u);
}

TEST(Stack, ValuesComeOffInReverse) {
    stack *s = stack_open();
    ASSERT_NE(s, nullptr);
    EXPECT_EQ(stack_push(s, 21), s);
    EXPECT_EQ(stack_push(s, 22), s);
    EXPECT_EQ(stack_pop(s), 22u);
    EXPECT_EQ(stack_pop(s), 21u);
    EXPECT_EQ(stack_pop(s), 0u);
    stack_close(s);
}

TEST(Stack, GetKeepsTheValue) {
    stack *s = stack_open();
    EXPECT_EQ(stack_get(s), 0u);
    stack_push(s, 5);
    EXPECT_EQ(stack_get(s), 5u);
    EXPECT_EQ(stack_get(s), 5u);
    EXPECT_EQ(stack_pop(s), 5u);
    EXPECT_EQ(stack_get(s), 0u);
    stack_close(s);
}

TEST(Stack, ClosingGivesAllNodesBack) {
    zr_long before = heap_block_count;
    stack *s = stack_open();
    stack_push(s, 1);
    stack_push(s, 2);
    EXPECT_EQ(heap_block_count, before + 3);
    stack_get(s);
    EXPECT_EQ(heap_block_count, before + 3);
    stack_pop(s);
    EXPECT_EQ(heap_block_count, before + 2);
    stack_push(s, 3);
    stack_close(s);
    EXPECT_EQ(heap_block_count, before);
}

TEST(Stack, ZeroIsStoredThoughItReadsAsEmpty) {
    stack *s = stack_open();
    EXPECT_EQ(stack_push(s, 5), s);
    EXPECT_EQ(stack_push(s, 0), s);
    EXPECT_EQ(stack_get(s), 0u);
    EXPECT_EQ(stack_pop(s), 0u);
    EXPECT_EQ(stack_pop(s), 5u);
    stack_close(s);
}

TEST(Stack, ValueIsAsWideAsAPointer) {
    stack *s = stack_open();
    stack_push(s, UINTPTR_MAX);
    EXPECT_EQ(stack_pop(s), UINTPTR_MAX);
    stack_close(s);
}

TEST(Stack, NullIsTolerated) {
    stack_close(nullptr);
    EXPECT_EQ(stack_push(nullptr, 1), nullptr);
    EXPECT_EQ(stack_pop(nullptr), 0u);
    EXPECT_EQ(stack_get(nullptr), 0u);
}

TEST(Stack, WithoutMemoryNothingIsAddedNorLost) {
    stack *s = stack_open();
    queue *q = queue_open();
    stack_push(s, 1);
    queue_post(q, 1);
    {
        const zr::test::HeapRefusal refusal(0, true);
        EXPECT_EQ(stack_push(s, 2), nullptr);
        queue_post(q, 2);
        EXPECT_EQ(stack_open(), nullptr);
        EXPECT_EQ(queue_open(), nullptr);
    }
    EXPECT_EQ(stack_pop(s), 1u);
    EXPECT_EQ(stack_pop(s), 0u);
    EXPECT_EQ(queue_get(q), 1u);
    EXPECT_EQ(queue_get(q), 0u);
    stack_close(s);
    queue_close(q);
}

} // namespace
