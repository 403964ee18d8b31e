// Queue of caller's values, first in, first out.
#include <zrclb/heap.h>
#include <zrclb/queue.h>

extern "C" {

queue *queue_open(void) noexcept {
    auto *q = static_cast<queue *>(heap_malloc(sizeof(queue)));
    if (q != nullptr) {
        *q = {nullptr, nullptr};
    }
    return q;
}

void queue_close(queue *q) noexcept {
    queue_clear(q);
    heap_free(q);
}

void queue_post(queue *q, zr_value data) noexcept {
    if (q == nullptr) {
        return;
    }
    auto *node = static_cast<queue_node *>(heap_malloc(sizeof(queue_node)));
    if (node == nullptr) {
        return;
    }
    *node = {data, nullptr};
    if (q->head == nullptr) {
        q->head = node;
    } else {
        q->tail->next = node;
    }
    q->tail = node;
}

zr_value queue_get(queue *q) noexcept {
    if (q == nullptr || q->head == nullptr) {
        return 0;
    }
    queue_node *node = q->head;
    zr_value data = node->data;
    q->head = node->next;
    heap_free(node);
    return data;
}

zr_value queue_look(queue *q) noexcept {
    return q != nullptr && q->head != nullptr ? q->head->data : 0;
}

void queue_clear(queue *q) noexcept {
    while (q != nullptr && q->head != nullptr) {
        queue_get(q);
    }
}
}
