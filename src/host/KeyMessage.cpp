#include "host/KeyMessage.h"

#include <array>

namespace Veldra::Solenne::Tavix {

namespace {

struct KeyNumber {
    std::uintptr_t number;
    int key;
};

// Qt has a key of its own for Shift+Tab. From number to key, the first row is found.
constexpr std::array<KeyNumber, 17> kKeys = {{
    {NativeKey::Tab, Qt::Key_Tab},
    {NativeKey::Tab, Qt::Key_Backtab},
    {NativeKey::Backspace, Qt::Key_Backspace},
    {NativeKey::Return, Qt::Key_Return},
    {NativeKey::Return, Qt::Key_Enter},
    {NativeKey::Escape, Qt::Key_Escape},
    {NativeKey::Space, Qt::Key_Space},
    {NativeKey::PageUp, Qt::Key_PageUp},
    {NativeKey::PageDown, Qt::Key_PageDown},
    {NativeKey::End, Qt::Key_End},
    {NativeKey::Home, Qt::Key_Home},
    {NativeKey::Left, Qt::Key_Left},
    {NativeKey::Up, Qt::Key_Up},
    {NativeKey::Right, Qt::Key_Right},
    {NativeKey::Down, Qt::Key_Down},
    {NativeKey::Insert, Qt::Key_Insert},
    {NativeKey::Delete, Qt::Key_Delete},
}};
constexpr int kFunctionKeys = 12;

bool isLetterOrDigit(std::uintptr_t number) {
    return (number >= '0' && number <= '9') || (number >= 'A' && number <= 'Z');
}

int keyOf(std::uintptr_t number) {
    // The keys of letters and digits have ASCII numbers.
    if (isLetterOrDigit(number))
        return static_cast<int>(number);
    if (number >= NativeKey::F1 && number < NativeKey::F1 + kFunctionKeys)
        return Qt::Key_F1 + static_cast<int>(number - NativeKey::F1);
    for (const KeyNumber& each : kKeys) {
        if (each.number == number)
            return each.key;
    }
    return 0;
}

std::uintptr_t numberOf(int key) {
    for (const KeyNumber& each : kKeys) {
        if (each.key == key)
            return each.number;
    }
    if (key >= Qt::Key_F1 && key < Qt::Key_F1 + kFunctionKeys)
        return NativeKey::F1 + static_cast<std::uintptr_t>(key - Qt::Key_F1);
    const auto number = static_cast<std::uintptr_t>(key);
    return isLetterOrDigit(number) ? number : 0;
}

Qt::KeyboardModifiers modifiersOf(const NativeMessage& message) {
    Qt::KeyboardModifiers held;
    held.setFlag(Qt::ShiftModifier, (message.Modifiers & NativeModifier::Shift) != 0);
    held.setFlag(Qt::ControlModifier, (message.Modifiers & NativeModifier::Control) != 0);
    held.setFlag(Qt::AltModifier, (message.Modifiers & NativeModifier::Alt) != 0 ||
                                      message.Message == NativeMessageId::SystemKeyDown ||
                                      message.Message == NativeMessageId::SystemKeyUp);
    return held;
}

// The text that the key types; trees use it to find names.
QString textOf(int key, Qt::KeyboardModifiers held) {
    if (held & (Qt::ControlModifier | Qt::AltModifier))
        return {};
    if (key == Qt::Key_Space)
        return QStringLiteral(" ");
    if (!isLetterOrDigit(static_cast<std::uintptr_t>(key)))
        return {};
    const QChar character(static_cast<char16_t>(key));
    return held & Qt::ShiftModifier ? QString(character) : QString(character.toLower());
}

// The character as text; empty for one that cannot be typed.
QString characterOf(std::uintptr_t codePoint) {
    constexpr std::uintptr_t kDelete = 0x7f;
    constexpr std::uintptr_t kLastControl = 0x9f;
    constexpr std::uintptr_t kLast = 0x10ffff;
    if (codePoint < ' ' || (codePoint >= kDelete && codePoint <= kLastControl) || codePoint > kLast)
        return {};
    const auto character = static_cast<char32_t>(codePoint);
    return QChar::isSurrogate(character) ? QString() : QString::fromUcs4(&character, 1);
}

// Qt numbers the keys of the first 256 characters by their capital letters.
int keyOfCharacter(const QString& character) {
    constexpr char16_t kLatin = 0x100;
    const char16_t unit = character.at(0).toUpper().unicode();
    return character.size() == 1 && unit < kLatin ? int{unit} : Qt::Key_unknown;
}

} // namespace

bool isKeyDown(const NativeMessage& message) {
    return message.Message == NativeMessageId::KeyDown || message.Message == NativeMessageId::SystemKeyDown;
}

std::unique_ptr<QKeyEvent> toKeyEvent(const NativeMessage& message) {
    if (message.Message == NativeMessageId::Character) {
        const QString character = characterOf(message.WParam);
        if (character.isEmpty())
            return nullptr;
        return std::make_unique<QKeyEvent>(QEvent::KeyPress, keyOfCharacter(character), Qt::NoModifier, character);
    }
    const bool up = message.Message == NativeMessageId::KeyUp || message.Message == NativeMessageId::SystemKeyUp;
    int key = keyOf(message.WParam);
    if (key == 0 || (!up && !isKeyDown(message)))
        return nullptr;
    const Qt::KeyboardModifiers held = modifiersOf(message);
    if (key == Qt::Key_Tab && held.testFlag(Qt::ShiftModifier))
        key = Qt::Key_Backtab;
    return std::make_unique<QKeyEvent>(up ? QEvent::KeyRelease : QEvent::KeyPress, key, held, textOf(key, held));
}

NativeMessage toNativeMessage(const QKeyEvent& event, NativeWindow window) {
    NativeMessage message;
    message.Window = window;
    const bool alt = event.modifiers().testFlag(Qt::AltModifier);
    if (event.type() == QEvent::KeyPress)
        message.Message = alt ? NativeMessageId::SystemKeyDown : NativeMessageId::KeyDown;
    else
        message.Message = alt ? NativeMessageId::SystemKeyUp : NativeMessageId::KeyUp;
    message.WParam = numberOf(event.key());
    if (event.modifiers().testFlag(Qt::ShiftModifier) || event.key() == Qt::Key_Backtab)
        message.Modifiers |= NativeModifier::Shift;
    if (event.modifiers().testFlag(Qt::ControlModifier))
        message.Modifiers |= NativeModifier::Control;
    if (alt)
        message.Modifiers |= NativeModifier::Alt;
    return message;
}

} // namespace Veldra::Solenne::Tavix
