// Message boxes, and the handlers that take the system's place.
#include "frame/message_box_stack.h"

#include <cstdlib>

#include <zrclb/report.h>

#include "platform/message_box.h"

namespace zr::frame {
namespace {

struct HandlerNode {
    zr_MessageBoxHandler handler;
    zr_value user;
    HandlerNode *next;
};

constinit platform::Lock message_box_section;
constinit HandlerNode *message_box_handlers = nullptr; // the top one; guarded by the section

// From the plain allocator: the nodes do not count among the library's blocks.
void PushHandler(zr_MessageBoxHandler handler, zr_value user) {
    auto *node = static_cast<HandlerNode *>(std::malloc(sizeof(HandlerNode)));
    if (node != nullptr) {
        *node = {handler, user, message_box_handlers};
        message_box_handlers = node;
    }
}

void PopHandler() {
    HandlerNode *node = message_box_handlers;
    if (node != nullptr) {
        message_box_handlers = node->next;
        std::free(node);
    }
}

} // namespace

platform::Lock &MessageBoxSection() {
    return message_box_section;
}

} // namespace zr::frame

using namespace zr::frame;

extern "C" {

int zr_MessageBox(zr_window owner, const char *text, const char *caption, unsigned int type) noexcept {
    zr_MessageBoxHandler handler = nullptr;
    zr_value user = 0;
    {
        zr::platform::LockGuard guard(message_box_section);
        if (message_box_handlers != nullptr) {
            handler = message_box_handlers->handler;
            user = message_box_handlers->user;
        }
    }
    // Outside the section: a handler may install or remove handlers and show boxes itself.
    if (handler != nullptr) {
        return handler(owner, text, caption, type, user);
    }
    return zr::platform::ShowMessageBox(owner, text, caption, type);
}

void zr_SetMessageBoxHandler(zr_MessageBoxHandler handler, zr_value user) noexcept {
    zr::platform::LockGuard guard(message_box_section);
    if (handler != nullptr) {
        PushHandler(handler, user);
    } else {
        PopHandler();
    }
}
}
