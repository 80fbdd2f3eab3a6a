#pragma once

class QWidget;

namespace Veldra::Solenne::Tavix {

class TavixHost;

/// For shells built with Qt: the view as a widget, on every platform and without native child windows. Replaces
/// TavixHost::BuildWindowCore; Tab moves through the controls of shell and viewer as in one window.
class TavixQtWindow {
  public:
    /// Creates the view as a child of `parent`, which owns it and may be destroyed at any time, even while a dialog is
    /// open. A host has one window at a time: an earlier one is destroyed.
    static QWidget* Build(TavixHost& host, QWidget* parent);
};

} // namespace Veldra::Solenne::Tavix
