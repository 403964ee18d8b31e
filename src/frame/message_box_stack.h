// The lock of the stack of message box handlers, which load makes and unload deletes.
#ifndef ZR_FRAME_MESSAGE_BOX_STACK_H
#define ZR_FRAME_MESSAGE_BOX_STACK_H

#include "platform/locks.h"

namespace zr::frame {

platform::Lock &MessageBoxSection();

} // namespace zr::frame

#endif
