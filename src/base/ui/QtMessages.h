#pragma once

#include "base/Messages.h"

#include <QPointer>
#include <QWidget>

namespace tavix {

/// Messages as modal boxes over a window, in plain text that can be selected and copied.
class QtMessages final : public Messages {
  public:
    /// `window` may be null, and may be destroyed before this object.
    explicit QtMessages(QWidget* window = nullptr) : m_window(window) {}

    /// The window that later boxes belong to.
    void setWindow(QWidget* window) { m_window = window; }

    void warn(std::string_view text, std::string_view caption) override;
    [[nodiscard]] Answer ask(std::string_view text, std::string_view caption, Answer preset) override;
    [[nodiscard]] std::unique_ptr<Busy> busy() override;

  private:
    QPointer<QWidget> m_window;
};

} // namespace tavix
