// Stack of caller's values, last in, first out.
#include <zrclb/heap.h>
#include <zrclb/queue.h>

extern "C" {

stack *stack_open(void) noexcept {
    return static_cast<stack *>(heap_calloc(1, sizeof(stack)));
}

void stack_close(stack *s) noexcept {
    while (s != nullptr && s->top != nullptr) {
        stack_pop(s);
    }
    heap_free(s);
}

stack *stack_push(stack *s, zr_value data) noexcept {
    if (s == nullptr) {
        return nullptr;
    }
    auto *node = static_cast<queue_node *>(heap_malloc(sizeof(queue_node)));
    if (node == nullptr) {
        return nullptr;
    }
    *node = {data, s->top};
    s->top = node;
    return s;
}

zr_value stack_pop(stack *s) noexcept {
    if (s == nullptr || s->top == nullptr) {
        return 0;
    }
    queue_node *node = s->top;
    zr_value data = node->data;
    s->top = node->next;
    heap_free(node);
    return data;
}

zr_value stack_get(stack *s) noexcept {
    return s != nullptr && s->top != nullptr ? s->top->data : 0;
}
}
