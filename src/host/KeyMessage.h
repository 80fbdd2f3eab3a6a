#pragma once

#include "host/NativeMessage.h"

#include <QKeyEvent>

#include <memory>

namespace Veldra::Solenne::Tavix {

/// The key event for a key or character message. Null for any other message, an unknown key, or a character that cannot
/// be typed.
[[nodiscard]] std::unique_ptr<QKeyEvent> toKeyEvent(const NativeMessage& message);
/// The message for a key press or release; WParam is 0 for an unknown key.
[[nodiscard]] NativeMessage toNativeMessage(const QKeyEvent& event, NativeWindow window);

[[nodiscard]] bool isKeyDown(const NativeMessage& message);

} // namespace Veldra::Solenne::Tavix
