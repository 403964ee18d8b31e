/* Queue and stack of caller's values. C17 and C++20.
 *
 * Values are the caller's and are handed back as they were given; 0 means empty in the results, so a stored 0 cannot
 * be told from an empty container. Null containers are tolerated: nothing happens, and the result is 0 or null.
 * Every call but closing and clearing takes constant time. Threads: a container belongs to one thread at a time.
 */
#ifndef ZRCLB_QUEUE_H
#define ZRCLB_QUEUE_H

#include <zrclb/types.h>

#ifdef __cplusplus
extern "C" {
#endif

/* A value in a queue or a stack; for the library's own use. */
typedef struct queue_node {
    zr_value data;
    struct queue_node *next;
} queue_node;

/* First in, first out. */
typedef struct queue {
    queue_node *head; /* null in an empty queue */
    queue_node *tail; /* has a meaning only while head is not null */
} queue;

/* Last in, first out. */
typedef struct stack {
    queue_node *top; /* null in an empty stack */
} stack;

/* A new, empty queue, which queue_close ends; null without memory. */
ZR_API queue *queue_open(void) ZR_NOEXCEPT;

/* Frees the queue and its nodes, not what the values stand for. */
ZR_API void queue_close(queue *q) ZR_NOEXCEPT;

/* Appends data. Without memory the queue stays as it was. */
ZR_API void queue_post(queue *q, zr_value data) ZR_NOEXCEPT;

/* Removes the first value and gives it; 0 if there is none. */
ZR_API zr_value queue_get(queue *q) ZR_NOEXCEPT;

/* Gives the first value and keeps it; 0 if there is none. */
ZR_API zr_value queue_look(queue *q) ZR_NOEXCEPT;

/* Removes all values. */
ZR_API void queue_clear(queue *q) ZR_NOEXCEPT;

/* A new, empty stack, which stack_close ends; null without memory. */
ZR_API stack *stack_open(void) ZR_NOEXCEPT;

/* Frees the stack and its nodes, not what the values stand for. */
ZR_API void stack_close(stack *s) ZR_NOEXCEPT;

/* Puts data on top and gives the stack; null, the stack as it was, without memory. */
ZR_API stack *stack_push(stack *s, zr_value data) ZR_NOEXCEPT;

/* Removes the value on top and gives it; 0 if there is none. */
ZR_API zr_value stack_pop(stack *s) ZR_NOEXCEPT;

/* Gives the value on top and keeps it; 0 if there is none. */
ZR_API zr_value stack_get(stack *s) ZR_NOEXCEPT;

#ifdef __cplusplus
}
#endif

#endif
