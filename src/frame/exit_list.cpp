// The exit list: functions that run in the order in which they were registered.
#include <zrclb/heap.h>
#include <zrclb/report.h>

namespace zr::frame {
namespace {

struct ExitNode {
    zr_exit_function function;
    ExitNode *previous;
    ExitNode *next;
};

constinit ExitNode exit_list_head = {nullptr, nullptr, nullptr}; // stays; its function is null
constinit unsigned freed_count = 0;                              // how often the list was freed

ExitNode *LastNode() {
    ExitNode *node = &exit_list_head;
    while (node->next != nullptr) {
        node = node->next;
    }
    return node;
}

int Register(zr_exit_function function) {
    if (function == nullptr) {
        return -1;
    }
    auto *node = static_cast<ExitNode *>(heap_malloc(sizeof(ExitNode)));
    if (node == nullptr) {
        return -1;
    }
    ExitNode *last = LastNode();
    *node = {function, last, nullptr};
    last->next = node;
    return 0;
}

// The successor is read after the function has run, which may have registered more. One that has freed the list ends the
// walk, since its own node is gone.
int RunAll() {
    unsigned freed_before = freed_count;
    for (ExitNode *node = &exit_list_head; node != nullptr; node = node->next) {
        if (node->function != nullptr) {
            node->function();
            if (freed_count != freed_before) {
                break;
            }
        }
    }
    return 0;
}

int RunOne(zr_exit_function function) {
    if (function == nullptr) {
        return -1;
    }
    for (ExitNode *node = &exit_list_head; node != nullptr; node = node->next) {
        if (node->function == function) {
            function();
            return 0;
        }
    }
    return -1;
}

int FreeAll() {
    ExitNode *node = LastNode();
    while (node->previous != nullptr) {
        ExitNode *previous = node->previous;
        heap_free(node);
        node = previous;
    }
    node->next = nullptr;
    ++freed_count;
    return node == &exit_list_head ? 0 : -1;
}

} // namespace
} // namespace zr::frame

using namespace zr::frame;

extern "C" {

int endprog_fkt(int operation, zr_exit_function function) noexcept {
    switch (operation) {
    case 0:
        return Register(function);
    case 1:
        return RunAll();
    case 2:
        return RunOne(function);
    case 3:
        return FreeAll();
    default:
        return -1;
    }
}

int zr_atexit(void) noexcept {
    endprog_fkt(1, nullptr);
    return endprog_fkt(3, nullptr);
}
}
