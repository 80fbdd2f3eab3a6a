#pragma once

#include "host/NativeMessage.h"

#include <QKeyEvent>

#include <memory>

namespace Veldra::Solenne::Tavix {

/// The key event of a key or character message; null for any other message, for a key without a number of its own and
/// for a number that is no character which can be typed.
[[nodiscard]] std::unique_ptr<QKeyEvent> toKeyEvent(const NativeMessage& message);
/// The message of a key press or release; a key without a number gives WParam 0.
[[nodiscard]] NativeMessage toNativeMessage(const QKeyEvent& event, NativeWindow window);

[[nodiscard]] bool isKeyDown(const NativeMessage& message);

} // namespace Veldra::Solenne::Tavix
