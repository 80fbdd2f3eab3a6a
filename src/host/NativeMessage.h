#pragma once

#include <cstdint>

namespace Veldra::Solenne::Tavix {

/// A window of the windowing system by its number: under X11 the window id. 0 is no window.
using NativeWindow = std::uintptr_t;

/// The numbers of messages that the viewer understands.
namespace NativeMessageId {
inline constexpr std::uint32_t Size = 0x0005;     ///< LParam: width in the low 16 bits, height in the next 16, pixels
inline constexpr std::uint32_t SetFocus = 0x0007; ///< the window was given the keyboard
inline constexpr std::uint32_t KeyDown = 0x0100;  ///< WParam: the key
inline constexpr std::uint32_t KeyUp = 0x0101;    ///< WParam: the key
/// WParam: the Unicode code point of a character that was typed. Letters, digits and the space are typed by KeyDown as
/// well, so a shell sends one message or the other for them.
inline constexpr std::uint32_t Character = 0x0102;
inline constexpr std::uint32_t SystemKeyDown = 0x0104; ///< a key with Alt held; WParam: the key
inline constexpr std::uint32_t SystemKeyUp = 0x0105;   ///< a key with Alt held; WParam: the key
inline constexpr std::uint32_t Command = 0x0111;       ///< WParam: a command number
inline constexpr std::uint32_t LastTabStop = 32771;    ///< Result: not 0 when the report pane has a last tab stop
inline constexpr std::uint32_t CloseTableInformation = 32772; ///< closes the pane; handled also when it is not open
} // namespace NativeMessageId

/// The numbers of keys. Letters and digits have the number of their upper-case ASCII character, the function keys F1
/// to F12 the numbers from F1 on.
namespace NativeKey {
inline constexpr std::uintptr_t Backspace = 8;
inline constexpr std::uintptr_t Tab = 9;
inline constexpr std::uintptr_t Return = 13;
inline constexpr std::uintptr_t Escape = 27;
inline constexpr std::uintptr_t Space = 32;
inline constexpr std::uintptr_t PageUp = 33;
inline constexpr std::uintptr_t PageDown = 34;
inline constexpr std::uintptr_t End = 35;
inline constexpr std::uintptr_t Home = 36;
inline constexpr std::uintptr_t Left = 37;
inline constexpr std::uintptr_t Up = 38;
inline constexpr std::uintptr_t Right = 39;
inline constexpr std::uintptr_t Down = 40;
inline constexpr std::uintptr_t Insert = 45;
inline constexpr std::uintptr_t Delete = 46;
inline constexpr std::uintptr_t F1 = 112;
} // namespace NativeKey

/// The keys that are held while another is pressed, to be added up.
namespace NativeModifier {
inline constexpr std::uint32_t None = 0;
inline constexpr std::uint32_t Shift = 1;
inline constexpr std::uint32_t Control = 2;
inline constexpr std::uint32_t Alt = 4;
} // namespace NativeModifier

/// A message as a shell passes it on, whatever its toolkit.
struct NativeMessage {
    NativeWindow Window = 0;
    std::uint32_t Message = 0;
    std::uintptr_t WParam = 0;
    std::intptr_t LParam = 0;
    std::uint32_t Modifiers = NativeModifier::None;
    std::intptr_t Result = 0; ///< the answer, where the message has one

    bool operator==(const NativeMessage&) const = default;
};

} // namespace Veldra::Solenne::Tavix
