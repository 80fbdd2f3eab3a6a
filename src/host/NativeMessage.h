#pragma once

#include <cstdint>

namespace Veldra::Solenne::Tavix {

/// The number of a window in the windowing system: under X11 the window id. 0 is no window.
using NativeWindow = std::uintptr_t;

/// The numbers of the messages that the viewer understands.
namespace NativeMessageId {
enum : std::uint32_t {
    Size = 0x0005,     ///< LParam: width in the low 16 bits, height in the next 16, pixels
    SetFocus = 0x0007, ///< the window was given the keyboard
    KeyDown = 0x0100,  ///< WParam: the key
    KeyUp = 0x0101,    ///< WParam: the key
    /// WParam: the Unicode code point of a character that was typed. KeyDown also types letters, digits and the space,
    /// so a shell sends one message or the other for them.
    Character = 0x0102,
    SystemKeyDown = 0x0104,        ///< a key with Alt held; WParam: the key
    SystemKeyUp = 0x0105,          ///< a key with Alt held; WParam: the key
    Command = 0x0111,              ///< WParam: a command number
    LastTabStop = 32771,           ///< Result: not 0 when the report pane has a last tab stop
    CloseTableInformation = 32772, ///< closes the pane; handled even if it is not open
};
} // namespace NativeMessageId

/// The numbers of keys. Letters and digits have the number of their upper-case ASCII character, the function keys F1
/// to F12 the numbers from F1 on.
namespace NativeKey {
enum : std::uintptr_t {
    Backspace = 8,
    Tab = 9,
    Return = 13,
    Escape = 27,
    Space = 32,
    PageUp = 33,
    PageDown = 34,
    End = 35,
    Home = 36,
    Left = 37,
    Up = 38,
    Right = 39,
    Down = 40,
    Insert = 45,
    Delete = 46,
    F1 = 112,
};
} // namespace NativeKey

/// Flags for the modifier keys that are held.
namespace NativeModifier {
enum : std::uint32_t { None = 0, Shift = 1, Control = 2, Alt = 4 };
} // namespace NativeModifier

/// A message from the shell, in a form that does not depend on its toolkit.
struct NativeMessage {
    NativeWindow Window = 0;
    std::uint32_t Message = 0;
    std::uintptr_t WParam = 0;
    std::intptr_t LParam = 0;
    std::uint32_t Modifiers = NativeModifier::None;
    std::intptr_t Result = 0; ///< the answer, for messages that have one

    bool operator==(const NativeMessage&) const = default;
};

} // namespace Veldra::Solenne::Tavix
