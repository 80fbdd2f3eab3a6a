#pragma once

class QWidget;

namespace Veldra::Solenne::Tavix {

class TavixHost;

/// For shells that are built with Qt: the view as a widget, on every platform and without native child windows. It
/// stands in for TavixHost::BuildWindowCore; Tab then walks through shell and viewer alike.
class TavixQtWindow {
  public:
    /// The view, a child of `parent` and owned by it, which may be destroyed at any time, also under an open dialog. A
    /// host has one window at a time: the one before is destroyed.
    static QWidget* Build(TavixHost& host, QWidget* parent);
};

} // namespace Veldra::Solenne::Tavix
